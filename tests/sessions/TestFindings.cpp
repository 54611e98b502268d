#include "Findings.h"
#include "RecordMaker.h"

#include <vector>

#include <gtest/gtest.h>

using sessions::Finding;
using sessions::Findings;
using sessions::Origin;
using sessions::Severity;
using ui::messages::noFrame;
using ui::messages::Type;

namespace {

constexpr std::uint32_t invalidOperation = 0x0502;

void addDraw(Findings& findings, int count, std::uint32_t frame)
{
    findings.add(
        RecordMaker::glError(invalidOperation, "glDrawArrays", "count = " + std::to_string(count), frame)
            .record());
}

} // namespace

TEST(Findings, foldWhatDiffersInNumbersAndFrames)
{
    Findings findings;
    addDraw(findings, 3, 12);
    addDraw(findings, 4, noFrame);
    addDraw(findings, 5, 7);
    addDraw(findings, 6, 40);
    ASSERT_EQ(findings.all().size(), 1U);
    const Finding& finding = findings.all().front();
    EXPECT_EQ(finding.count, 4U);
    EXPECT_EQ(finding.firstFrame, 7U);
    EXPECT_EQ(finding.lastFrame, 40U);
    EXPECT_EQ(finding.example, "count = 3");
    EXPECT_EQ(finding.signature.text, "count = #");
    EXPECT_EQ(finding.signature.code, "GL_INVALID_OPERATION");
    EXPECT_EQ(findings.find(finding.signature), &finding);
}

TEST(Findings, areOfSeveralOrigins)
{
    struct Row {
        RecordMaker record;
        Severity severity;
        Origin origin;
        const char* code;
    };
    const std::vector<Row> rows{
        {RecordMaker::glError(0x1234, "glX", "a"), Severity::Error, Origin::GlError, "0x1234"},
        {RecordMaker::text(Type::Error, "EGL_BAD_CONFIG in eglX()"), Severity::Error, Origin::Error,
            "EGL_BAD_CONFIG"},
        {RecordMaker::text(Type::Warning, "careful"), Severity::Warning, Origin::Warning, ""},
        {RecordMaker::debug(0x824C, 0x9148, "d"), Severity::Error, Origin::DebugMessage,
            "GL_DEBUG_TYPE_ERROR"},
        {RecordMaker::debug(0x8250, 0x9146, "d"), Severity::Warning, Origin::DebugMessage,
            "GL_DEBUG_TYPE_PERFORMANCE"},
        {RecordMaker::debug(0x8250, 0x9147, "d"), Severity::Message, Origin::DebugMessage,
            "GL_DEBUG_TYPE_PERFORMANCE"},
    };
    for (const Row& row : rows) {
        Findings findings;
        ASSERT_TRUE(findings.add(row.record.record())) << row.code;
        const Finding& finding = findings.all().at(0);
        EXPECT_EQ(finding.signature.severity, row.severity) << row.code;
        EXPECT_EQ(finding.origin, row.origin);
        EXPECT_EQ(finding.signature.code, row.code);
        EXPECT_EQ(findings.count(row.severity), 1U);
    }
    Findings none;
    EXPECT_FALSE(none.add(RecordMaker::text(Type::Information, "hello").record()));
    EXPECT_FALSE(none.add(RecordMaker::debug(0x8269, 0x9146, "group").record()));
    EXPECT_TRUE(none.all().empty());
}

TEST(Findings, countWhatTheyHaveNoRoomFor)
{
    Findings findings({.kinds = 2, .bytes = 2000});
    for (const char* text : {"one", "two", "three", "one", "three"})
        findings.add(RecordMaker::text(Type::Error, text).record());
    EXPECT_EQ(findings.all().size(), 2U);
    EXPECT_EQ(findings.others(Severity::Error), 2U);
    EXPECT_EQ(findings.count(Severity::Error), 5U);

    Findings large({.kinds = 100, .bytes = 2000});
    large.add(RecordMaker::text(Type::Warning, std::string(1500, 'x')).record());
    large.add(RecordMaker::text(Type::Error, "short").record());
    EXPECT_EQ(large.all().size(), 1U);
    EXPECT_EQ(large.others(Severity::Warning), 1U);
}

TEST(Findings, sortByBadnessAndMerge)
{
    Findings findings;
    findings.add(RecordMaker::text(Type::Warning, "w").record());
    findings.add(RecordMaker::text(Type::Error, "rare").record());
    addDraw(findings, 1, 3);
    addDraw(findings, 2, 9);

    Findings merged;
    addDraw(merged, 5, 5);
    for (const Finding& finding : findings.all())
        merged.add(finding);
    const auto worst = merged.worstFirst();
    ASSERT_EQ(worst.size(), 3U);
    EXPECT_EQ(worst[0]->signature.function, "glDrawArrays");
    EXPECT_EQ(worst[0]->count, 3U);
    EXPECT_EQ(worst[0]->firstFrame, 3U);
    EXPECT_EQ(worst[0]->lastFrame, 9U);
    EXPECT_EQ(worst[1]->example, "rare");
    EXPECT_EQ(worst[2]->signature.severity, Severity::Warning);
    EXPECT_EQ(merged.count(Severity::Error), 4U);
}

TEST(Findings, believeNoRecord)
{
    Findings findings;
    for (std::uint32_t type = 0; type < 25; ++type) {
        for (const std::size_t size : {0U, 1U, 3U, 64U, 8216U}) {
            const std::string payload(size, '\xFF');
            findings.add({type, 0, payload});
        }
    }
    EXPECT_EQ(findings.count(Severity::Error), 10U);
}

TEST(Record, losesWhatMeansNothing)
{
    const auto trimmed = [](const RecordMaker& record) {
        return sessions::trimmedPayload(static_cast<std::uint32_t>(record.type), record.payload());
    };
    RecordMaker error = RecordMaker::glError(invalidOperation, "glX", "text");
    error.message.setText(200, "left over");
    EXPECT_EQ(trimmed(error).size(), 4 + 64 + 4U);
    EXPECT_EQ(trimmed(RecordMaker::text(Type::Information, "hello")), "hello");
    EXPECT_EQ(trimmed(RecordMaker::text(Type::LineBreak, "")), "");
    RecordMaker context = RecordMaker::text(Type::ContextInformation, "");
    context.message.setU32(ui::messages::offset::contextGlVersion, 5);
    EXPECT_EQ(trimmed(context).size(), ui::messages::offset::contextGlVersion + 1 - 8);
}
