#include "ChildProcess.h"
#include "ProfileData.h"
#include "ProfileImport.h"
#include "ProfileReader.h"

using child_process::fill;
using child_process::freshFolder;

namespace {

std::string es(const std::string& version, const std::string& extension)
{
    return "<es version='" + version + "'><extension>" + extension + "</extension></es>";
}

/// The texts of a document, one after the other: enough to see what came from where.
std::string summary(const std::string& xml)
{
    std::string texts;
    bool isMarkup = false;
    for (const char c : xml) {
        isMarkup = (isMarkup || c == '<') && c != '>';
        if (!isMarkup && c > ' ' && c != '>')
            texts += c;
    }
    return texts;
}

struct Merge {
    const char* name;
    std::vector<std::string> files;
    bool isProfile;
    std::string summary;
    std::size_t leftOut = 0;
};

void PrintTo(const Merge& merge, std::ostream* stream)
{
    *stream << merge.name;
}

const std::string egl = "<egl><config id='1'><red_size>8</red_size></config></egl>";
const std::string one = "<profile><device>D</device>" + es("2", "a") + es("3", "b") + egl + "</profile>";

const Merge merges[] = {
    {"one file", {one}, true, "Dab8"},
    {"only sections, and compared with the first alone",
        {one,
            "<profile><device>E</device>" + es("3", "c") + es("2", "d") + es("1", "e") + egl + "</profile>"},
        true, "Dab8ce"},
    {"a version that is none counts as 0",
        {"<profile>" + es("x", "a") + egl + "</profile>", "<profile>" + es("0", "b") + "<es/></profile>"},
        true, "a8"},
    {"what is left out does not disturb", {"<profile>", one, "text", "\xFF<profile/>"}, true, "Dab8", 3},
    {"a comment takes the place of its profile", {"<!--c--><profile>" + es("9", "z") + "</profile>", one},
        true, "Dab8"},
    {"a declaration as well", {"<?xml version='1.0'?>" + one}, false, ""},
    {"the first section after the configs", {"<profile>" + egl + es("2", "a") + "</profile>"}, false, "8a"},
    {"sections that come to a profile without any",
        {"<profile>" + egl + "</profile>", "<profile>" + es("2", "a") + es("2", "b") + "</profile>"}, false,
        "8a"},
    {"nothing", {}, false, ""},
};

class ProfileMerge : public testing::TestWithParam<Merge> { };

} // namespace

TEST_P(ProfileMerge, takesWhatItShould)
{
    const auto folder = freshFolder();
    ProfileImport import;
    std::size_t leftOut = 0;
    for (const std::string& content : GetParam().files) {
        fill(folder / "in.xml", content);
        leftOut += import.add(folder / "in.xml").empty() ? 0 : 1;
    }
    EXPECT_EQ(import.isProfile(), GetParam().isProfile);
    EXPECT_EQ(summary(import.toXml()), GetParam().summary);
    EXPECT_EQ(leftOut, GetParam().leftOut);
}

INSTANTIATE_TEST_SUITE_P(Tables, ProfileMerge, testing::ValuesIn(merges));

TEST(ProfileImport, savesWhatItReadAndNothingThatCannotBeReadAgain)
{
    const auto folder = freshFolder();
    const std::string text =
        "<profile><device> A&amp;B \xC3\xA9&#13;</device>" + es("2", "a") + egl + "</profile>";
    fill(folder / "in.xml", text);
    ProfileImport import;
    EXPECT_EQ(import.add(folder / "in.xml"), "");
    EXPECT_NE(import.add(folder), "") << "a folder";
    ASSERT_TRUE(import.save(folder / "out.xml"));
    EXPECT_EQ(readProfileFile(folder / "out.xml"), readProfile(text));

    // A declaration behind a comment is nothing that a parser takes.
    ProfileImport broken;
    for (const char* content : {"<!--c-->", "<?xml version='1.0'?>", text.c_str()}) {
        fill(folder / "in.xml", content);
        EXPECT_EQ(broken.add(folder / "in.xml"), "");
    }
    EXPECT_TRUE(broken.isProfile());
    EXPECT_FALSE(broken.save(folder / "broken.xml"));
    EXPECT_FALSE(std::filesystem::exists(folder / "broken.xml"));
}

TEST(ProfileImport, growsNoLargerThanAProfileMayBe)
{
    const auto folder = freshFolder();
    ProfileImport import;
    for (const char* version : {"1", "2", "3"}) {
        fill(folder / "in.xml", "<profile>" + es(version, std::string(3'000'000, 'x')) + egl + "</profile>");
        EXPECT_EQ(import.add(folder / "in.xml"), "");
    }
    EXPECT_NE(import.add(folder / "in.xml"), "");
    EXPECT_FALSE(import.save(folder / "out.xml"));
}
