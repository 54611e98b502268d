#include "EglEnumerants.h"
#include "KeyTables.h"
#include "LimitKeys.h"
#include "Minima.h"

#include <gtest/gtest.h>

namespace {

TEST(KeyTables, apisByVersion)
{
    const std::map<int, std::string> expected{{1, "OpenGL ES 1.1"}, {11, "OpenGL ES 1.1"},
        {2, "OpenGL ES 2.0"}, {20, "OpenGL ES 2.0"}, {3, "OpenGL ES 3.0"}, {30, "OpenGL ES 3.0"},
        {31, "OpenGL ES 3.1"}};
    for (int version = -5; version < 100; ++version) {
        esapi::API api{"untouched", {}};
        const auto found = expected.find(version);
        EXPECT_EQ(esapi::findAPI(version, &api), found != expected.end()) << version;
        EXPECT_EQ(api.displayName, found == expected.end() ? "untouched" : found->second);
    }
    std::vector<esapi::API> inOrder;
    esapi::visitAPIs([&](const esapi::API& api) { inOrder.push_back(api); });
    EXPECT_EQ(inOrder.size(), 4U);
    EXPECT_TRUE(std::is_sorted(inOrder.begin(), inOrder.end()));
}

TEST(KeyTables, everyEglAttributeIsFoundInThreeWays)
{
    std::vector<std::string> names;
    std::vector<std::string> masks;
    visitEGLAttribKeys([&](const EGLAttribKey& key) {
        names.push_back(key.displayName.text);
        if (!key.single)
            masks.push_back(key.displayName.text);
        EGLAttribKey byName;
        EGLAttribKey byPath;
        EGLAttribKey byValue;
        EXPECT_TRUE(findEGLAttribKey(key.displayName, &byName) && byName == key);
        EXPECT_TRUE(findEGLAttribKey(key.xmlPath, &byPath) && byPath == key);
        EXPECT_TRUE(findEGLAttribKey(key.value, &byValue) && byValue == key);
    });
    ASSERT_EQ(names.size(), 27U);
    EXPECT_EQ(names.front(), "EGL_ALPHA_SIZE");
    EXPECT_EQ(names[14], "EGL_MAX_SWAP_INTERVAL");
    EXPECT_EQ(names.back(), "EGL_TRANSPARENT_RED");
    EXPECT_EQ(masks, (std::vector<std::string>{"EGL_RENDERABLE_TYPE", "EGL_SURFACE_TYPE"}));
}

TEST(KeyTables, eglLookUpsAreExact)
{
    EGLAttribKey key;
    ASSERT_TRUE(findEGLAttribKey(std::deque<std::string>{"swap_interval", "min"}, &key));
    EXPECT_EQ(key.displayName.text, "EGL_MIN_SWAP_INTERVAL");
    EXPECT_EQ(key.value, 0x303B);
    const EGLAttribKey before = key;
    for (const std::deque<std::string>& path : std::vector<std::deque<std::string>>{
             {}, {"max_pbuffer"}, {"min"}, {"alpha_size", ""}, {"swap_interval", "min", "x"}, {"Level"}})
        EXPECT_FALSE(findEGLAttribKey(path, &key));
    EXPECT_FALSE(findEGLAttribKey(EGLAttribKey::DisplayName{"egl_level"}, &key));
    EXPECT_FALSE(findEGLAttribKey(EGLAttribKey::DisplayName{"EGL_CONFIG_ID"}, &key));
    EXPECT_FALSE(findEGLAttribKey(0, &key));
    EXPECT_EQ(key, before);
    EXPECT_EQ(egl::enumerantValue("EGL_DONT_CARE"), -1);
    EXPECT_EQ(egl::enumerantValue("EGL_OPENGL_ES3_BIT"), 64);
    EXPECT_EQ(egl::enumerantValue("EGL_NON"), std::nullopt);
}

TEST(KeyTables, everyCapabilityIsFoundByBothNames)
{
    std::vector<std::string> names;
    std::vector<std::string> lists;
    std::size_t compounds = 0;
    visitESCapabilityKeyNodes([&](const ESCapabilityKeyNode& node) {
        names.push_back(node.key.xmlName.text);
        if (!node.key.single)
            lists.push_back(node.key.displayName.text);
        compounds += node.children.empty() ? 0 : 1;
        EXPECT_NE(node.key.value, 0U);
        EXPECT_EQ(node.children.size(), node.key.children.size());
        ESCapabilityKeyNode found;
        EXPECT_TRUE(findKeyNode(node.key.xmlName, &found) && found == node);
        EXPECT_TRUE(findKeyNode(node.key.displayName, &found) && found == node);
    });
    ASSERT_EQ(names.size(), 28U);
    EXPECT_EQ(names.front(), "aliased_point_size_range");
    EXPECT_EQ(names.back(), "max_texture_units");
    EXPECT_EQ(lists, (std::vector<std::string>{"GL_SHADER_BINARY_FORMATS", "GL_COMPRESSED_TEXTURE_FORMATS"}));
    EXPECT_EQ(compounds, 5U);
}

TEST(KeyTables, capabilityLookUpsCoverTheWholeTree)
{
    ESCapabilityKeyNode node;
    ASSERT_TRUE(findKeyNode(ESCapabilityKey::XMLName{"max_viewport_dims"}, &node));
    EXPECT_EQ(node.key.value, 0x0D3AU);
    ASSERT_EQ(node.children.size(), 2U);
    EXPECT_EQ(node.children[0].key.xmlName.text, "width");
    EXPECT_EQ(node.children[1].key.xmlName.text, "height");
    for (const char* part : {"min", "max", "width", "height"}) {
        ASSERT_TRUE(findKeyNode(ESCapabilityKey::XMLName{part}, &node));
        EXPECT_EQ(node.key.displayName.text, part);
        EXPECT_EQ(node.key.value, 0U);
    }
    EXPECT_FALSE(findKeyNode(ESCapabilityKey::DisplayName{"gl_max_texture_size"}, &node));
    EXPECT_FALSE(findKeyNode(ESCapabilityKey::XMLName{"GL_MAX_TEXTURE_SIZE"}, &node));
    EXPECT_FALSE(findKeyNode(ESCapabilityKey::XMLName{"max_uniform_block_size"}, &node));
    EXPECT_EQ(node.key.xmlName.text, "height");
}

TEST(KeyTables, kindsSayWhatValuesAre)
{
    const auto egl = [](const char* name) {
        EGLAttribKey key;
        EXPECT_TRUE(findEGLAttribKey(EGLAttribKey::DisplayName{name}, &key)) << name;
        return key.kind;
    };
    EXPECT_EQ(egl("EGL_ALPHA_SIZE"), KeyKind::Count);
    EXPECT_EQ(egl("EGL_MAX_PBUFFER_PIXELS"), KeyKind::Size);
    EXPECT_EQ(egl("EGL_NATIVE_RENDERABLE"), KeyKind::Boolean);
    EXPECT_EQ(egl("EGL_NATIVE_VISUAL_TYPE"), KeyKind::Enumerant) << "else EGL_NONE would become a number";
    EXPECT_EQ(egl("EGL_SURFACE_TYPE"), KeyKind::Mask);
    EXPECT_EQ(egl("EGL_CONFORMANT"), KeyKind::Mask) << "though it is single";

    const auto es = [](const char* name) {
        ESCapabilityKeyNode node;
        EXPECT_TRUE(findKeyNode(ESCapabilityKey::XMLName{name}, &node)) << name;
        return node.key.kind;
    };
    EXPECT_EQ(es("max_lights"), KeyKind::Count);
    EXPECT_EQ(es("max_viewport_dims"), KeyKind::Size);
    EXPECT_EQ(es("height"), KeyKind::Size);
    EXPECT_EQ(es("smooth_line_width_range"), KeyKind::Range);
    EXPECT_EQ(es("max"), KeyKind::Range);
    EXPECT_EQ(es("shader_compiler"), KeyKind::Boolean);
    EXPECT_EQ(es("implementation_color_read_type"), KeyKind::Enumerant);
    EXPECT_EQ(es("compressed_texture_format"), KeyKind::List);

    EXPECT_EQ(valueKind(KeyKind::List), ValueKind::Enumerant);
    EXPECT_EQ(valueKind(KeyKind::Mask), ValueKind::Bit);
    EXPECT_EQ(valueKind(KeyKind::Range), ValueKind::Real);
    EXPECT_EQ(valueKind(KeyKind::Size), ValueKind::Integer);
    EXPECT_TRUE(hasNames(ValueKind::Bit));
    EXPECT_FALSE(hasNames(ValueKind::Real));
}

TEST(LimitKeys, goOnWhereTheKeyTableEnds)
{
    std::set<std::string> elements;
    visitLimitKeys([&](const ESCapabilityKey& key) {
        ESCapabilityKeyNode node;
        EXPECT_FALSE(findKeyNode(key.xmlName, &node) || findKeyNode(key.displayName, &node))
            << key.xmlName.text;
        EXPECT_TRUE(elements.insert(key.xmlName.text).second) << key.xmlName.text;
        EXPECT_EQ(findCapability(key.xmlName), key);
        EXPECT_EQ(findCapability(key.displayName), key);
        EXPECT_EQ(capabilityEnumerant(key.xmlName.text), key.value);
        for (const auto version : {gl::EsVersion::Es20, gl::EsVersion::Es30, gl::EsVersion::Es31}) {
            EXPECT_TRUE(!gl::minimum(key.displayName.text, version) || key.versions.contains(version))
                << key.displayName.text;
        }
    });
    const auto kindOf = [](const char* name) {
        return findCapability(ESCapabilityKey::XMLName{name})->kind;
    };
    EXPECT_EQ(kindOf("max_texture_size"), KeyKind::Size);
    EXPECT_EQ(kindOf("max_3d_texture_size"), KeyKind::Size);
    EXPECT_EQ(kindOf("max_texture_lod_bias"), KeyKind::Real);
    EXPECT_EQ(kindOf("program_binary_format"), KeyKind::List);
    EXPECT_EQ(findCapability(ESCapabilityKey::XMLName{"max_compute_work_group_size"})->children.size(), 3U);
    EXPECT_FALSE(findCapability(ESCapabilityKey::XMLName{"width"})) << "a part";
}

TEST(LimitKeys, elementsAreCalledLikeTheirEnumerants)
{
    const std::vector<std::pair<const char*, std::optional<std::uint32_t>>> elements{
        {"compressed_texture_format", 0x86A3}, {"program_binary_format", 0x87FF},
        {"max_texture_max_anisotropy", 0x84FF}, {"max_views", 0x9631}, {"max_clip_planes", 0x0D32},
        {"timestamp", 0x8E28}, {"alpha_bits", 0x0D55}, {"max_nothing", std::nullopt},
        {"internal_format", std::nullopt}, {"Alpha_bits", std::nullopt}, {"", std::nullopt}};
    for (const auto& [element, enumerant] : elements)
        EXPECT_EQ(capabilityEnumerant(element), enumerant) << element;
}

TEST(KeyTables, versionsThatHaveACapability)
{
    const auto hasKey = [](int documentVersion, const char* name) {
        ESCapabilityKeyNode node;
        esapi::API api;
        EXPECT_TRUE(findKeyNode(ESCapabilityKey::XMLName{name}, &node)) << name;
        EXPECT_TRUE(esapi::findAPI(documentVersion, &api)) << documentVersion;
        return node.key.versions.contains(api.esVersion());
    };
    for (const int version : {1, 11, 2, 20, 3, 30, 31}) {
        const bool fixedFunction = version == 1 || version == 11;
        EXPECT_TRUE(hasKey(version, "max_texture_size")) << version;
        EXPECT_TRUE(hasKey(version, "max_viewport_dims")) << version;
        EXPECT_EQ(hasKey(version, "max_lights"), fixedFunction) << version;
        EXPECT_EQ(hasKey(version, "smooth_point_size_range"), fixedFunction) << version;
        EXPECT_EQ(hasKey(version, "max_vertex_attribs"), !fixedFunction) << version;
        EXPECT_EQ(hasKey(version, "shader_binary_format"), !fixedFunction) << version;
    }
    EXPECT_TRUE(hasKey(1, "max_renderbuffer_size")) << "by an extension";
}

} // namespace
