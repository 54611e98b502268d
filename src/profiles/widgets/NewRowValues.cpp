#include "NewRowValues.h"

#include "EglEnumerants.h"
#include "GlEnumerants.h"
#include "KeyTables.h"
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

QString forCapability(const QString& element)
{
    static const std::map<QString, const char*> names{
        {"shader_binary_format", "GL_TSR_BINARY_BWD"},
        {"compressed_texture_format", "GL_ETC1_RGB8_OES"},
        {"implementation_color_read_type", "GL_UNSIGNED_BYTE"},
        {"implementation_color_read_format", "GL_RGBA"},
    };
    if (const auto name = names.find(element); name != names.end())
        return QString::number(gl::enumerantValue(name->second).value_or(0));
    // 2.0 asks for a single pixel only; the same as for textures is of more use.
    static const std::map<QString, int> numbers{
        {"max_renderbuffer_size", 64}, {"max_viewport_dims", 64}, {"sample_buffers", 0}, {"samples", 0}};
    if (const auto number = numbers.find(element); number != numbers.end())
        return QString::number(number->second);
    ESCapabilityKeyNode node;
    findKeyNode(ESCapabilityKey::XMLName{element.toStdString()}, &node);
    for (const gl::EsVersion version : {gl::EsVersion::Es20, gl::EsVersion::Es11}) {
        if (const auto minimum = gl::minimum(node.key.displayName.text, version))
            return QString::number(minimum->values.front(), 'f', QLocale::FloatingPointShortest);
    }
    return QStringLiteral("1");
}

} // namespace new_values
