#include "EsVersion.h"
#include "KeyTables.h"
#include "Minima.h"

#include <vector>

#include <gtest/gtest.h>

using gl::EsVersion;
using gl::Minimum;
using enum gl::EsVersion;

namespace {

using Values = std::vector<double>;

Values valuesOf(const char* enumerant, EsVersion version)
{
    const std::optional<Minimum> found = gl::minimum(enumerant, version);
    return found ? Values(found->values.begin(), found->values.end()) : Values();
}

} // namespace

TEST(Minima, holdUntilALaterVersionAsksForMore)
{
    EXPECT_EQ(valuesOf("GL_MAX_TEXTURE_SIZE", Es20), Values{64});
    EXPECT_EQ(valuesOf("GL_MAX_TEXTURE_SIZE", Es30), Values{2048});
    EXPECT_EQ(valuesOf("GL_MAX_TEXTURE_SIZE", Es32), Values{2048});
    EXPECT_EQ(valuesOf("GL_MAX_FRAGMENT_UNIFORM_VECTORS", Es30), Values{224});
    EXPECT_EQ(valuesOf("GL_MAX_FRAGMENT_UNIFORM_VECTORS", Es31), Values{256});
    EXPECT_EQ(valuesOf("GL_MAX_IMAGE_UNITS", Es30), Values{}) << "not before its first version";
    EXPECT_EQ(valuesOf("GL_MAX_IMAGE_UNITS", Es32), Values{4});
    EXPECT_EQ(valuesOf("GL_MAX_SAMPLES_TYPO", Es32), Values{});
    EXPECT_EQ(valuesOf("", Es20), Values{});
}

TEST(Minima, ofVersion11StandAlone)
{
    EXPECT_EQ(valuesOf("GL_MAX_LIGHTS", Es11), Values{8});
    EXPECT_EQ(valuesOf("GL_MAX_LIGHTS", Es20), Values{});
    EXPECT_EQ(valuesOf("GL_SUBPIXEL_BITS", Es11), Values{4});
    EXPECT_EQ(valuesOf("GL_MAX_CUBE_MAP_TEXTURE_SIZE", Es11), Values{});
    EXPECT_EQ(valuesOf("GL_NUM_COMPRESSED_TEXTURE_FORMATS", Es11), Values{10});
    EXPECT_EQ(valuesOf("GL_NUM_COMPRESSED_TEXTURE_FORMATS", Es20), Values{}) << "3.0 asks for it again";
}

TEST(Minima, rulesSayWhatMeetsThem)
{
    struct Case {
        const char* enumerant;
        EsVersion version;
        Minimum::Rule rule;
        std::vector<Values> met;
        std::vector<Values> missed;
    };
    for (const Case& row : {
             Case{"GL_MAX_TEXTURE_LOD_BIAS", Es30, Minimum::Rule::AtLeast, {{2}, {2, 3}, {16}},
                 {{1.5}, {3, 1}}},
             Case{"GL_MIN_PROGRAM_TEXEL_OFFSET", Es30, Minimum::Rule::AtMost, {{-8}, {-9}}, {{-7}}},
             Case{"GL_SHADER_COMPILER", Es31, Minimum::Rule::Equals, {{1}}, {{0}, {2}}},
             Case{"GL_ALIASED_POINT_SIZE_RANGE", Es11, Minimum::Rule::Contains, {{1, 1}, {0.5, 64}},
                 {{1.5, 64}, {0.5, 0.75}, {1}, {}}},
         }) {
        const std::optional<Minimum> found = gl::minimum(row.enumerant, row.version);
        ASSERT_TRUE(found) << row.enumerant;
        EXPECT_EQ(found->rule, row.rule) << row.enumerant;
        EXPECT_FALSE(found->source.empty()) << row.enumerant;
        for (const Values& values : row.met)
            EXPECT_TRUE(gl::isMet(*found, values)) << row.enumerant << ' ' << testing::PrintToString(values);
        for (const Values& values : row.missed)
            EXPECT_FALSE(gl::isMet(*found, values)) << row.enumerant << ' ' << testing::PrintToString(values);
    }
}

TEST(Minima, areAskedOnlyWhereAVersionHasTheKey)
{
    visitESCapabilityKeyNodes([](const ESCapabilityKeyNode& node) {
        for (const EsVersion version : {Es11, Es20, Es30, Es31, Es32}) {
            EXPECT_TRUE(
                !gl::minimum(node.key.displayName.text, version) || node.key.versions.contains(version))
                << node.key.displayName.text << ' ' << static_cast<int>(version);
        }
    });
}
