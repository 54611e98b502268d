#include "LimitKeys.h"

#include "GlEnumerants.h"

#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <stdexcept>

namespace {

using enum KeyKind;
using gl::EsVersion;
using gl::EsVersionSpan;

constexpr EsVersionSpan everyVersion{};
constexpr EsVersionSpan since20{EsVersion::Es20, EsVersion::Es32};
constexpr EsVersionSpan since30{EsVersion::Es30, EsVersion::Es32};
constexpr EsVersionSpan since31{EsVersion::Es31, EsVersion::Es32};

/// By which letters extensions end what they add, the common ones first.
constexpr std::array<std::string_view, 12> suffixes{
    "_KHR", "_OES", "_EXT", "_OVR", "_ARM", "_IMG", "_QCOM", "_NV", "_ANGLE", "_APPLE", "_AMD", "_INTEL"};

struct Group {
    KeyKind kind;
    EsVersionSpan versions;
    std::span<const std::string_view> enumerants;
};

constexpr std::array<std::string_view, 2> fixedFunctionCounts{
    "GL_MAX_PALETTE_MATRICES_OES", "GL_MAX_VERTEX_UNITS_OES"};
constexpr std::array<std::string_view, 1> realsOfAll{"GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT"};
constexpr std::array<std::string_view, 7> counts20{"GL_MAX_TEXTURE_IMAGE_UNITS", "GL_MAX_DRAW_BUFFERS",
    "GL_MAX_COLOR_ATTACHMENTS", "GL_MAX_SAMPLES", "GL_MAX_DUAL_SOURCE_DRAW_BUFFERS_EXT", "GL_MAX_VIEWS_OVR",
    "GL_MAX_SHADER_COMPILER_THREADS_KHR"};
constexpr std::array<std::string_view, 1> sizes20{"GL_MAX_3D_TEXTURE_SIZE"};
constexpr std::array<std::string_view, 34> counts30{"GL_MAX_ARRAY_TEXTURE_LAYERS", "GL_MAX_ELEMENT_INDEX",
    "GL_MAX_ELEMENTS_INDICES", "GL_MAX_ELEMENTS_VERTICES", "GL_MAX_VERTEX_UNIFORM_COMPONENTS",
    "GL_MAX_VERTEX_UNIFORM_BLOCKS", "GL_MAX_VERTEX_OUTPUT_COMPONENTS", "GL_MAX_FRAGMENT_UNIFORM_COMPONENTS",
    "GL_MAX_FRAGMENT_UNIFORM_BLOCKS", "GL_MAX_FRAGMENT_INPUT_COMPONENTS", "GL_MAX_VARYING_COMPONENTS",
    "GL_MIN_PROGRAM_TEXEL_OFFSET", "GL_MAX_PROGRAM_TEXEL_OFFSET", "GL_MAX_UNIFORM_BUFFER_BINDINGS",
    "GL_MAX_UNIFORM_BLOCK_SIZE", "GL_UNIFORM_BUFFER_OFFSET_ALIGNMENT", "GL_MAX_COMBINED_UNIFORM_BLOCKS",
    "GL_MAX_COMBINED_VERTEX_UNIFORM_COMPONENTS", "GL_MAX_COMBINED_FRAGMENT_UNIFORM_COMPONENTS",
    "GL_MAX_TRANSFORM_FEEDBACK_INTERLEAVED_COMPONENTS", "GL_MAX_TRANSFORM_FEEDBACK_SEPARATE_ATTRIBS",
    "GL_MAX_TRANSFORM_FEEDBACK_SEPARATE_COMPONENTS", "GL_MAX_SERVER_WAIT_TIMEOUT",
    "GL_MAX_SHADER_PIXEL_LOCAL_STORAGE_SIZE_EXT", "GL_MAX_SHADER_PIXEL_LOCAL_STORAGE_FAST_SIZE_EXT",
    "GL_MAX_VIEWPORTS_OES", "GL_MAX_CLIP_DISTANCES_EXT", "GL_MAX_CULL_DISTANCES_EXT",
    "GL_MAX_COMBINED_CLIP_AND_CULL_DISTANCES_EXT", "GL_MAX_DEBUG_MESSAGE_LENGTH",
    "GL_MAX_DEBUG_LOGGED_MESSAGES", "GL_MAX_DEBUG_GROUP_STACK_DEPTH", "GL_MAX_LABEL_LENGTH",
    "GL_MAX_SPARSE_ARRAY_TEXTURE_LAYERS_EXT"};
constexpr std::array<std::string_view, 1> reals30{"GL_MAX_TEXTURE_LOD_BIAS"};
constexpr std::array<std::string_view, 1> lists30{"GL_PROGRAM_BINARY_FORMATS"};
constexpr std::array<std::string_view, 43> counts31{"GL_MAX_VERTEX_ATTRIB_RELATIVE_OFFSET",
    "GL_MAX_VERTEX_ATTRIB_BINDINGS", "GL_MAX_VERTEX_ATTRIB_STRIDE", "GL_MAX_SAMPLE_MASK_WORDS",
    "GL_MAX_COLOR_TEXTURE_SAMPLES", "GL_MAX_DEPTH_TEXTURE_SAMPLES", "GL_MAX_INTEGER_SAMPLES",
    "GL_MAX_FRAMEBUFFER_SAMPLES", "GL_SHADER_STORAGE_BUFFER_OFFSET_ALIGNMENT",
    "GL_MIN_PROGRAM_TEXTURE_GATHER_OFFSET", "GL_MAX_PROGRAM_TEXTURE_GATHER_OFFSET",
    "GL_MAX_COMPUTE_WORK_GROUP_INVOCATIONS", "GL_MAX_COMPUTE_UNIFORM_BLOCKS",
    "GL_MAX_COMPUTE_TEXTURE_IMAGE_UNITS", "GL_MAX_COMPUTE_SHARED_MEMORY_SIZE",
    "GL_MAX_COMPUTE_UNIFORM_COMPONENTS", "GL_MAX_COMPUTE_ATOMIC_COUNTER_BUFFERS",
    "GL_MAX_COMPUTE_ATOMIC_COUNTERS", "GL_MAX_COMPUTE_IMAGE_UNIFORMS", "GL_MAX_COMPUTE_SHADER_STORAGE_BLOCKS",
    "GL_MAX_COMBINED_COMPUTE_UNIFORM_COMPONENTS", "GL_MAX_UNIFORM_LOCATIONS",
    "GL_MAX_ATOMIC_COUNTER_BUFFER_BINDINGS", "GL_MAX_ATOMIC_COUNTER_BUFFER_SIZE",
    "GL_MAX_VERTEX_ATOMIC_COUNTER_BUFFERS", "GL_MAX_VERTEX_ATOMIC_COUNTERS", "GL_MAX_VERTEX_IMAGE_UNIFORMS",
    "GL_MAX_VERTEX_SHADER_STORAGE_BLOCKS", "GL_MAX_FRAGMENT_ATOMIC_COUNTER_BUFFERS",
    "GL_MAX_FRAGMENT_ATOMIC_COUNTERS", "GL_MAX_FRAGMENT_IMAGE_UNIFORMS",
    "GL_MAX_FRAGMENT_SHADER_STORAGE_BLOCKS", "GL_MAX_COMBINED_ATOMIC_COUNTER_BUFFERS",
    "GL_MAX_COMBINED_ATOMIC_COUNTERS", "GL_MAX_IMAGE_UNITS", "GL_MAX_COMBINED_IMAGE_UNIFORMS",
    "GL_MAX_SHADER_STORAGE_BUFFER_BINDINGS", "GL_MAX_SHADER_STORAGE_BLOCK_SIZE",
    "GL_MAX_COMBINED_SHADER_STORAGE_BLOCKS", "GL_MAX_COMBINED_SHADER_OUTPUT_RESOURCES",
    "GL_TEXTURE_BUFFER_OFFSET_ALIGNMENT", "GL_MAX_TEXTURE_BUFFER_SIZE", "GL_MAX_FRAMEBUFFER_LAYERS"};
constexpr std::array<std::string_view, 2> sizes31{"GL_MAX_FRAMEBUFFER_WIDTH", "GL_MAX_FRAMEBUFFER_HEIGHT"};
/// What 3.2 has, and 3.1 by extensions.
constexpr std::array<std::string_view, 38> counts32{"GL_FRAGMENT_INTERPOLATION_OFFSET_BITS",
    "GL_MAX_TESS_GEN_LEVEL", "GL_MAX_PATCH_VERTICES", "GL_MAX_TESS_PATCH_COMPONENTS",
    "GL_MAX_TESS_CONTROL_UNIFORM_COMPONENTS", "GL_MAX_TESS_CONTROL_TEXTURE_IMAGE_UNITS",
    "GL_MAX_TESS_CONTROL_OUTPUT_COMPONENTS", "GL_MAX_TESS_CONTROL_TOTAL_OUTPUT_COMPONENTS",
    "GL_MAX_TESS_CONTROL_INPUT_COMPONENTS", "GL_MAX_TESS_CONTROL_UNIFORM_BLOCKS",
    "GL_MAX_TESS_CONTROL_ATOMIC_COUNTER_BUFFERS", "GL_MAX_TESS_CONTROL_ATOMIC_COUNTERS",
    "GL_MAX_TESS_CONTROL_IMAGE_UNIFORMS", "GL_MAX_TESS_CONTROL_SHADER_STORAGE_BLOCKS",
    "GL_MAX_COMBINED_TESS_CONTROL_UNIFORM_COMPONENTS", "GL_MAX_TESS_EVALUATION_UNIFORM_COMPONENTS",
    "GL_MAX_TESS_EVALUATION_TEXTURE_IMAGE_UNITS", "GL_MAX_TESS_EVALUATION_OUTPUT_COMPONENTS",
    "GL_MAX_TESS_EVALUATION_INPUT_COMPONENTS", "GL_MAX_TESS_EVALUATION_UNIFORM_BLOCKS",
    "GL_MAX_TESS_EVALUATION_ATOMIC_COUNTER_BUFFERS", "GL_MAX_TESS_EVALUATION_ATOMIC_COUNTERS",
    "GL_MAX_TESS_EVALUATION_IMAGE_UNIFORMS", "GL_MAX_TESS_EVALUATION_SHADER_STORAGE_BLOCKS",
    "GL_MAX_COMBINED_TESS_EVALUATION_UNIFORM_COMPONENTS", "GL_MAX_GEOMETRY_UNIFORM_COMPONENTS",
    "GL_MAX_GEOMETRY_UNIFORM_BLOCKS", "GL_MAX_GEOMETRY_INPUT_COMPONENTS", "GL_MAX_GEOMETRY_OUTPUT_COMPONENTS",
    "GL_MAX_GEOMETRY_OUTPUT_VERTICES", "GL_MAX_GEOMETRY_TOTAL_OUTPUT_COMPONENTS",
    "GL_MAX_GEOMETRY_TEXTURE_IMAGE_UNITS", "GL_MAX_GEOMETRY_SHADER_INVOCATIONS",
    "GL_MAX_GEOMETRY_ATOMIC_COUNTER_BUFFERS", "GL_MAX_GEOMETRY_ATOMIC_COUNTERS",
    "GL_MAX_GEOMETRY_IMAGE_UNIFORMS", "GL_MAX_GEOMETRY_SHADER_STORAGE_BLOCKS",
    "GL_MAX_COMBINED_GEOMETRY_UNIFORM_COMPONENTS"};
constexpr std::array<std::string_view, 3> reals32{"GL_MIN_FRAGMENT_INTERPOLATION_OFFSET",
    "GL_MAX_FRAGMENT_INTERPOLATION_OFFSET", "GL_MULTISAMPLE_LINE_WIDTH_GRANULARITY"};
constexpr std::array<std::string_view, 1> enumerants32{"GL_LAYER_PROVOKING_VERTEX"};
constexpr std::array<std::string_view, 1> booleans32{"GL_PRIMITIVE_RESTART_FOR_PATCHES_SUPPORTED"};
constexpr std::array<std::string_view, 1> ranges32{"GL_MULTISAMPLE_LINE_WIDTH_RANGE"};
/// One value for each of three dimensions.
constexpr std::array<std::string_view, 2> triples31{
    "GL_MAX_COMPUTE_WORK_GROUP_COUNT", "GL_MAX_COMPUTE_WORK_GROUP_SIZE"};

constexpr std::array groups{
    Group{Count, {EsVersion::Es11, EsVersion::Es11}, fixedFunctionCounts},
    Group{Real, everyVersion, realsOfAll},
    Group{Count, since20, counts20},
    Group{Size, since20, sizes20},
    Group{Count, since30, counts30},
    Group{Real, since30, reals30},
    Group{List, since30, lists30},
    Group{Count, since31, counts31},
    Group{Size, since31, sizes31},
    Group{Count, since31, triples31},
    Group{Count, since31, counts32},
    Group{Real, since31, reals32},
    Group{Range, since31, ranges32},
    Group{Enumerant, since31, enumerants32},
    Group{Boolean, since31, booleans32},
};

std::string elementOf(std::string_view enumerant, KeyKind kind)
{
    std::string_view name = enumerant.substr(std::string_view("GL_").size());
    for (const std::string_view suffix : suffixes) {
        if (name.ends_with(suffix)) {
            name.remove_suffix(suffix.size());
            break;
        }
    }
    // An element holds one value, the enumerant names the list.
    if (kind == List)
        name.remove_suffix(1);
    std::string element(name);
    std::transform(element.begin(), element.end(), element.begin(),
        [](char letter) { return letter >= 'A' && letter <= 'Z' ? char(letter - 'A' + 'a') : letter; });
    return element;
}

std::vector<ESCapabilityKey> partsOf(std::string_view enumerant, KeyKind kind)
{
    std::vector<ESCapabilityKey> parts;
    const auto add = [&](std::initializer_list<const char*> names) {
        for (const char* name : names)
            parts.push_back({0, {name}, {name}, true, {}, kind, everyVersion});
    };
    if (kind == Range)
        add({"min", "max"});
    else if (std::find(triples31.begin(), triples31.end(), enumerant) != triples31.end())
        add({"x", "y", "z"});
    return parts;
}

struct Table {
    Table()
    {
        for (const Group& group : groups) {
            for (const std::string_view enumerant : group.enumerants)
                add(enumerant, group);
        }
        for (const ESCapabilityKey& key : rows) {
            byElement.emplace(key.xmlName.text, &key);
            byEnumerant.emplace(key.displayName.text, &key);
        }
    }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    void add(std::string_view enumerant, const Group& group)
    {
        const std::optional<std::int32_t> value = gl::enumerantValue(enumerant);
        if (!value)
            throw std::logic_error("unknown limit " + std::string(enumerant));
        rows.push_back(
            {static_cast<std::uint32_t>(*value), {elementOf(enumerant, group.kind)}, {std::string(enumerant)},
                group.kind != List, partsOf(enumerant, group.kind), group.kind, group.versions});
    }

