#include "GuardedFile.h"
#include "KnownKinds.h"

#include <filesystem>

#include <gtest/gtest.h>

using sessions::KnownKinds;
using sessions::Severity;
using sessions::Signature;

namespace {

const Signature draw{Severity::Error, "glDrawArrays", "GL_INVALID_OPERATION", "count = #"};

std::string fileWith(const std::string& lines)
{
    return "corvale-findings 1\n" + lines;
}

} // namespace

TEST(KnownKinds, survivesAFileWithAnyText)
{
    KnownKinds kinds;
    const std::vector<Signature> signatures{draw, {Severity::Error, "", "", ""},
        {Severity::Warning, "-", "\\x", "a\tb\nc\\n"}, {Severity::Warning, "", "", "#no comment"},
        {Severity::Message, "f", "c", "\x01 \xFF \xC3\xA9"}};
    for (const Signature& signature : signatures)
        EXPECT_TRUE(kinds.add(signature));
    EXPECT_FALSE(kinds.add(draw)) << "it is there";
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "kinds.txt";
    ASSERT_TRUE(kinds.write(path)) << kinds.reason();

    KnownKinds read;
    ASSERT_TRUE(read.read(path)) << read.reason();
    EXPECT_EQ(read.all(), kinds.all());
    EXPECT_EQ(read.toText(), kinds.toText());
    EXPECT_TRUE(read.contains(draw));
    EXPECT_TRUE(read.remove(draw));
    EXPECT_FALSE(read.contains(draw));
    ASSERT_TRUE(read.write(path)) << "it replaces";
    EXPECT_TRUE(kinds.read(path));
    EXPECT_FALSE(kinds.contains(draw));
}

TEST(KnownKinds, isSortedAndKeepsCommentsInTheirPlaces)
{
    KnownKinds kinds;
    ASSERT_TRUE(kinds.parse(
        fileWith("# ours\n\n# later\nwarning\t-\t-\tz\r\n# first\nerror\tglA\tC\tcount = 7\n# end\n")));
    kinds.add({Severity::Error, "glZ", "C", "t"});
    EXPECT_EQ(kinds.toText(),
        fileWith("# ours\n\n# first\nerror\tglA\tC\tcount = #\nerror\tglZ\tC\tt\n# "
                 "later\nwarning\t-\t-\tz\n# end\n"));
}

TEST(KnownKinds, refusesWhatItDoesNotUnderstandAndKeepsWhatItHad)
{
    struct Row {
        std::string text;
        const char* reason;
    };
    const std::vector<Row> rows{
        {"", "it is no list of findings: \"corvale-findings 1\" is missing"},
        {"error\ta\tb\tc\n", "line 1: a list of findings begins with \"corvale-findings 1\""},
        {"# c\ncorvale-findings 2\n", "line 2: this is of a later version, and not understood"},
        {fileWith("\nerror\ta\tb\n"),
            "line 3: it needs severity, function, code and text, with tabs between them"},
        {fileWith("bad\ta\tb\tc\n"), "line 2: the severity must be error, warning or message"},
        {fileWith("error\ta\tb\t\\q\n"), "line 2: there is a \\ that no n, t, \\ or x and two digits follow"},
        {fileWith("error\ta\tb\t\\x1"), "line 2: there is a \\ that no n, t, \\ or x and two digits follow"},
    };
    KnownKinds kinds;
    kinds.add(draw);
    for (const Row& row : rows) {
        EXPECT_FALSE(kinds.parse(row.text));
        EXPECT_EQ(kinds.reason(), row.reason);
        EXPECT_TRUE(kinds.contains(draw));
    }
    const std::filesystem::path absent = std::filesystem::temp_directory_path() / "absent.txt";
    EXPECT_FALSE(kinds.read(absent));
    EXPECT_TRUE(kinds.contains(draw));
    EXPECT_TRUE(kinds.read(absent, true));
    EXPECT_TRUE(kinds.empty());
}
