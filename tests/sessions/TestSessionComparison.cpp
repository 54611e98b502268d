#include "RecordMaker.h"
#include "SessionComparison.h"

#include <algorithm>

#include <gtest/gtest.h>

using sessions::Change;
using sessions::SessionComparison;
using sessions::SessionSummary;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

RecordMaker context(std::uint32_t esVersion, const std::vector<std::uint32_t>& extensions)
{
    RecordMaker made{Type::ContextInformation, 1};
    made.message.setU32(offset::contextNumber, 1);
    made.message.setU32(offset::contextStrict, 1);
    made.message.setU32(offset::contextEsVersion, esVersion);
    for (std::size_t i = 0; i < extensions.size(); ++i)
        made.message.setU32(offset::contextExtensions + i * 4, extensions[i]);
    return made;
}

SessionSummary summaryOf(const std::vector<RecordMaker>& records)
{
    SessionSummary summary;
    for (const RecordMaker& record : records)
        summary.add(record.record());
    return summary;
}

std::vector<std::string> changesOf(const std::vector<sessions::FactPair>& pairs)
{
    std::vector<std::string> changes;
    for (const sessions::FactPair& pair : pairs) {
        if (pair.change)
            changes.push_back(std::string(changeName(*pair.change)) + " " + pair.what);
    }
    return changes;
}

} // namespace

/// The same kind with other numbers in its text is the same finding.
TEST(SessionComparison, tellsFindings)
{
    const SessionSummary before =
        summaryOf({RecordMaker::text(Type::Warning, "unit 3 is slow"), RecordMaker::text(Type::Error, "gone"),
            RecordMaker::text(Type::Error, "often"), RecordMaker::text(Type::Information, "no finding")});
    const SessionSummary after = summaryOf({RecordMaker::text(Type::Warning, "unit 4 is slow"),
        RecordMaker::text(Type::Warning, "new and mild"), RecordMaker::text(Type::Error, "new"),
        RecordMaker::text(Type::Error, "often"), RecordMaker::text(Type::Error, "often")});
    const SessionComparison comparison(before, after);
    std::vector<std::string> lines;
    for (const sessions::FindingChange& finding : comparison.findings())
        lines.push_back(std::string(changeName(finding.change)) + " " + std::to_string(finding.before) + " "
            + std::to_string(finding.after) + " " + finding.signature.text);
    EXPECT_EQ(lines,
        (std::vector<std::string>{
            "new 0 1 new", "new 0 1 new and mild", "gone 1 0 gone", "changed 1 2 often"}));
    EXPECT_EQ(comparison.sameFindings(), 1U);
    EXPECT_FALSE(comparison.isEqual());
    const std::string text = comparison.toText("a", "b");
    EXPECT_NE(text.find("  new: 1 x error: new\n"), std::string::npos) << text;
    EXPECT_NE(text.find("  changed: 1 -> 2 x error: often\n"), std::string::npos) << text;
    EXPECT_TRUE(SessionComparison(after, after).isEqual());
    EXPECT_NE(SessionComparison(after, after).toText("a", "b").find("Nothing differs"), std::string::npos);
}

TEST(SessionComparison, tellsContextsAndExtensions)
{
    const SessionSummary before = summaryOf({context(1, {1, 2}), context(1, {3})});
    const SessionSummary after = summaryOf({context(2, {2, 4})});
    const SessionComparison comparison(before, after);
    const std::vector<std::string> contexts = changesOf(comparison.contexts());
    EXPECT_EQ(contexts.front(), "changed Contexts");
    EXPECT_NE(std::find(contexts.begin(), contexts.end(), "changed Context 1, OpenGL ES"), contexts.end());
    EXPECT_EQ(std::count_if(contexts.begin(), contexts.end(),
                  [](const std::string& line) { return line.starts_with("gone "); }),
        5);
    const std::vector<std::string> extensions = changesOf(comparison.extensions());
    EXPECT_EQ(extensions.size(), 3U);
    EXPECT_EQ(comparison.extensions().size(), 4U);
    EXPECT_EQ(std::count_if(extensions.begin(), extensions.end(),
                  [](const std::string& line) { return line.starts_with("gone "); }),
        2);
}
