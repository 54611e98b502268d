#include "GlEnumerants.h"

#include <string>

#include <gtest/gtest.h>

namespace {

struct ValueCase {
    std::int32_t value;
    const char* name;
};

} // namespace

TEST(GlEnumerants, valuesThatNamesShareGiveTheChosenName)
{
    for (const ValueCase& row : {
             ValueCase{-1, "GL_INVALID_INDEX"}, // fixed choices
             ValueCase{0, "GL_NONE"},
             ValueCase{1, "GL_MAP_READ_BIT"},
             ValueCase{2, "GL_MAP_WRITE_BIT"},
             ValueCase{16, "GL_MAP_FLUSH_EXPLICIT_BIT"},
             ValueCase{32, "GL_MAP_UNSYNCHRONIZED_BIT"},
             ValueCase{0x0100, "GL_DEPTH_BUFFER_BIT"}, // core before extension
             ValueCase{0x824C, "GL_DEBUG_TYPE_ERROR"},
             ValueCase{0x8D40, "GL_FRAMEBUFFER"}, // core before its OES alias
             ValueCase{0x84FF, "GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT"},
             ValueCase{0x3003, "GL_CLIP_PLANE3"},
             ValueCase{0x9137, "GL_COMPRESSED_RGBA_TSRTC_2BPPV2_BWD"}, // the maker's own
             ValueCase{0x7FFFFFFF, ""},
         })
        EXPECT_STREQ(gl::enumerantName(row.value), row.name) << row.value;
}

TEST(GlEnumerants, everyAliasHasItsValue)
{
    for (const char* zero : {"GL_ZERO", "GL_NONE", "GL_FALSE", "GL_NO_ERROR"})
        EXPECT_EQ(gl::enumerantValue(zero), 0) << zero;
    EXPECT_EQ(gl::enumerantValue("GL_TRUE"), 1);
    EXPECT_EQ(gl::enumerantValue("GL_INVALID_INDEX"), -1);
    EXPECT_EQ(gl::enumerantValue("GL_FRAME_SHADER_BIT_BWD"), 0x100);
    EXPECT_EQ(gl::enumerantValue("GL_BGRA_BWD"), 0x80E1);
    for (const char* unknown : {"", "GL_", "gl_zero", "GL_ZERO ", "GL_ZER", "ZERO"})
        EXPECT_EQ(gl::enumerantValue(unknown), std::nullopt) << unknown;
}

TEST(GlEnumerants, bothWaysAgree)
{
    int named = 0;
    for (std::int32_t value = -1; value <= 0xFFFF; ++value) {
        const std::string name = gl::enumerantName(value);
        if (name.empty())
            continue;
        ++named;
        ASSERT_EQ(gl::enumerantValue(name), value) << name;
    }
    EXPECT_GT(named, 1500);
}

TEST(GlEnumerants, errorNames)
{
    EXPECT_STREQ(gl::errorName(0), "GL_NO_ERROR");
    EXPECT_STREQ(gl::errorName(1280), "GL_INVALID_ENUM");
    EXPECT_STREQ(gl::errorName(1283), "GL_STACK_OVERFLOW");
    EXPECT_STREQ(gl::errorName(1286), "GL_INVALID_FRAMEBUFFER_OPERATION");
    EXPECT_STREQ(gl::errorName(1287), "");
    EXPECT_STREQ(gl::errorName(0xFFFFFFFF), "");
}
