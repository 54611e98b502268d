#include "GlEnumerants.h"
#include "KeyTables.h"

#include <map>
#include <stdexcept>

namespace {

enum class Shape { Scalar, List, Range, Size };

ESCapabilityKey part(const char* name)
{
    return ESCapabilityKey{0, {name}, {name}, true, {}};
}

std::vector<ESCapabilityKey> partsOf(Shape shape)
{
    switch (shape) {
    case Shape::Range:
        return {part("min"), part("max")};
    case Shape::Size:
        return {part("width"), part("height")};
    default:
        return {};
    }
}

ESCapabilityKey row(const char* xmlName, const char* displayName, Shape shape = Shape::Scalar)
{
    const std::optional<std::int32_t> value = gl::enumerantValue(displayName);
    if (!value)
        throw std::logic_error(std::string("unknown capability ") + displayName);
    return ESCapabilityKey{
        static_cast<std::uint32_t>(*value), {xmlName}, {displayName}, shape != Shape::List, partsOf(shape)};
}

std::vector<ESCapabilityKey> makeRows()
{
    return {
        row("aliased_point_size_range", "GL_ALIASED_POINT_SIZE_RANGE", Shape::Range),
        row("aliased_line_width_range", "GL_ALIASED_LINE_WIDTH_RANGE", Shape::Range),
        row("max_texture_size", "GL_MAX_TEXTURE_SIZE"),
        row("max_combined_texture_image_units", "GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS"),
        row("max_cube_map_texture_size", "GL_MAX_CUBE_MAP_TEXTURE_SIZE"),
        row("max_fragment_uniform_vectors", "GL_MAX_FRAGMENT_UNIFORM_VECTORS"),
        row("max_renderbuffer_size", "GL_MAX_RENDERBUFFER_SIZE"),
        row("max_varying_vectors", "GL_MAX_VARYING_VECTORS"),
        row("max_vertex_attribs", "GL_MAX_VERTEX_ATTRIBS"),
        row("max_vertex_uniform_vectors", "GL_MAX_VERTEX_UNIFORM_VECTORS"),
        row("max_vertex_texture_image_units", "GL_MAX_VERTEX_TEXTURE_IMAGE_UNITS"),
        row("shader_compiler", "GL_SHADER_COMPILER"),
        row("max_viewport_dims", "GL_MAX_VIEWPORT_DIMS", Shape::Size),
        row("sample_buffers", "GL_SAMPLE_BUFFERS"),
        row("samples", "GL_SAMPLES"),
        row("subpixel_bits", "GL_SUBPIXEL_BITS"),
        // An element holds one value, the enumerant names the list: hence singular and plural.
        row("shader_binary_format", "GL_SHADER_BINARY_FORMATS", Shape::List),
        row("compressed_texture_format", "GL_COMPRESSED_TEXTURE_FORMATS", Shape::List),
        row("implementation_color_read_type", "GL_IMPLEMENTATION_COLOR_READ_TYPE"),
        row("implementation_color_read_format", "GL_IMPLEMENTATION_COLOR_READ_FORMAT"),
        row("smooth_point_size_range", "GL_SMOOTH_POINT_SIZE_RANGE", Shape::Range),
        row("smooth_line_width_range", "GL_SMOOTH_LINE_WIDTH_RANGE", Shape::Range),
        row("max_lights", "GL_MAX_LIGHTS"),
        row("max_clip_planes", "GL_MAX_CLIP_PLANES"),
        row("max_modelview_stack_depth", "GL_MAX_MODELVIEW_STACK_DEPTH"),
        row("max_projection_stack_depth", "GL_MAX_PROJECTION_STACK_DEPTH"),
        row("max_texture_stack_depth", "GL_MAX_TEXTURE_STACK_DEPTH"),
        row("max_texture_units", "GL_MAX_TEXTURE_UNITS"),
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

template <typename Index, typename Name>
bool find(const Index& index, const Name& name, ESCapabilityKeyNode* node)
{
    const auto found = index.find(name);
    if (found == index.end())
        return false;
    *node = *found->second;
    return true;
}

} // namespace

bool findKeyNode(const ESCapabilityKey::DisplayName& name, ESCapabilityKeyNode* node)
{
    return find(tree().byDisplayName, name, node);
}

bool findKeyNode(const ESCapabilityKey::XMLName& name, ESCapabilityKeyNode* node)
{
    return find(tree().byXmlName, name, node);
}

void visitESCapabilityKeyNodes(const std::function<void(const ESCapabilityKeyNode&)>& visit)
{
    for (const ESCapabilityKeyNode& root : tree().roots)
        visit(root);
}
