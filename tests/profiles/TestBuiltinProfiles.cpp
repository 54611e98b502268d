#include "BuiltinProfileRules.h"
#include "BuiltinProfiles.h"
#include "ProfileData.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace rules;

namespace {

std::vector<std::string> builtinFiles()
{
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(CORVALE_BUILTIN_PROFILES))
        files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

std::string contentOf(const std::string& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string baseName(const std::string& path)
{
    return std::filesystem::path(path).filename().string();
}

/// The texts below a list of nodes by their path, such as "max_viewport_dims/width".
std::multimap<std::string, std::string> flat(const std::vector<ProfileNode>& nodes)
{
    std::multimap<std::string, std::string> texts;
    for (const ProfileNode& node : nodes) {
        if (node.children.empty())
            texts.emplace(node.name, node.value);
        for (const auto& [name, value] : flat(node.children))
            texts.emplace(node.name + "/" + name, value);
    }
    return texts;
}

/// The numbers of the keys that hold one value; every other use of a key is a failure.
std::map<std::string, long long> numbers(const std::vector<ProfileNode>& nodes)
{
    std::map<std::string, long long> result;
    for (const auto& [name, text] : flat(nodes)) {
        if (isListKey(name))
            continue;
        const auto number = wholeNumber(text);
        EXPECT_TRUE(number) << name << ": " << text;
        EXPECT_TRUE(result.emplace(name, number.value_or(0)).second) << name << " is there twice";
    }
    return result;
}

/// The values of a key that may be repeated, which must differ.
std::set<std::string> valuesOf(const std::vector<ProfileNode>& nodes, const std::string& key)
{
    std::set<std::string> values;
    for (const ProfileNode& node : nodes)
        if (node.name == key) {
            EXPECT_TRUE(values.insert(node.value).second) << key << " " << node.value << " is there twice";
        }
    return values;
}

class BuiltinProfile : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override { ASSERT_NO_THROW(m_profile = readProfileFile(GetParam())); }

    std::set<std::string> extensions(int version) const
    {
        const auto found = m_profile.extensions().find(version);
        return found == m_profile.extensions().end()
            ? std::set<std::string>{}
            : std::set<std::string>(found->second.begin(), found->second.end());
    }

    ProfileData m_profile = readProfile("<profile/>");
};

} // namespace

TEST(BuiltinProfiles, areThirteenWithTheirOwnNames)
{
    std::set<std::string> devices;
    for (const std::string& file : builtinFiles()) {
        devices.insert(readProfileFile(file).displayName());
        const std::string name = baseName(file);
        EXPECT_TRUE(std::none_of(name.begin(), name.end(), [](unsigned char c) { return std::isupper(c); }))
            << name;
    }
    EXPECT_EQ(builtinFiles().size(), 13U);
    EXPECT_EQ(devices.size(), 13U);
}

TEST(BuiltinProfiles, areCompiledIn)
{
    EXPECT_EQ(builtin_profiles::documents().size(), builtinFiles().size());
    for (const auto& [name, xml] : builtin_profiles::documents()) {
        const auto path = std::filesystem::path(CORVALE_BUILTIN_PROFILES) / name;
        EXPECT_TRUE(readProfile(xml) == readProfileFile(path.string())) << name;
    }
}

TEST_P(BuiltinProfile, saysWhoItIsAndForWhichVersions)
{
    EXPECT_EQ(m_profile.vendor(), "Brindlewood");
    EXPECT_EQ(m_profile.renderer().rfind("Brindlewood B", 0), 0U) << m_profile.renderer();
    EXPECT_FALSE(m_profile.device().empty());
    EXPECT_FALSE(m_profile.extensions().empty());
    for (const auto& [version, names] : m_profile.extensions()) {
        EXPECT_TRUE(version == 1 || version == 2 || version == 3 || version == 31) << version;
        EXPECT_TRUE(m_profile.capabilities().contains(version)) << version;
    }
    EXPECT_EQ(m_profile.capabilities().size(), m_profile.extensions().size());
    EXPECT_TRUE(!m_profile.extensions().contains(31) || m_profile.extensions().contains(3));
}

