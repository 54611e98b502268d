#include "JsonReport.h"
#include "Summary.h"
#include "Wording.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

using checks::Check;
using checks::RunResult;
using checks::Verdict;
using launcher::FailOn;
using sessions::Severity;

namespace {

/// As if a program had made as many kinds of findings.
Check checkWith(std::size_t kinds)
{
    RunResult run;
    run.end = RunResult::End::Exited;
    run.isWatched = true;
    run.device = "Tarn | 7";
    for (std::size_t i = 0; i < kinds; ++i) {
        sessions::Finding finding;
        finding.signature = {
            i % 3 == 0 ? Severity::Error : Severity::Warning, "gl" + std::string(i, 'x'), "GL_A", "t"};
        finding.example = "bad \xFF\x1B[31m % \xC3\xA9\n<&>|" + std::string(300, 'y');
        finding.count = i + 1;
        run.findings.add(finding);
    }
    run.facts.add("context 1: OpenGL ES", "3.1");
    return {{"./game"}, {run}, Verdict(FailOn::Error, {})};
}

} // namespace

TEST(CheckWording, makesTextHarmless)
{
    EXPECT_EQ(checks::cleanText("a\xFF\x1B\r\n\t\xC3\xA9\xC2\x9B\xEF\xBF\xBF."), "a???\n\t\xC3\xA9??.");
    EXPECT_EQ(checks::oneLine("a\nb"), "a b");
    EXPECT_EQ(checks::grouped(1234567), "1,234,567");
}

TEST(CheckSummary, fitsTheScreen)
{
    const Check check = checkWith(100);
    const std::string text = checks::summary(check, {.hasColors = false, .rows = 24, .columns = 80});
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 24 - 4);
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_NE(text.find("and 93 kinds more; --report text=-"), std::string::npos) << text;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 80U + 1) << line;
    EXPECT_NE(checks::summary(check, {.hasColors = true}).find("\x1B[31m"), std::string::npos);
    const std::string all = checks::textReport(check);
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 201);
}

TEST(CheckReports, showTheWorstWhereOnlyTenAreShown)
{
    const std::string report = checks::githubReport(checkWith(100));
    std::size_t errors = 0;
    for (std::size_t at = report.find("::error "); at != std::string::npos;
         at = report.find("::error ", at + 1))
        ++errors;
    EXPECT_LE(errors, 10U);
    EXPECT_TRUE(report.starts_with(
        "::error title=GL_A in gl" + std::string(99, 'x') + "::bad ??[31m %25 \xC3\xA9%0A<&>|"))
        << report;
    EXPECT_NE(report.find("title=More findings::"), std::string::npos);
}

TEST(JsonReport, isReadAsItWasWritten)
{
    const Check check = checkWith(5);
    std::string reason;
    const auto runs = checks::readJsonReport(checks::jsonReport(check), reason);
    ASSERT_TRUE(runs) << reason;
    ASSERT_EQ(runs->size(), 1U);
    const RunResult& run = runs->front();
    EXPECT_EQ(run.device, "Tarn | 7");
    EXPECT_EQ(run.facts.all(), check.runs[0].facts.all());
    ASSERT_EQ(run.findings.all().size(), 5U);
    EXPECT_EQ(run.findings.count(Severity::Warning), check.runs[0].findings.count(Severity::Warning));
    for (const auto& finding : check.runs[0].findings.all())
        EXPECT_NE(run.findings.find(finding.signature), nullptr);

    EXPECT_FALSE(checks::readJsonReport(std::string(5'000'000, '['), reason));
    EXPECT_EQ(reason, "line 1: it is too long");
    for (const char* text : {"", "{}", "[", "{\"type\":\"run\"}", "{\"type\":\"check\",\"version\":2}",
             "{\"type\":\"check\",\"version\":1}\n{\"type\":\"fact\",\"run\":0,\"name\":\"a\",\"value\":"
             "\"b\"}",
             "{\"type\":\"check\",\"version\":1}\n{\"type\":\"run\",\"device\":7}"}) {
        reason.clear();
        EXPECT_FALSE(checks::readJsonReport(text, reason)) << text;
        EXPECT_NE(reason, "") << text;
    }
}

TEST(Verdict, keepsWhatIsStillThereInABaseline)
{
    const Check check = checkWith(3);
    sessions::KnownKinds old;
    const std::string kept = "# ours\nwarning\tglx\tGL_A\tt\n";
    ASSERT_TRUE(old.parse(old.toText() + kept + "warning\tglGone\tGL_A\tt\n")) << old.reason();
    const sessions::KnownKinds baseline = Verdict(FailOn::Error, {}).newBaseline(check.runs, old);
    EXPECT_EQ(baseline.size(), 2U) << "an error is new, a warning that does not count is not";
    EXPECT_NE(baseline.toText().find(kept), std::string::npos) << baseline.toText();
}

TEST(Verdict, countsWhatIsNotListed)
{
    RunResult run;
    run.end = RunResult::End::Exited;
    run.isWatched = true;
    EXPECT_EQ(Verdict(FailOn::Error, {}).status(run), 0);
    run.findings.addOthers(Severity::Warning, 2);
    EXPECT_EQ(Verdict(FailOn::Error, {}).status(run), 0);
    EXPECT_EQ(Verdict(FailOn::Warning, {}).status(run), 3);
    RunResult late = run;
    late.end = RunResult::End::TimeOver;
    RunResult crashed = run;
    crashed.end = RunResult::End::Killed;
    crashed.number = 11;
    EXPECT_EQ(Verdict(FailOn::Warning, {}).status({run, late}), 124);
    EXPECT_EQ(Verdict(FailOn::Warning, {}).status({run, late, crashed}), 139);
}
