#include "GlEnumerants.h"
#include "KeyIndex.h"
#include "KeyTables.h"

#include <map>
#include <stdexcept>

namespace {

using enum KeyKind;
using gl::EsVersion;
using gl::EsVersionSpan;

constexpr EsVersionSpan everyVersion{};
constexpr EsVersionSpan fixedFunction{EsVersion::Es11, EsVersion::Es11};
constexpr EsVersionSpan shaders{EsVersion::Es20, EsVersion::Es32};

ESCapabilityKey part(const char* name, KeyKind kind)
{
    return ESCapabilityKey{0, {name}, {name}, true, {}, kind, everyVersion};
}

ESCapabilityKey row(const char* xmlName, const char* displayName, KeyKind kind, const EsVersionSpan& versions)
{
    const std::optional<std::int32_t> value = gl::enumerantValue(displayName);
    if (!value)
        throw std::logic_error(std::string("unknown capability ") + displayName);
    std::vector<ESCapabilityKey> parts;
    if (kind == Range)
        parts = {part("min", kind), part("max", kind)};
    return ESCapabilityKey{static_cast<std::uint32_t>(*value), {xmlName}, {displayName}, kind != List,
        std::move(parts), kind, versions};
}

ESCapabilityKey viewportDims()
{
    ESCapabilityKey key = row("max_viewport_dims", "GL_MAX_VIEWPORT_DIMS", Size, everyVersion);
    key.children = {part("width", Size), part("height", Size)};
    return key;
}

std::vector<ESCapabilityKey> makeRows()
{
    return {
        row("aliased_point_size_range", "GL_ALIASED_POINT_SIZE_RANGE", Range, everyVersion),
        row("aliased_line_width_range", "GL_ALIASED_LINE_WIDTH_RANGE", Range, everyVersion),
        row("max_texture_size", "GL_MAX_TEXTURE_SIZE", Size, everyVersion),
        row("max_combined_texture_image_units", "GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS", Count, shaders),
        // 1.1 has cube maps and renderbuffers by extensions.
        row("max_cube_map_texture_size", "GL_MAX_CUBE_MAP_TEXTURE_SIZE", Size, everyVersion),
        row("max_fragment_uniform_vectors", "GL_MAX_FRAGMENT_UNIFORM_VECTORS", Count, shaders),
        row("max_renderbuffer_size", "GL_MAX_RENDERBUFFER_SIZE", Size, everyVersion),
        row("max_varying_vectors", "GL_MAX_VARYING_VECTORS", Count, shaders),
        row("max_vertex_attribs", "GL_MAX_VERTEX_ATTRIBS", Count, shaders),
        row("max_vertex_uniform_vectors", "GL_MAX_VERTEX_UNIFORM_VECTORS", Count, shaders),
        row("max_vertex_texture_image_units", "GL_MAX_VERTEX_TEXTURE_IMAGE_UNITS", Count, shaders),
        row("shader_compiler", "GL_SHADER_COMPILER", Boolean, shaders),
        viewportDims(),
        row("sample_buffers", "GL_SAMPLE_BUFFERS", Count, everyVersion),
        row("samples", "GL_SAMPLES", Count, everyVersion),
        row("subpixel_bits", "GL_SUBPIXEL_BITS", Count, everyVersion),
        // An element holds one value, the enumerant names the list: hence singular and plural.
        row("shader_binary_format", "GL_SHADER_BINARY_FORMATS", List, shaders),
        row("compressed_texture_format", "GL_COMPRESSED_TEXTURE_FORMATS", List, everyVersion),
        row("implementation_color_read_type", "GL_IMPLEMENTATION_COLOR_READ_TYPE", Enumerant, everyVersion),
        row("implementation_color_read_format", "GL_IMPLEMENTATION_COLOR_READ_FORMAT", Enumerant,
            everyVersion),
        row("smooth_point_size_range", "GL_SMOOTH_POINT_SIZE_RANGE", Range, fixedFunction),
        row("smooth_line_width_range", "GL_SMOOTH_LINE_WIDTH_RANGE", Range, fixedFunction),
        row("max_lights", "GL_MAX_LIGHTS", Count, fixedFunction),
        row("max_clip_planes", "GL_MAX_CLIP_PLANES", Count, fixedFunction),
        row("max_modelview_stack_depth", "GL_MAX_MODELVIEW_STACK_DEPTH", Count, fixedFunction),
        row("max_projection_stack_depth", "GL_MAX_PROJECTION_STACK_DEPTH", Count, fixedFunction),
        row("max_texture_stack_depth", "GL_MAX_TEXTURE_STACK_DEPTH", Count, fixedFunction),
        row("max_texture_units", "GL_MAX_TEXTURE_UNITS", Count, fixedFunction),
    };
}

ESCapabilityKeyNode nodeOf(const ESCapabilityKey& key)
{
    ESCapabilityKeyNode node{key, {}};
    for (const ESCapabilityKey& child : key.children)
        node.children.push_back(nodeOf(child));
    return node;
}

struct Tree {
    Tree()
    {
        for (const ESCapabilityKey& key : makeRows())
            roots.push_back(nodeOf(key));
        for (const ESCapabilityKeyNode& root : roots)
            index(root);
    }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    void index(const ESCapabilityKeyNode& node)
    {
        byDisplayName.emplace(node.key.displayName, &node);
        byXmlName.emplace(node.key.xmlName, &node);
        for (const ESCapabilityKeyNode& child : node.children)
            index(child);
    }

    std::vector<ESCapabilityKeyNode> roots;
    std::map<ESCapabilityKey::DisplayName, const ESCapabilityKeyNode*> byDisplayName;
    std::map<ESCapabilityKey::XMLName, const ESCapabilityKeyNode*> byXmlName;
};

const Tree& tree()
{
    static const Tree instance;
    return instance;
}

} // namespace

bool findKeyNode(const ESCapabilityKey::DisplayName& name, ESCapabilityKeyNode* node)
{
    return copyRow(tree().byDisplayName, name, node);
}

bool findKeyNode(const ESCapabilityKey::XMLName& name, ESCapabilityKeyNode* node)
{
    return copyRow(tree().byXmlName, name, node);
}

void visitESCapabilityKeyNodes(const std::function<void(const ESCapabilityKeyNode&)>& visit)
{
    for (const ESCapabilityKeyNode& root : tree().roots)
        visit(root);
}
