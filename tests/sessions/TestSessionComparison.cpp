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

RecordMaker detail(std::string_view name, std::uint32_t value)
{
    RecordMaker made{Type::ReportDetail, 0};
    made.message.setText(offset::reportText, name, offset::reportTextEnd);
    made.message.setU32(offset::reportTextEnd, value);
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
    for (const sessions::FindingChange& change : comparison.findings())
        lines.push_back(std::string(changeName(change.change)) + " " + std::to_string(change.before) + " "
            + std::to_string(change.after) + " " + change.finding.signature.text);
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

/// What stands in a report as names and values amounts to the same as the records that it was made of.
TEST(SessionComparison, takesFactsFromReports)
{
    SessionSummary before =
        summaryOf({context(1, {1, 2, 3, 4}), context(1, {3}), detail("Units", 8), detail("Old", 1)});
    SessionSummary read;
    for (const auto& [name, value] : before.facts.all())
        read.facts.add(name, value);
    EXPECT_EQ(read.facts.all(), before.facts.all());
    EXPECT_TRUE(SessionComparison(before, read).isEqual());

    // An older report knows less of a context.
    auto facts = before.facts.all();
    EXPECT_EQ(facts.erase("contexts") + facts.erase("context 1: GLSL of the host"), 2U);
    SessionSummary older;
    for (const auto& [name, value] : facts)
        older.facts.add(name, value);
    EXPECT_TRUE(SessionComparison(older, before).isEqual());
}

TEST(SessionComparison, tellsDevicesAndTheirValues)
{
    SessionSummary before = summaryOf({context(1, {1, 2, 3, 4}), detail("Units", 8), detail("Old", 1)});
    SessionSummary after = summaryOf({context(1, {2, 3, 4}), detail("Units", 16), detail("Same", 2)});
    before.device = "Tarn 7";
    after.device = "Tarn 10";
    const SessionComparison comparison(before, after);
    EXPECT_EQ(
        changesOf(comparison.values()), (std::vector<std::string>{"gone Old", "new Same", "changed Units"}));
    EXPECT_EQ(changesOf({comparison.device()}), std::vector<std::string>{"changed Device"});
    const std::string text = comparison.toText("a", "b");
    const std::string first = comparison.extensions().front().what;
    for (const std::string& line :
        {std::string("changed: Units: 8 -> 16"), std::string("changed: Device: Tarn 7 -> Tarn 10"),
            "gone: Context 1, extensions: " + first, "gone: " + first + ": supported"})
        EXPECT_NE(text.find("  " + line + "\n"), std::string::npos) << line << " in:\n" << text;
    EXPECT_EQ(sessions::changeText({"", "a b", "b c"}), "a b -> b c");
    const std::string longText = " b " + std::string(200, 'c');
    EXPECT_EQ(sessions::changeText({"", "a" + longText, longText + " d"}), "-a +d");
    EXPECT_EQ(sessions::changeText({"", "a", ""}), "a -> (nothing)");

    // The program may make contexts, and a session may tell, without end.
    SessionSummary endless;
    const std::string name(500, 'n');
    for (std::uint32_t i = 0; i < 30'000; ++i) {
        endless.add(context(1, {1}).record());
        endless.facts.add(name + std::to_string(i), std::string(30'000, 'v'));
    }
    EXPECT_EQ(endless.facts.contextCount(), 30'000U);
    EXPECT_EQ(endless.facts.contexts().size(), 500U);
    EXPECT_LT(endless.facts.values().size(), 33'000'000U / 24'000);
}
