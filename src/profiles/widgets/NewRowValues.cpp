#include "NewRowValues.h"

#include "EglEnumerants.h"
#include "GlEnumerants.h"
#include "KeyTables.h"

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
    static const std::map<QString, int> values{
        {"max_texture_size", 64},
        {"max_combined_texture_image_units", 8},
        {"max_cube_map_texture_size", 16},
        {"max_fragment_uniform_vectors", 16},
        {"max_renderbuffer_size", 64},
        {"max_varying_vectors", 8},
        {"max_vertex_attribs", 8},
        {"max_vertex_uniform_vectors", 128},
        {"max_vertex_texture_image_units", 0},
        {"max_viewport_dims", 64},
        {"sample_buffers", 0},
        {"samples", 0},
        {"subpixel_bits", 4},
        {"max_lights", 8},
        {"max_modelview_stack_depth", 16},
        {"max_projection_stack_depth", 2},
        {"max_texture_stack_depth", 2},
        {"max_texture_units", 2},
    };
    static const std::map<QString, const char*> names{
        {"shader_binary_format", "GL_TSR_BINARY_BWD"},
        {"compressed_texture_format", "GL_ETC1_RGB8_OES"},
        {"implementation_color_read_type", "GL_UNSIGNED_BYTE"},
        {"implementation_color_read_format", "GL_RGBA"},
    };
    if (const auto name = names.find(element); name != names.end())
        return QString::number(gl::enumerantValue(name->second).value_or(0));
    const auto found = values.find(element);
    return QString::number(found == values.end() ? 1 : found->second);
}

} // namespace new_values