TEST_P(BuiltinProfile, isTheSameAfterASaveAndALoad)
{
    const std::string saved = writeProfile(m_profile);
    EXPECT_TRUE(readProfile(saved) == m_profile);
    // A file looks as the program writes it. So the reader left nothing out, such as a
    // config with a broken id, and merged nothing, such as a version that is there twice; and the extensions
    // are sorted.
    EXPECT_EQ(saved, contentOf(GetParam()));
}

TEST_P(BuiltinProfile, hasEveryLimitOfItsVersions)
{
    for (const auto& [version, nodes] : m_profile.capabilities()) {
        SCOPED_TRACE("version " + std::to_string(version));
        const auto have = numbers(nodes);
        const auto names = extensions(version);
        std::set<std::string> known;
        for (const Limit& limit : limits) {
            const bool wanted = version >= limit.first && version <= limit.last
                && (!limit.extension || names.contains(limit.extension));
            const auto found = have.find(limit.key);
            if (!wanted)
                continue;
            known.insert(limit.key);
            ASSERT_NE(found, have.end()) << limit.key;
            EXPECT_GE(found->second, limit.least) << limit.key;
            EXPECT_LE(found->second, limit.most) << limit.key;
        }
        for (const auto& [key, value] : have)
            EXPECT_TRUE(known.contains(key)) << key << " does not belong into this version";
    }
}

TEST_P(BuiltinProfile, meetsTheMinima)
{
    for (const auto& [version, nodes] : m_profile.capabilities()) {
        SCOPED_TRACE("version " + std::to_string(version));
        checkMinima(version, nodes);
    }
}

TEST_P(BuiltinProfile, extensionsAreKnownAndFitTheVersion)
{
    for (const auto& [version, list] : m_profile.extensions()) {
        SCOPED_TRACE("version " + std::to_string(version));
        const auto names = extensions(version);
        EXPECT_EQ(names.size(), list.size()) << "an extension is there twice";
        for (const std::string& name : names) {
            EXPECT_TRUE(isCatalogued(name)) << name;
            EXPECT_TRUE(fitsVersion(name, version)) << name;
        }
    }
}

TEST_P(BuiltinProfile, configsAddUp)
{
    EXPECT_GE(m_profile.configs().size(), 8U);
    EXPECT_LE(m_profile.configs().size(), 40U);
    std::set<std::string> rendered;
    std::set<std::string> looks;
    for (const auto& [id, nodes] : m_profile.configs()) {
        SCOPED_TRACE("config " + std::to_string(id));
        std::map<std::string, std::string> text;
        for (const auto& [name, value] : flat(nodes))
            if (!isMask(name)) {
                EXPECT_TRUE(text.emplace(name, value).second) << name << " is there twice";
            }
        checkAttributes(text);
        const auto versions = valuesOf(nodes, "renderable_type");
        const auto surfaces = valuesOf(nodes, "surface_type");
        EXPECT_EQ(valuesOf(nodes, "conformant"), versions);
        rendered.insert(versions.begin(), versions.end());
        EXPECT_FALSE(versions.empty());
        checkSurfaces(text, surfaces);
        std::string look;
        for (const auto& [name, value] : flat(nodes))
            look.append(name).append("=").append(value).append(" ");
        EXPECT_TRUE(looks.insert(look).second) << "the same as another config";
    }
    std::set<std::string> supported;
    for (const auto& [version, names] : m_profile.extensions())
        supported.insert(renderableBit(version));
    EXPECT_EQ(rendered, supported);
}

INSTANTIATE_TEST_SUITE_P(Files, BuiltinProfile, testing::ValuesIn(builtinFiles()), [](const auto& file) {
    std::string name = std::filesystem::path(file.param).stem().string();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
});
