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
    expectNames(value_names::eglValue,
        {{"0", "EGL_FALSE"}, {"1", "EGL_TRUE"}, {"-1", "EGL_DONT_CARE"}, {"12344", "EGL_NONE"}, {"4", "4"},
            {" +007\n", "7"}, {"4294967295", "4294967295"}, {"12x", "12x"}, {"", ""}, {" ", " "},
            {"EGL_WINDOW_BIT", "EGL_WINDOW_BIT"}});
}

TEST(ValueNames, glValuesAreSignedOrUnsigned)
{
    expectNames(value_names::glValue,
        {{"0", "GL_NONE"}, {"6408", "GL_RGBA"}, {" 6408 ", "GL_RGBA"}, {"-1", "GL_INVALID_INDEX"},
            {"4294967295", "GL_INVALID_INDEX"}, {"4294967296", "4294967296"}, {"-2147483649", "-2147483649"},
            {"8589934592000000000000", "8589934592000000000000"}, {"0.5", "0.5"}, {"+-1", "+-1"}});
    expectNames(
        value_names::glBoolean, {{"0", "GL_FALSE"}, {"1", "GL_TRUE"}, {"2", "2"}, {" 1", " 1"}, {"", ""}});
}

TEST(ValueNames, keysAndVersions)
{
    expectNames(value_names::eglAttribute, {{"12321", "EGL_ALPHA_SIZE"}, {"1", "1"}, {"odd/a", "odd/a"}});
    expectNames(
        value_names::esApi, {{"1", "OpenGL ES 1.1"}, {"20", "OpenGL ES 2.0"}, {"4", "4"}, {"x", "x"}});
    expectNames(value_names::esCapability,
        {{"samples", "GL_SAMPLES"}, {"min", "min"}, {"program_binary_format", "program_binary_format"}});
}
