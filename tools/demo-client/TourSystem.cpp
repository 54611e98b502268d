#include "Scenarios.h"

#include <array>
#include <span>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace demo {

namespace {

// Extension codes. Those of OpenGL ES count the lines of the window's table of OpenGL ES extensions, those of
// the host the lines of its table of host extensions.
constexpr std::array<std::uint32_t, 15> modernExtensions{
    14, // EXT_texture_filter_anisotropic
    15, // EXT_texture_format_BGRA8888
    34, // OES_depth24
    35, // OES_EGL_image
    40, // OES_packed_depth_stencil
    43, // OES_rgb8_rgba8
    82, // KHR_blend_equation_advanced
    84, // KHR_debug
    85, // KHR_no_error
    103, // EXT_color_buffer_float
    104, // EXT_copy_image
    108, // OES_sample_shading
    117, // EXT_geometry_shader
    122, // EXT_tessellation_shader
    123, // EXT_texture_buffer
};
constexpr std::array<std::uint32_t, 3> modernMissingOnHost{
    26, // BWD_texture_compression_tsrtc
    106, // EXT_shader_pixel_local_storage
    128, // KHR_texture_compression_astc_ldr
};
constexpr std::array<std::uint32_t, 3> modernNotEmulated{
    112, // OVR_multiview
    127, // BWD_ray_tracing
    131, // EXT_sparse_texture
};
constexpr std::array<std::uint32_t, 16> modernHost{
    10, // GL_ARB_buffer_storage
    14, // GL_ARB_clip_control
    18, // GL_ARB_compute_shader
    23, // GL_ARB_copy_image
    30, // GL_ARB_direct_state_access
    37, // GL_ARB_ES2_compatibility
    40, // GL_ARB_ES3_compatibility
    38, // GL_ARB_ES3_1_compatibility
    39, // GL_ARB_ES3_2_compatibility
    124, // GL_ARB_tessellation_shader
    153, // GL_ARB_texture_storage
    163, // GL_ARB_uniform_buffer_object
    179, // GL_KHR_debug
    272, // GL_EXT_texture_compression_s3tc
    276, // GL_EXT_texture_filter_anisotropic
    501, // GL_NVX_gpu_memory_info
};

constexpr std::array<std::uint32_t, 7> simpleExtensions{
    5, // EXT_blend_minmax
    33, // OES_compressed_ETC1_RGB8_texture
    38, // OES_element_index_uint
    39, // OES_mapbuffer
    49, // OES_vertex_array_object
    87, // OES_depth_texture
    92, // OES_standard_derivatives
};
constexpr std::array<std::uint32_t, 1> simpleMissingOnHost{
    9, // EXT_multisampled_render_to_texture
};
constexpr std::array<std::uint32_t, 2> simpleNotEmulated{
    30, // BWD_texture_stream2
    52, // BWD_user_clip_plane
};
constexpr std::array<std::uint32_t, 8> simpleHost{
    37, // GL_ARB_ES2_compatibility
    50, // GL_ARB_framebuffer_object
    67, // GL_ARB_map_buffer_range
    91, // GL_ARB_seamless_cube_map
    146, // GL_ARB_texture_non_power_of_two
    165, // GL_ARB_vertex_array_object
    190, // GL_EXT_bgra
    596, // WGL_ARB_pixel_format
};

void setCodes(Message& message, std::size_t at, std::span<const std::uint32_t> codes)
{
    for (std::size_t i = 0; i < codes.size(); ++i)
        message.setU32(at + i * sizeof(std::uint32_t), codes[i]);
}

void reportFlag(Session& session, std::uint32_t key, bool value)
{
    Message message = session.record(Type::ReportFlag);
    message.setU32(offset::reportKey, key);
    message.setU8(offset::reportFlag, value ? 1 : 0);
    session.send(message);
}

Message reportText(const Session& session, Type type, std::string_view text)
{
    Message message = session.record(type);
    message.setText(offset::reportText, text, offset::reportTextEnd);
    return message;
}

void reportSupport(Session& session, std::string_view extension, bool isSupported)
{
    Message message = reportText(session, Type::ReportText, extension);
    message.setU8(offset::reportTextEnd, isSupported ? 1 : 0);
    session.send(message);
}

void reportLimit(Session& session, std::string_view name, std::uint32_t value)
{
    Message message = reportText(session, Type::ReportDetail, name);
    message.setU32(offset::reportTextEnd, value);
    session.send(message);
}

void reportKeyedText(Session& session, Type type, std::uint32_t key, std::string_view text)
{
    Message message = session.record(type);
    message.setU32(offset::reportKey, key);
    message.setText(offset::reportKeyedText, text);
    session.send(message);
}

} // namespace

void createFirstContext(Session& session)
{
    Message message = session.record(Type::ContextInformation);
    message.setU32(offset::contextNumber, 1);
    message.setU32(offset::contextStrict, 1);
    message.setU32(offset::contextEsVersion, 5); // OpenGL ES 3.2
    message.setU32(offset::contextGlslEsVersion, 4); // GLSL ES 3.2
    message.setU32(offset::contextGlVersion, 19); // OpenGL 4.6
    message.setU32(offset::contextGlslVersion, 13); // GLSL 4.60
    setCodes(message, offset::contextExtensions, modernExtensions);
    setCodes(message, offset::contextExtensionsNotOnHost, modernMissingOnHost);
    setCodes(message, offset::contextExtensionsNotEmulated, modernNotEmulated);
    setCodes(message, offset::contextHostExtensions, modernHost);
    session.send(message);
}

void createSecondContext(Session& session)
{
    Message message = session.record(Type::ContextInformation);
    message.setU32(offset::contextNumber, 2);
    message.setU32(offset::contextStrict, 0);
    message.setU32(offset::contextEsVersion, 2); // OpenGL ES 2.0
    message.setU32(offset::contextGlslEsVersion, 1); // GLSL ES 1.0
    message.setU32(offset::contextGlVersion, 12); // OpenGL 3.3
    message.setU32(offset::contextGlslVersion, 6); // GLSL 3.30
    setCodes(message, offset::contextExtensions, simpleExtensions);
    setCodes(message, offset::contextExtensionsNotOnHost, simpleMissingOnHost);
    setCodes(message, offset::contextExtensionsNotEmulated, simpleNotEmulated);
    setCodes(message, offset::contextHostExtensions, simpleHost);
    session.send(message);
}

void reportSystem(Session& session)
{
    Message number = session.record(Type::ReportLeadingNumber);
    number.setU32(offset::payload, 1);
    session.send(number);
    reportFlag(session, 1, true);
    reportFlag(session, 2, true);
    reportFlag(session, 3, false);
    reportSupport(session, "EGL_KHR_image_base", true);
    reportSupport(session, "EGL_KHR_fence_sync", true);
    reportSupport(session, "EGL_KHR_stream", false);
    reportLimit(session, "GL_MAX_TEXTURE_SIZE", 16384);
    reportLimit(session, "GL_MAX_VERTEX_ATTRIBS", 16);
    reportLimit(session, "GL_MAX_SAMPLES", 8);
    reportKeyedText(session, Type::ReportKeyedText, 1, "Debian GNU/Linux 12, 64 bits");
    reportKeyedText(session, Type::ReportKeyedText, 2, "8 processors, 15.6 GiB of memory");
    reportKeyedText(session, Type::ReportOtherKeyedText, 1, "OpenGL 4.6, shading language 4.60");
    reportKeyedText(session, Type::ReportOtherKeyedText, 2, "1 display, 2560 x 1440 at 60 Hz");
    session.send(session.record(Type::ReportComplete));
}

} // namespace demo
