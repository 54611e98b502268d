#include "NewRowValues.h"

#include "EglEnumerants.h"
#include "GlEnumerants.h"
#include "KeyTables.h"
#include "LimitKeys.h"
#include "Minima.h"

#include <QLocale>

#include <map>

namespace new_values {

QVariant forAttribute(int attribute)
{
    static const std::map<std::string, QVariant> values{
        {"EGL_CONFIG_CAVEAT", *egl::enumerantValue("EGL_NONE")},
        {"EGL_TRANSPARENT_TYPE", *egl::enumerantValue("EGL_NONE")},
        {"EGL_CONFORMANT", *egl::enumerantValue("EGL_TRUE")},
        {"EGL_RENDERABLE_TYPE", QStringLiteral("EGL_OPENGL_ES2_BIT")},
        {"EGL_SURFACE_TYPE", QStringLiteral("EGL_WINDOW_BIT")},
        {"EGL_MAX_SWAP_INTERVAL", 1},
        {"EGL_MIN_SWAP_INTERVAL", 1},
    };
    EGLAttribKey key;
    const auto found = findEGLAttribKey(attribute, &key) ? values.find(key.displayName.text) : values.end();
    return found == values.end() ? QVariant(0) : found->second;
}

QString forCapability(const QString& element, gl::EsVersion version)
{
    using gl::EsVersion;
    const bool hasEtc2 = version >= EsVersion::Es30;
    const std::map<QString, const char*> names{
        {"shader_binary_format", "GL_TSR_BINARY_BWD"},
        {"compressed_texture_format", hasEtc2 ? "GL_COMPRESSED_RGB8_ETC2" : "GL_ETC1_RGB8_OES"},
        {"implementation_color_read_type", "GL_UNSIGNED_BYTE"},
        {"implementation_color_read_format", "GL_RGBA"},
        {"program_binary_format", "GL_TSR_PROGRAM_BINARY_BWD"},
        {"layer_provoking_vertex", "GL_FIRST_VERTEX_CONVENTION"},
    };
    if (const auto name = names.find(element); name != names.end())
        return QString::number(gl::enumerantValue(name->second).value_or(0));
    if (element == QLatin1String("sample_buffers") || element == QLatin1String("samples"))
        return QStringLiteral("0");
    std::string enumerant = "GL_" + element.toUpper().toStdString();
    if (const auto key = findCapability(ESCapabilityKey::XMLName{element.toStdString()}))
        enumerant = key->displayName.text;
    // 2.0 asks for a single pixel only, and nothing for viewports; the same as for textures is of more use.
    if (element == QLatin1String("max_renderbuffer_size") || element == QLatin1String("max_viewport_dims"))
        enumerant = "GL_MAX_TEXTURE_SIZE";
    for (const EsVersion asking : {version, EsVersion::Es20, EsVersion::Es11}) {
        if (const auto minimum = gl::minimum(enumerant, asking))
            return QString::number(minimum->values.front(), 'f', QLocale::FloatingPointShortest);
    }
    return QStringLiteral("1");
}

} // namespace new_values
