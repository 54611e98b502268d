#include "KeyTables.h"
#include "ValueNames.h"

#include <gtest/gtest.h>

namespace {

struct NameCase {
    const char* text;
    const char* name;
};

void expectNames(std::string (*nameOf)(std::string_view), std::initializer_list<NameCase> cases)
{
    for (const NameCase& row : cases)
        EXPECT_EQ(nameOf(row.text), row.name) << '"' << row.text << '"';
}

} // namespace

TEST(ValueNames, eglValuesAreSymbolsOrPlainNumbers)
{
    expectNames([](std::string_view text) { return value_names::eglValue(text); },
        {{"0", "EGL_FALSE"}, {"1", "EGL_TRUE"}, {"-1", "EGL_DONT_CARE"}, {"12344", "EGL_NONE"}, {"4", "4"},
            {" +007\n", "7"}, {"4294967295", "4294967295"}, {"12x", "12x"}, {"", ""}, {" ", " "},
            {"EGL_WINDOW_BIT", "EGL_WINDOW_BIT"}});
}

TEST(ValueNames, glValuesAreSignedOrUnsigned)
{
    expectNames([](std::string_view text) { return value_names::glValue(text); },
        {{"0", "GL_NONE"}, {"6408", "GL_RGBA"}, {" 6408 ", "GL_RGBA"}, {"-1", "GL_INVALID_INDEX"},
            {"4294967295", "GL_INVALID_INDEX"}, {"4294967296", "4294967296"}, {"-2147483649", "-2147483649"},
            {"8589934592000000000000", "8589934592000000000000"}, {"0.5", "0.5"}, {"+-1", "+-1"}});
    expectNames(
        value_names::glBoolean, {{"0", "GL_FALSE"}, {"1", "GL_TRUE"}, {"2", "2"}, {" 1", " 1"}, {"", ""}});
}

TEST(ValueNames, attributesHaveNamesByTheirKind)
{
    const auto expectName = [](const char* attribute, std::int32_t value, const char* name) {
        EGLAttribKey key;
        ASSERT_TRUE(findEGLAttribKey(EGLAttribKey::DisplayName{attribute}, &key));
        EXPECT_EQ(value_names::eglValue(key, value), name) << attribute << ' ' << value;
    };
    for (const auto& [value, number] : {std::pair(0, "0"), {1, "1"}, {-1, "-1"}, {12344, "12344"}}) {
        expectName("EGL_DEPTH_SIZE", value, number);
        expectName("EGL_MAX_PBUFFER_WIDTH", value, number);
    }
    expectName("EGL_NATIVE_RENDERABLE", 1, "EGL_TRUE");
    expectName("EGL_NATIVE_VISUAL_TYPE", 1, "1");
    expectName("EGL_NATIVE_VISUAL_TYPE", 12344, "EGL_NONE");
    expectName("EGL_SURFACE_TYPE", 1, "EGL_PBUFFER_BIT");
    expectName("EGL_SURFACE_TYPE", 5, "EGL_WINDOW_BIT|EGL_PBUFFER_BIT");
    expectName("EGL_SURFACE_TYPE", 5 + 2048, "2053");
    expectName("EGL_SURFACE_TYPE", 0, "0");
    expectName("EGL_RENDERABLE_TYPE", -1, "EGL_DONT_CARE");
    expectName("EGL_CONFORMANT", 1, "EGL_TRUE");
    expectName("EGL_CONFORMANT", 68, "EGL_OPENGL_ES2_BIT|EGL_OPENGL_ES3_BIT");
}

TEST(ValueNames, capabilitiesHaveNamesByTheirKind)
{
    const auto name = [](const char* element, const char* value) {
        return value_names::glValue(element, value);
    };
    EXPECT_EQ(name("max_texture_size", "4096"), "4096");
    EXPECT_EQ(name("height", "0"), "0");
    EXPECT_EQ(name("max_uniform_block_size", "16384"), "16384");
    EXPECT_EQ(name("program_binary_format", "6408"), "GL_RGBA");
    EXPECT_EQ(name("max_texture_lod_bias", "2.5"), "2.5");
    EXPECT_EQ(name("some_limit", "6408"), "6408") << "in no table";
    EXPECT_EQ(name("some_format", "6408"), "GL_RGBA") << "in no table";
    EXPECT_EQ(name("compressed_texture_format", "36196"), "GL_ETC1_RGB8_OES");
    EXPECT_EQ(name("shader_compiler", " 1 "), "GL_TRUE");
}

TEST(ValueNames, keysAndVersions)
{
    expectNames(value_names::eglAttribute, {{"12321", "EGL_ALPHA_SIZE"}, {"1", "1"}, {"odd/a", "odd/a"}});
    expectNames(
        value_names::esApi, {{"1", "OpenGL ES 1.1"}, {"20", "OpenGL ES 2.0"}, {"4", "4"}, {"x", "x"}});
    expectNames(value_names::esCapability,
        {{"samples", "GL_SAMPLES"}, {"min", "min"}, {"program_binary_format", "GL_PROGRAM_BINARY_FORMATS"}});
}
