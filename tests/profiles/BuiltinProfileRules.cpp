#include "BuiltinProfileRules.h"

#include "ExtensionCatalogue.h"

#include <algorithm>
#include <charconv>
#include <sstream>

#include <gtest/gtest.h>

namespace rules {

namespace {

constexpr long long any = std::numeric_limits<long long>::max();
constexpr long long none = std::numeric_limits<long long>::min();

// A key with several rows has the later versions' higher demands in its own row.
constexpr Limit limitTable[] = {
    {"aliased_point_size_range/min", 1, 31, 0, 1},
    {"aliased_point_size_range/max", 1, 31, 1},
    {"aliased_line_width_range/min", 1, 31, 0, 1},
    {"aliased_line_width_range/max", 1, 31, 1},
    {"max_texture_size", 1, 2, 64},
    {"max_texture_size", 3, 31, 2048},
    {"max_viewport_dims/width", 1, 31, 1},
    {"max_viewport_dims/height", 1, 31, 1},
    {"sample_buffers", 1, 31, 0, 1},
    {"samples", 1, 31, 0},
    {"subpixel_bits", 1, 31, 4},
    {"implementation_color_read_type", 1, 31, 1},
    {"implementation_color_read_format", 1, 31, 1},
    {"max_texture_max_anisotropy", 1, 31, 2, any, "GL_EXT_texture_filter_anisotropic"},
    // Fixed function.
    {"smooth_point_size_range/min", 1, 1, 0, 1},
    {"smooth_point_size_range/max", 1, 1, 1},
    {"smooth_line_width_range/min", 1, 1, 0, 1},
    {"smooth_line_width_range/max", 1, 1, 1},
    {"max_lights", 1, 1, 8},
    {"max_clip_planes", 1, 1, 1},
    {"max_modelview_stack_depth", 1, 1, 16},
    {"max_projection_stack_depth", 1, 1, 2},
    {"max_texture_stack_depth", 1, 1, 2},
    {"max_texture_units", 1, 1, 2},
    {"max_cube_map_texture_size", 1, 1, 16, any, "GL_OES_texture_cube_map"},
    {"max_renderbuffer_size", 1, 1, 1, any, "GL_OES_framebuffer_object"},
    {"max_palette_matrices", 1, 1, 9, any, "GL_OES_matrix_palette"},
    {"max_palette_matrices", 1, 1, 32, any, "GL_OES_extended_matrix_palette"},
    {"max_vertex_units", 1, 1, 3, any, "GL_OES_matrix_palette"},
    {"max_vertex_units", 1, 1, 4, any, "GL_OES_extended_matrix_palette"},
    // Shaders.
    {"shader_compiler", 2, 31, 1, 1},
    {"max_cube_map_texture_size", 2, 2, 16},
    {"max_cube_map_texture_size", 3, 31, 2048},
    {"max_renderbuffer_size", 2, 2, 1},
    {"max_renderbuffer_size", 3, 31, 2048},
    {"max_vertex_attribs", 2, 2, 8},
    {"max_vertex_attribs", 3, 31, 16},
    {"max_vertex_uniform_vectors", 2, 2, 128},
    {"max_vertex_uniform_vectors", 3, 31, 256},
    {"max_fragment_uniform_vectors", 2, 2, 16},
    {"max_fragment_uniform_vectors", 3, 31, 224},
    {"max_varying_vectors", 2, 2, 8},
    {"max_varying_vectors", 3, 31, 15},
    {"max_texture_image_units", 2, 2, 8},
    {"max_texture_image_units", 3, 31, 16},
    {"max_vertex_texture_image_units", 2, 2, 0},
    {"max_vertex_texture_image_units", 3, 31, 16},
    {"max_combined_texture_image_units", 2, 2, 8},
    {"max_combined_texture_image_units", 3, 3, 32},
    {"max_combined_texture_image_units", 31, 31, 48},
    {"max_3d_texture_size", 2, 2, 16, any, "GL_OES_texture_3D"},
    {"max_3d_texture_size", 3, 31, 256},
    {"max_draw_buffers", 2, 2, 1, any, "GL_EXT_draw_buffers"},
    {"max_draw_buffers", 3, 31, 4},
    {"max_color_attachments", 2, 2, 1, any, "GL_EXT_draw_buffers"},
    {"max_color_attachments", 3, 31, 4},
    // Version 3.
    {"max_array_texture_layers", 3, 31, 256},
    {"max_texture_lod_bias", 3, 31, 2},
    {"max_samples", 3, 31, 4},
    {"max_element_index", 3, 31, 16777215, 4294967295},
    {"max_elements_indices", 3, 31, 1},
    {"max_elements_vertices", 3, 31, 1},
    {"max_vertex_uniform_components", 3, 31, 1024},
    {"max_vertex_uniform_blocks", 3, 31, 12},
    {"max_vertex_output_components", 3, 31, 64},
    {"max_fragment_uniform_components", 3, 31, 896},
    {"max_fragment_uniform_blocks", 3, 31, 12},
    {"max_fragment_input_components", 3, 31, 60},
    {"max_varying_components", 3, 31, 60},
    {"min_program_texel_offset", 3, 31, none, -8},
    {"max_program_texel_offset", 3, 31, 7},
    {"max_uniform_buffer_bindings", 3, 3, 24},
    {"max_uniform_buffer_bindings", 31, 31, 36},
    {"max_combined_uniform_blocks", 3, 31, 24},
    {"max_uniform_block_size", 3, 31, 16384},
    {"uniform_buffer_offset_alignment", 3, 31, 1, 256},
    {"max_combined_vertex_uniform_components", 3, 31, 1},
    {"max_combined_fragment_uniform_components", 3, 31, 1},
    {"max_transform_feedback_interleaved_components", 3, 31, 64},
    {"max_transform_feedback_separate_attribs", 3, 31, 4},
    {"max_transform_feedback_separate_components", 3, 31, 4},
    {"max_dual_source_draw_buffers", 3, 31, 1, any, "GL_EXT_blend_func_extended"},
    {"max_shader_pixel_local_storage_size", 3, 31, 16, any, "GL_EXT_shader_pixel_local_storage"},
    {"max_views", 3, 31, 2, any, "GL_OVR_multiview"},
    // Version 3.1.
    {"max_framebuffer_width", 31, 31, 2048},
    {"max_framebuffer_height", 31, 31, 2048},
    {"max_framebuffer_samples", 31, 31, 4},
    {"max_sample_mask_words", 31, 31, 1},
    {"max_color_texture_samples", 31, 31, 1},
    {"max_depth_texture_samples", 31, 31, 1},
    {"max_integer_samples", 31, 31, 1},
    {"max_vertex_attrib_bindings", 31, 31, 16},
    {"max_vertex_attrib_relative_offset", 31, 31, 2047},
    {"max_vertex_attrib_stride", 31, 31, 2048},
    {"max_uniform_locations", 31, 31, 1024},
    {"max_compute_work_group_count/x", 31, 31, 65535},
    {"max_compute_work_group_count/y", 31, 31, 65535},
    {"max_compute_work_group_count/z", 31, 31, 65535},
    {"max_compute_work_group_size/x", 31, 31, 128},
    {"max_compute_work_group_size/y", 31, 31, 128},
    {"max_compute_work_group_size/z", 31, 31, 64},
    {"max_compute_work_group_invocations", 31, 31, 128},
    {"max_compute_shared_memory_size", 31, 31, 16384},
    {"max_compute_uniform_components", 31, 31, 1024},
    {"max_compute_uniform_blocks", 31, 31, 12},
    {"max_combined_compute_uniform_components", 31, 31, 1},
    {"max_compute_texture_image_units", 31, 31, 16},
    {"max_compute_image_uniforms", 31, 31, 4},
    {"max_compute_atomic_counters", 31, 31, 8},
    {"max_compute_atomic_counter_buffers", 31, 31, 1},
    {"max_compute_shader_storage_blocks", 31, 31, 4},
    {"max_image_units", 31, 31, 4},
    {"max_combined_image_uniforms", 31, 31, 4},
    {"max_atomic_counter_buffer_bindings", 31, 31, 1},
    {"max_atomic_counter_buffer_size", 31, 31, 32},
    {"max_combined_atomic_counters", 31, 31, 8},
    {"max_combined_atomic_counter_buffers", 31, 31, 1},
    {"max_shader_storage_buffer_bindings", 31, 31, 4},
    {"max_shader_storage_block_size", 31, 31, 134217728},
    {"max_combined_shader_storage_blocks", 31, 31, 4},
    {"max_combined_shader_output_resources", 31, 31, 4},
    {"shader_storage_buffer_offset_alignment", 31, 31, 1, 256},
    {"min_program_texture_gather_offset", 31, 31, none, -8},
    {"max_program_texture_gather_offset", 31, 31, 7},
    {"max_geometry_output_vertices", 31, 31, 256, any, "GL_EXT_geometry_shader"},
    {"max_geometry_shader_invocations", 31, 31, 32, any, "GL_EXT_geometry_shader"},
    {"max_patch_vertices", 31, 31, 32, any, "GL_EXT_tessellation_shader"},
    {"max_tess_gen_level", 31, 31, 64, any, "GL_EXT_tessellation_shader"},
    {"max_texture_buffer_size", 31, 31, 65536, any, "GL_EXT_texture_buffer"},
    {"max_viewports", 31, 31, 16, any, "GL_EXT_viewport_array"},
};

constexpr Order orderTable[] = {
    {"max_texture_size", "max_viewport_dims/width"},
    {"max_texture_size", "max_viewport_dims/height"},
    {"max_renderbuffer_size", "max_viewport_dims/width"},
    {"max_renderbuffer_size", "max_viewport_dims/height"},
    {"max_cube_map_texture_size", "max_texture_size"},
    {"max_3d_texture_size", "max_texture_size"},
    {"smooth_point_size_range/max", "aliased_point_size_range/max"},
    {"smooth_line_width_range/max", "aliased_line_width_range/max"},
    {"sample_buffers", "samples"},
    {"max_texture_image_units", "max_combined_texture_image_units"},
    {"max_vertex_texture_image_units", "max_combined_texture_image_units"},
    {"max_draw_buffers", "max_color_attachments"},
    {"max_varying_components", "max_vertex_output_components"},
    {"max_varying_components", "max_fragment_input_components"},
    {"max_vertex_uniform_blocks", "max_combined_uniform_blocks"},
    {"max_fragment_uniform_blocks", "max_combined_uniform_blocks"},
    {"max_combined_uniform_blocks", "max_uniform_buffer_bindings"},
    {"max_integer_samples", "max_samples"},
    {"max_compute_work_group_size/x", "max_compute_work_group_invocations"},
    {"max_compute_work_group_size/y", "max_compute_work_group_invocations"},
    {"max_compute_work_group_size/z", "max_compute_work_group_invocations"},
    {"max_compute_image_uniforms", "max_combined_image_uniforms"},
    {"max_combined_image_uniforms", "max_combined_shader_output_resources"},
    {"max_compute_atomic_counters", "max_combined_atomic_counters"},
    {"max_compute_shader_storage_blocks", "max_combined_shader_storage_blocks"},
    {"max_combined_shader_storage_blocks", "max_shader_storage_buffer_bindings"},
    {"max_combined_shader_storage_blocks", "max_combined_shader_output_resources"},
};

/// Extensions, without their prefix, that are of use from one version to another.
struct Span {
    int first;
    int last;
    const char* names;
};

constexpr Span extensionTable[] = {
    {1, 1,
        "APPLE_texture_2D_limited_npot BWD_texture_env_enhanced_fixed_function BWD_user_clip_plane "
        "OES_blend_equation_separate OES_blend_func_separate OES_blend_subtract OES_byte_coordinates "
        "OES_draw_texture "
        "OES_extended_matrix_palette OES_fixed_point OES_framebuffer_object OES_matrix_get "
        "OES_matrix_palette "
        "OES_point_size_array OES_point_sprite OES_query_matrix OES_read_format OES_single_precision "
        "OES_stencil8 "
        "OES_stencil_wrap OES_texture_cube_map OES_texture_env_crossbar OES_texture_mirrored_repeat "
        "OES_compressed_paletted_texture"},
    {1, 2,
        "APPLE_copy_texture_levels APPLE_sync APPLE_texture_max_level EXT_blend_minmax "
        "EXT_discard_framebuffer "
        "EXT_texture_storage BWD_multisampled_render_to_texture BWD_read_format BWD_texture_stream "
        "BWD_vertex_array_object OES_depth24 OES_element_index_uint OES_packed_depth_stencil "
        "OES_required_internalformat OES_rgb8_rgba8 OES_vertex_array_object"},
    {1, 31,
        "APPLE_texture_format_BGRA8888 BWD_texture_compression_tsrtc BWD_texture_format_BGRA8888 "
        "EXT_debug_marker "
        "EXT_multi_draw_arrays EXT_read_format_bgra EXT_texture_compression_dxt1 "
        "EXT_texture_filter_anisotropic "
        "EXT_texture_format_BGRA8888 OES_EGL_image OES_EGL_image_external OES_EGL_sync "
        "OES_compressed_ETC1_RGB8_texture OES_mapbuffer OES_surfaceless_context"},
    {2, 2,
        "BWD_texture_npot BWD_uniform_buffer_object EXT_draw_buffers EXT_draw_instanced EXT_instanced_arrays "
        "EXT_occlusion_query_boolean EXT_sRGB EXT_shader_texture_lod EXT_shadow_samplers EXT_texture_rg "
        "EXT_texture_type_2_10_10_10_REV OES_depth_texture OES_depth_texture_cube_map "
        "OES_fragment_precision_high "
        "OES_get_program_binary OES_standard_derivatives OES_texture_3D OES_texture_float "
        "OES_texture_half_float "
        "OES_vertex_half_float"},
    {2, 3, "EXT_separate_shader_objects"},
    {2, 31,
        "BWD_framebuffer_downsample BWD_program_binary BWD_shader_binary BWD_texture_compression_tsrtc2 "
        "BWD_texture_stream2 EXT_clip_control EXT_color_buffer_half_float EXT_debug_label "
        "EXT_multisampled_render_to_texture EXT_robustness EXT_shader_framebuffer_fetch "
        "EXT_texture_sRGB_decode "
        "EXT_tsrtc_sRGB KHR_blend_equation_advanced KHR_blend_equation_advanced_coherent KHR_debug "
        "KHR_no_error "
        "KHR_texture_compression_astc_ldr NV_read_depth NV_read_depth_stencil NV_read_stencil "
        "OES_draw_elements_base_vertex"},
    {3, 31,
        "EXT_blend_func_extended EXT_color_buffer_float EXT_draw_buffers_indexed EXT_sRGB_write_control "
        "EXT_shader_pixel_local_storage EXT_shader_pixel_local_storage2 OES_sample_shading "
        "OES_sample_variables "
        "OES_shader_multisample_interpolation OVR_multiview OVR_multiview2 "
        "OVR_multiview_multisampled_render_to_texture"},
    {31, 31,
        "BWD_clear_texture BWD_ray_tracing EXT_buffer_storage EXT_copy_image EXT_geometry_point_size "
        "EXT_geometry_shader EXT_gpu_shader5 EXT_primitive_bounding_box EXT_shader_io_blocks "
        "EXT_sparse_texture "
        "EXT_tessellation_shader EXT_texture_border_clamp EXT_texture_buffer EXT_texture_cube_map_array "
        "EXT_texture_norm16 EXT_viewport_array KHR_shader_subgroup OES_shader_image_atomic "
        "OES_texture_buffer "
        "OES_texture_cube_map_array OES_texture_stencil8 OES_texture_storage_multisample_2d_array"},
};

constexpr Need needTable[] = {
    {1, 1, nullptr, "GL_OES_byte_coordinates"},
    {1, 1, nullptr, "GL_OES_compressed_paletted_texture"},
    {1, 1, nullptr, "GL_OES_fixed_point"},
    {1, 1, nullptr, "GL_OES_matrix_get"},
    {1, 1, nullptr, "GL_OES_point_size_array"},
    {1, 1, nullptr, "GL_OES_point_sprite"},
    {1, 1, nullptr, "GL_OES_read_format"},
    {1, 1, nullptr, "GL_OES_single_precision"},
    {1, 1, "GL_OES_rgb8_rgba8", "GL_OES_framebuffer_object"},
    {1, 1, "GL_OES_depth24", "GL_OES_framebuffer_object"},
    {1, 1, "GL_OES_stencil8", "GL_OES_framebuffer_object"},
    {1, 1, "GL_OES_packed_depth_stencil", "GL_OES_framebuffer_object"},
    {1, 1, "GL_OES_surfaceless_context", "GL_OES_framebuffer_object"},
    {1, 1, "GL_OES_extended_matrix_palette", "GL_OES_matrix_palette"},
    {1, 31, "GL_OES_EGL_image_external", "GL_OES_EGL_image"},
    {2, 2, "GL_BWD_program_binary", "GL_OES_get_program_binary"},
    {2, 2, "GL_EXT_color_buffer_half_float", "GL_OES_texture_half_float"},
    {2, 2, "GL_EXT_shadow_samplers", "GL_OES_depth_texture"},
    {2, 2, "GL_OES_depth_texture_cube_map", "GL_OES_depth_texture"},
    {2, 2, "GL_EXT_tsrtc_sRGB", "GL_EXT_sRGB"},
    {2, 2, "GL_EXT_texture_sRGB_decode", "GL_EXT_sRGB"},
    {2, 2, "GL_APPLE_copy_texture_levels", "GL_EXT_texture_storage"},
    {2, 31, "GL_EXT_tsrtc_sRGB", "GL_BWD_texture_compression_tsrtc"},
    {2, 31, "GL_KHR_blend_equation_advanced_coherent", "GL_KHR_blend_equation_advanced"},
    {3, 31, "GL_EXT_shader_pixel_local_storage2", "GL_EXT_shader_pixel_local_storage"},
    {3, 31, "GL_OES_shader_multisample_interpolation", "GL_OES_sample_variables"},
    {3, 31, "GL_OVR_multiview2", "GL_OVR_multiview"},
    {3, 31, "GL_OVR_multiview_multisampled_render_to_texture", "GL_OVR_multiview"},
    {3, 31, "GL_OVR_multiview_multisampled_render_to_texture", "GL_EXT_multisampled_render_to_texture"},
    {31, 31, "GL_EXT_geometry_point_size", "GL_EXT_geometry_shader"},
    {31, 31, "GL_EXT_geometry_shader", "GL_EXT_shader_io_blocks"},
    {31, 31, "GL_EXT_tessellation_shader", "GL_EXT_shader_io_blocks"},
    {31, 31, "GL_EXT_texture_cube_map_array", "GL_EXT_geometry_shader"},
    {31, 31, "GL_OES_texture_cube_map_array", "GL_EXT_geometry_shader"},
    {31, 31, "GL_EXT_viewport_array", "GL_EXT_geometry_shader"},
};

constexpr const char* compressed = "compressed_texture_format";
constexpr FormatRange formatTable[] = {
    {compressed, 1, 2, 0x8B90, 0x8B99, {"GL_OES_compressed_paletted_texture"}},
    {compressed, 1, 31, 0x83F0, 0x83F1, {"GL_EXT_texture_compression_dxt1"}},
    {compressed, 1, 31, 0x8C00, 0x8C03, {"GL_BWD_texture_compression_tsrtc"}},
    {compressed, 1, 31, 0x8D64, 0x8D64, {"GL_OES_compressed_ETC1_RGB8_texture"}},
    {compressed, 2, 31, 0x9137, 0x9138, {"GL_BWD_texture_compression_tsrtc2"}},
    {compressed, 2, 31, 0x8A54, 0x8A57, {"GL_EXT_tsrtc_sRGB"}},
    {compressed, 2, 31, 0x93F0, 0x93F1, {"GL_EXT_tsrtc_sRGB", "GL_BWD_texture_compression_tsrtc2"}},
    {compressed, 3, 31, 0x9270, 0x9279, {}},
    {compressed, 2, 31, 0x93B0, 0x93BD, {"GL_KHR_texture_compression_astc_ldr"}},
    {compressed, 2, 31, 0x93D0, 0x93DD, {"GL_KHR_texture_compression_astc_ldr"}},
    {"shader_binary_format", 2, 31, 0x8C0A, 0x8C0A, {"GL_BWD_shader_binary"}},
    {"program_binary_format", 3, 31, 0x9130, 0x9130, {}},
};

std::set<std::string> words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

} // namespace

const std::span<const Limit> limits = limitTable;
const std::span<const Order> neverAbove = orderTable;
const std::span<const Need> needs = needTable;
const std::span<const FormatRange> formatRanges = formatTable;
const std::set<std::string> requiredFormats =
    words("R8 RG8 RGB8 RGB565 RGBA4 RGB5_A1 RGBA8 RGB10_A2 SRGB8_ALPHA8 "
          "DEPTH_COMPONENT16 DEPTH_COMPONENT24 DEPTH_COMPONENT32F DEPTH24_STENCIL8 DEPTH32F_STENCIL8 "
          "STENCIL_INDEX8");

std::optional<long long> wholeNumber(const std::string& text)
{
    long long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

bool isListKey(const std::string& path)
{
    return path.ends_with("_format") ? !path.starts_with("implementation_")
                                     : path.starts_with("internal_format/");
}

bool isCatalogued(const std::string& extension)
{
    for (std::uint32_t code = 1; code <= catalogue::esExtensionCount; ++code)
        if (extension == catalogue::esExtensionName(code, catalogue::Prefix::With))
            return true;
    return false;
}

bool fitsVersion(const std::string& extension, int version)
{
    return std::any_of(std::begin(extensionTable), std::end(extensionTable), [&](const Span& span) {
        return version >= span.first && version <= span.last && extension.starts_with("GL_")
            && words(span.names).contains(extension.substr(3));
    });
}

bool isIntegerFormat(const std::string& internalFormat)
{
    static const auto formats =
        words("R8I R8UI R16I R16UI R32I R32UI RG8I RG8UI RG16I RG16UI RG32I RG32UI RGBA8I "
              "RGBA8UI RGB10_A2UI RGBA16I RGBA16UI RGBA32I RGBA32UI");
    return formats.contains(internalFormat);
}

bool isRenderableFormat(const std::string& internalFormat)
{
    static const auto floats = words("R16F RG16F RGBA16F R32F RG32F RGBA32F R11F_G11F_B10F");
    return requiredFormats.contains(internalFormat) || floats.contains(internalFormat);
}

} // namespace rules