    std::vector<ESCapabilityKey> rows;
    std::map<std::string, const ESCapabilityKey*> byElement;
    std::map<std::string, const ESCapabilityKey*> byEnumerant;
};

const Table& table()
{
    static const Table instance;
    return instance;
}

template <typename Name>
std::optional<ESCapabilityKey> find(
    const Name& name, const std::map<std::string, const ESCapabilityKey*>& limits)
{
    ESCapabilityKeyNode node;
    if (findKeyNode(name, &node))
        return node.key.value != 0 ? std::optional(node.key) : std::nullopt;
    const auto found = limits.find(name.text);
    return found != limits.end() ? std::optional(*found->second) : std::nullopt;
}

} // namespace

void visitLimitKeys(const std::function<void(const ESCapabilityKey&)>& visit)
{
    for (const ESCapabilityKey& key : table().rows)
        visit(key);
}

std::optional<ESCapabilityKey> findCapability(const ESCapabilityKey::XMLName& name)
{
    return find(name, table().byElement);
}

std::optional<ESCapabilityKey> findCapability(const ESCapabilityKey::DisplayName& name)
{
    return find(name, table().byEnumerant);
}

std::optional<std::uint32_t> capabilityEnumerant(std::string_view element)
{
    if (const auto key = findCapability(ESCapabilityKey::XMLName{std::string(element)}))
        return key->value;
    std::string name = "GL_";
    for (const char letter : element) {
        if (letter >= 'A' && letter <= 'Z')
            return std::nullopt;
        name += letter >= 'a' && letter <= 'z' ? char(letter - 'a' + 'A') : letter;
    }
    std::optional<std::int32_t> value = gl::enumerantValue(name);
    for (auto suffix = suffixes.begin(); !value && suffix != suffixes.end(); ++suffix)
        value = gl::enumerantValue(name + std::string(*suffix));
    return value ? std::optional(static_cast<std::uint32_t>(*value)) : std::nullopt;
}
