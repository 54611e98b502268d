#include "ExtensionCatalogue.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

using namespace catalogue;

TEST(ExtensionCatalogue, codesCountFromOneInTheLibrariesOrder)
{
    EXPECT_STREQ(esExtensionName(1, Prefix::With), "GL_APPLE_copy_texture_levels");
    EXPECT_STREQ(esExtensionName(35, Prefix::Without), "OES_EGL_image");
    EXPECT_STREQ(esExtensionName(100, Prefix::With), "GL_NV_read_depth_stencil");
    EXPECT_STREQ(esExtensionName(132, Prefix::Without), "KHR_shader_subgroup");
    EXPECT_STREQ(hostExtensionName(1), "GL_ARB_imaging");
    EXPECT_STREQ(hostExtensionName(5), "GL_EXT_texture_edge_clamp");
    EXPECT_STREQ(hostExtensionName(642), "GL_NV_internalformat_sample_query");
    for (const std::uint32_t code : {0U, 133U, 0xFFFFFFFFU})
        EXPECT_STREQ(esExtensionName(code, Prefix::With), "<unknown extension>");
    for (const std::uint32_t code : {0U, 643U, 0xFFFFFFFFU})
        EXPECT_STREQ(hostExtensionName(code), "<unknown extension>");
}

TEST(ExtensionCatalogue, namesAreCompleteAndUnique)
{
    std::set<std::string> es;
    for (std::uint32_t code = 1; code <= esExtensionCount; ++code) {
        const std::string name = esExtensionName(code, Prefix::With);
        EXPECT_EQ(name, std::string("GL_") + esExtensionName(code, Prefix::Without));
        es.insert(name);
    }
    EXPECT_EQ(es.size(), 132U);
    std::set<std::string> host;
    for (std::uint32_t code = 1; code <= hostExtensionCount; ++code)
        host.insert(hostExtensionName(code));
    EXPECT_EQ(host.size(), 642U);
}

TEST(ExtensionCatalogue, versions)
{
    EXPECT_STREQ(glVersionName(1), "1.0");
    EXPECT_STREQ(glVersionName(9), "3.0");
    EXPECT_STREQ(glVersionName(19), "4.6");
    EXPECT_STREQ(glVersionName(20), "unknown");
    EXPECT_STREQ(esVersionName(1), "1.1");
    EXPECT_STREQ(esVersionName(5), "3.2");
    EXPECT_STREQ(esVersionName(6), "<Failed to query OpenGL ES version>");
    EXPECT_STREQ(glslVersionName(6, GlslForm::Short), "330");
    EXPECT_STREQ(glslVersionName(13, GlslForm::Long), "GLSL 4.60");
    for (const std::uint32_t code : {0U, 14U}) {
        EXPECT_STREQ(glslVersionName(code, GlslForm::Short), "<Failed to query GLSL version>");
        EXPECT_STREQ(glslVersionName(code, GlslForm::Long), "<Failed to query GLSL version>");
    }
    EXPECT_STREQ(glslEsVersionName(1), "GLSL ES 1.0");
    EXPECT_STREQ(glslEsVersionName(4), "GLSL ES 3.2");
    EXPECT_STREQ(glslEsVersionName(0), "<Failed to query GLSL ES version>");
}
