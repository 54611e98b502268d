#include "LauncherRun.h"
#include "SessionReader.h"

#include <algorithm>
#include <csignal>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using child_process::contentOf;
using Arguments = LauncherRun::Arguments;

namespace {

struct Outcome {
    int code;
    std::string output;
    std::string errors;
};

Outcome runLauncher(const Arguments& arguments)
{
    LauncherRun run(arguments);
    run.closeInput();
    Outcome outcome{0, {}, run.errors()};
    for (std::string line = run.line(); !line.empty(); line = run.line())
        outcome.output += line + "\n";
    outcome.code = run.finish();
    return outcome;
}

/// A check of the stand-in, whose arguments are steps.
Arguments checkOf(const Arguments& steps, const Arguments& options = {})
{
    Arguments arguments{"--check"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.emplace_back(WATCHED_PROGRAM);
    arguments.insert(arguments.end(), steps.begin(), steps.end());
    return arguments;
}

class Checks : public testing::Test {
protected:
    static void SetUpTestSuite() { LauncherRun::prepare(); }
    void SetUp() override
    {
        m_folder = child_process::freshFolder();
        setenv("XDG_RUNTIME_DIR", child_process::freshFolder().c_str(), 1);
    }
    std::string path(const std::string& name) const { return (m_folder / name).string(); }

    std::filesystem::path m_folder;
};

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string withoutTimes(const std::string& text)
{
    return std::regex_replace(text, std::regex("time=\"[0-9.]+\"|[0-9.]+ s\\b"), "TIME");
}

} // namespace

TEST_F(Checks, exitAsDocumented)
{
    struct Row {
        Arguments steps;
        Arguments options;
        int code;
        const char* told;
    };
    const std::vector<Row> rows{
        {{}, {}, 0, "passed: watched-program on this machine, nothing found"},
        {{"errors", "5"}, {}, 3, "failed: watched-program on this machine, 5 errors"},
        {{"errors", "5"}, {"--fail-on", "never"}, 0,
            "5 x  GL_INVALID_OPERATION in glDrawArrays, frames 1 to 5"},
        {{"type", "7"}, {}, 0, "1 warning"},
        {{"type", "7"}, {"--fail-on", "warning"}, 3, "1 warning"},
        {{"type", "5"}, {"--fail-on", "warning"}, 0, "1 message"},
        {{"type", "5"}, {"--fail-on", "message"}, 3, "1 message"},
        {{"errors", "5", "exit", "7"}, {}, 7, "It ended with exit status 7."},
        {{"signal", "11"}, {"--fail-on", "never"}, 139, "It was killed by SIGSEGV"},
        {{"unwatched"}, {}, 4, "Nothing was watched"},
        {{"errors", "1", "fork", "errors", "4"}, {}, 3, "9 errors"},
        {{}, {"--baseline", "/nowhere"}, 2, "corvale-run: Cannot read /nowhere: No such file"},
        {{}, {"--report", "json=/nowhere/a"}, 2, "Cannot write /nowhere/a"},
        {{}, {"--report", "yaml=a"}, 2, "A report is KIND=FILE"},
        {{}, {"--profile", "no such*"}, 2, "No profile fits no such*."},
        {{}, {"--timeout", "-1e300"}, 2, "The time limit is"},
        {{}, {"--timeout", "nan"}, 2, "The time limit is"},
        {{}, {"--report", "json=a", "--report", "text=./a"}, 2, "--report and --report both name a; each"},
        {{}, {"--baseline", "a", "--log", "a"}, 2, "--log and --baseline both name a; each"},
    };
    for (const Row& row : rows) {
        const Outcome outcome = runLauncher(checkOf(row.steps, row.options));
        EXPECT_EQ(outcome.code, row.code) << row.told;
        EXPECT_NE(outcome.errors.find(row.told), std::string::npos) << row.told << " in:\n" << outcome.errors;
    }
    EXPECT_EQ(runLauncher({"--fail-on", "error", "true"}).code, 2) << "without --check";
    EXPECT_EQ(runLauncher({"--check", "absent-program"}).code, 127);
}

TEST_F(Checks, endProgramsThatDoNotEnd)
{
    const auto endless = [](const Arguments& options, const Arguments& steps) {
        LauncherRun run(checkOf(steps, options));
        const std::string errors = run.errors();
        return Outcome{run.finish(), {}, errors};
    };
    const Outcome polite = endless({"--timeout", "0.2"}, {"read"});
    EXPECT_EQ(polite.code, 124);
    EXPECT_EQ(polite.errors.find("by force"), std::string::npos) << polite.errors;
    const Outcome frames = endless({"--frames", "3"}, {"frames", "3", "read"});
    EXPECT_EQ(frames.code, 0) << frames.errors;
    EXPECT_NE(frames.errors.find("passed"), std::string::npos);
    EXPECT_NE(frames.errors.find("3 frames"), std::string::npos);
    EXPECT_EQ(endless({"--frames", "3"}, {"frames", "3", "errors", "1", "read"}).code, 3);
    // What a shell has started ends as well; else it would keep our streams open.
    LauncherRun shell({"--check", "--timeout", "0.2", "sh", "-c", "sleep 100; true"});
    EXPECT_EQ(shell.errors().find("by force"), std::string::npos);
    EXPECT_EQ(shell.finish(), 124);

    // What outlives the program has the same time to end.
    const auto withChild = [](const std::string& trap) {
        const std::string child = "trap '" + trap + "' TERM; while :; do sleep 0.1; done";
        return Arguments{"--check", "--timeout", "0.5", "sh", "-c", "sh -c \"" + child + "\" & wait"};
    };
    LauncherRun saving(withChild("sleep 0.3; echo saved >" + path("state") + "; exit"));
    LauncherRun stubbornChild(withChild(":"));
    LauncherRun stubborn(checkOf({"catch", "15", "read"}, {"--timeout", "0.2"}));
    EXPECT_EQ(saving.errors().find("by force"), std::string::npos);
    EXPECT_EQ(contentOf(path("state")), "saved\n");
    for (LauncherRun* run : {&stubbornChild, &stubborn}) {
        const std::string errors = run->errors();
        EXPECT_NE(errors.find("by force"), std::string::npos) << errors;
        EXPECT_EQ(run->finish(), 124);
    }
}

TEST_F(Checks, writeReportsOfAllKinds)
{
    Arguments options{"--name", "x"};
    for (const char* kind : {"text", "json", "junit", "sarif", "github", "markdown"})
        options.insert(options.end(), {"--report", kind + ("=" + path(kind))});
    // Two errors and a warning.
    const Outcome outcome = runLauncher(checkOf({"errors", "2", "type", "8", "type", "7"}, options));
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(outcome.output, "") << "that is the program's";

    EXPECT_EQ(withoutTimes(contentOf(path("text"))),
        "corvale-run: failed: watched-program on this machine, 3 errors, 1 warning, 0 frames, TIME\n"
        "  error          2 x  GL_INVALID_OPERATION in glDrawArrays, frames 1 to 2\n"
        "                      xxxxxxxxxxxxxxxxxxxx\n"
        "  error          1 x  error, frame 3\n"
        "                      text\n"
        "  warning        1 x  warning, frame 4\n"
        "                      text\n");
    EXPECT_EQ(contentOf(path("github")),
        "::error title=GL_INVALID_OPERATION in glDrawArrays::xxxxxxxxxxxxxxxxxxxx%0A2 times, frames 1 to 2\n"
        "::error title=error::text%0A1 time, frame 3\n"
        "::notice title=warning::text%0A1 time, frame 4\n");
    EXPECT_EQ(withoutTimes(contentOf(path("markdown"))),
        "### Check of watched-program\n\n"
        "| Device | Result | Errors | Warnings | Messages | Frames | Time |\n"
        "| --- | --- | --: | --: | --: | --: | --: |\n"
        "| this machine | failed | 3 | 1 | 0 | 0 | TIME |\n\n"
        "| Severity | Count | Finding | Frames | Text | Devices |\n"
        "| --- | --: | --- | --- | --- | --: |\n"
        "| error | 2 | GL\\_INVALID\\_OPERATION in glDrawArrays | frames 1 to 2 | xxxxxxxxxxxxxxxxxxxx | 1 "
        "|\n"
        "| error | 1 | error | frame 3 | text | 1 |\n"
        "| warning | 1 | warning | frame 4 | text | 1 |\n");
    EXPECT_EQ(withoutTimes(contentOf(path("junit"))), R"(<?xml version="1.0" encoding="UTF-8"?>
<testsuites>
    <testsuite name="watched-program on this machine" tests="4" failures="2" errors="0" skipped="0" TIME>
        <testcase classname="watched-program.this machine" name="run" TIME/>
        <testcase classname="watched-program.this machine" name="GL_INVALID_OPERATION in glDrawArrays: xxxxxxxxxxxxxxxxxxxx" TIME>
            <failure type="GL_INVALID_OPERATION" message="xxxxxxxxxxxxxxxxxxxx">xxxxxxxxxxxxxxxxxxxx
2 times, frames 1 to 2</failure>
        </testcase>
        <testcase classname="watched-program.this machine" name="error: text" TIME>
            <failure type="error" message="text">text
1 time, frame 3</failure>
        </testcase>
        <testcase classname="watched-program.this machine" name="warning: text" TIME>
            <system-out>text</system-out>
        </testcase>
    </testsuite>
</testsuites>
)");

    const auto sarif = nlohmann::json::parse(contentOf(path("sarif"))).at("runs").at(0);
    EXPECT_EQ(sarif.at("results").size(), 3U);
    EXPECT_EQ(sarif.at("results")[0].at("ruleId"), "GL_INVALID_OPERATION");
    EXPECT_EQ(sarif.at("results")[0].at("occurrenceCount"), 2);
    EXPECT_EQ(sarif.at("results")[2].at("level"), "warning");
    EXPECT_EQ(sarif.at("tool").at("driver").at("rules")[2].at("id"), "warning");

    const std::vector<std::string> lines = linesOf(contentOf(path("json")));
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(nlohmann::json::parse(lines[0]).at("status"), 3);
    EXPECT_EQ(nlohmann::json::parse(lines[2]).at("count"), 2);
    EXPECT_EQ(nlohmann::json::parse(lines[4]).at("fails"), false);
}

TEST_F(Checks, letKnownFindingsPass)
{
    const std::string baseline = path("known");
    const Outcome written =
        runLauncher(checkOf({"errors", "2", "type", "8"}, {"--write-baseline", baseline}));
    EXPECT_EQ(written.code, 0) << written.errors;
    const std::string content = contentOf(baseline);
    EXPECT_NE(
        content.find("error\tglDrawArrays\tGL_INVALID_OPERATION\txxxxxxxxxxxxxxxxxxxx\n"), std::string::npos);

    EXPECT_EQ(runLauncher(checkOf({"type", "8", "errors", "9"}, {"--baseline", baseline})).code, 0);
    const Outcome more =
        runLauncher(checkOf({"type", "8", "type", "7"}, {"--fail-on", "warning", "--baseline", baseline}));
    EXPECT_EQ(more.code, 3);
    EXPECT_NE(more.errors.find("error (known)"), std::string::npos) << more.errors;
    EXPECT_NE(more.errors.find("gone: GL_INVALID_OPERATION in glDrawArrays"), std::string::npos)
        << more.errors;

    child_process::fill(baseline, content + "# ours\nwarning\t-\t-\told\n");
    runLauncher(checkOf({"type", "8"}, {"--write-baseline", baseline}));
    const std::string again = contentOf(baseline);
    EXPECT_EQ(again.find("glDrawArrays"), std::string::npos) << "what is gone is taken out";
    for (const char* unseen : {"/bin/true", "/bin/false"})
        runLauncher({"--check", "--write-baseline", baseline, unseen});
    EXPECT_EQ(contentOf(baseline), again) << "of programs that nothing was seen of";
    child_process::fill(baseline, "precious");
    EXPECT_EQ(runLauncher(checkOf({}, {"--write-baseline", baseline})).code, 2);
    EXPECT_EQ(contentOf(baseline), "precious");
}

TEST_F(Checks, runOnSeveralDevices)
{
    const Outcome outcome = runLauncher(checkOf({"errors", "3"},
        {"--profile", "Hadlow*", "--profile", "Host", "--jobs", "2", "--session", path("a.session"),
            "--report", "json=" + path("json")}));
    EXPECT_EQ(outcome.code, 3);
    for (const char* told : {"Hadlow Tarn 7 ", "Hadlow Tarn 10 ", "Hadlow Tarn 12 ", "this machine ", "12 x",
             "on 4 devices", "4 of 4 done", "failed: watched-program on 4 of 4 devices"})
        EXPECT_NE(outcome.errors.find(told), std::string::npos) << told << " in:\n" << outcome.errors;
    for (const char* name : {"a-host.session", "a-hadlow-tarn-10.session"}) {
        sessions::SessionReader reader;
        EXPECT_TRUE(reader.open(path(name))) << name << reader.reason();
        EXPECT_EQ(reader.recordCount(), 3U);
    }
    const Outcome compared = runLauncher({"--compare", path("json"), path("json")});
    EXPECT_EQ(compared.code, 0);
    EXPECT_EQ(compared.output, "Nothing differs.\n");

    Arguments options{"--log", path("log"), "--jobs", "3"};
    for (const char* name : {"a", "b", "c"}) {
        std::filesystem::create_directory(m_folder / name);
        const std::string profile = path(std::string(name) + (*name == 'c' ? "/\xC3\xA4.xml" : "/x.xml"));
        child_process::fill(profile, "<profile><device>D</device></profile>");
        options.insert(options.end(), {"--profile", profile});
    }
    runLauncher(checkOf({"errors", "3"}, options));
    for (const char* name : {"log-x", "log-x-2", "log-\xC3\xA4"}) {
        const std::string log = contentOf(path(name));
        EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 5) << name << ":\n" << log;
    }
}

/// Of runs at the same time each is shown whole.
TEST_F(Checks, keepTheOutputsOfRunsApart)
{
    const std::string script = "for i in 1 2 3; do echo $i; echo e$i >&2; sleep 0.02; done";
    const Outcome apart = runLauncher({"--check", "--profile", "Hadlow*", "--jobs", "3", "sh", "-c", script});
    EXPECT_EQ(apart.output, "1\n2\n3\n1\n2\n3\n1\n2\n3\n");
    EXPECT_NE(apart.errors.find("corvale-run: Output on Hadlow Tarn 10:\ne1\ne2\ne3\n"), std::string::npos)
        << apart.errors;

    // In one log their order stays.
    std::string command = "exec 2>&1; exec";
    for (const std::string& argument : LauncherRun::Arguments{CORVALE_RUN, "--check", "--quiet", "--jobs",
             "2", "--profile", "Host", "--profile", "Hadlow Tarn 7", "sh", "-c", script})
        command += " '" + argument + "'";
    const Outcome together = runLauncher({"sh", "-c", command});
    EXPECT_EQ(together.output, "1\ne1\n2\ne2\n3\ne3\n1\ne1\n2\ne2\n3\ne3\n");

    // Whoever waits for a reader that does not read can be told to end.
    LauncherRun stalled(
        {"--check", "--profile", "Hadlow*", "--jobs", "2", "head", "-c", "1000000", "/dev/zero"});
    char byte = 0;
    EXPECT_EQ(read(stalled.output(), &byte, 1), 1);
    kill(stalled.pid(), SIGTERM);
    EXPECT_NE(stalled.errors().find(" devices"), std::string::npos);
}

TEST_F(Checks, nameWhatIsReallyRun)
{
    for (const Arguments& before :
        {Arguments{"env", "A=1"}, Arguments{"sh", "-c", "\"$0\" \"$@\"; exit 0"}}) {
        Arguments arguments{"--check", "--report", "sarif=" + path("sarif")};
        arguments.insert(arguments.end(), before.begin(), before.end());
        arguments.insert(arguments.end(), {WATCHED_PROGRAM, "errors", "1"});
        const Outcome outcome = runLauncher(arguments);
        EXPECT_NE(outcome.errors.find(": watched-program on "), std::string::npos) << outcome.errors;
        EXPECT_NE(contentOf(path("sarif")).find("/watched-program\""), std::string::npos);
    }
}

/// Also by a signal that comes while runs are being started.
TEST_F(Checks, endAllRunsWhenTheyAreInterrupted)
{
    LauncherRun run({"--check", "--all-profiles", "--jobs", "64", "sleep", "9"});
    const std::string id = std::to_string(run.pid());
    while (contentOf("/proc/" + id + "/task/" + id + "/children").empty())
        std::this_thread::yield();
    const auto start = std::chrono::steady_clock::now();
    kill(run.pid(), SIGTERM);
    EXPECT_NE(run.errors().find(" devices"), std::string::npos) << "there is a summary";
    EXPECT_NE(run.finish(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 6s);
}

TEST_F(Checks, recordSessionsThatSurviveTheLauncher)
{
    {
        LauncherRun run({"--session", path("killed"), WATCHED_PROGRAM, "errors", "100", "read"});
        EXPECT_EQ(run.line(), "ready");
        sessions::SessionReader reader;
        for (int i = 0; i < 1000 && !(reader.open(path("killed")) && reader.recordCount() == 100); ++i)
            std::this_thread::sleep_for(10ms);
        kill(run.pid(), SIGKILL);
    }
    sessions::SessionReader reader;
    ASSERT_TRUE(reader.open(path("killed"))) << reader.reason();
    EXPECT_EQ(reader.recordCount(), 100U);
    EXPECT_EQ(reader.damage(), "");

    runLauncher(checkOf(
        {"errors", "90", "type", "8"}, {"--session", path("whole"), "--report", "json=" + path("report")}));
    EXPECT_EQ(runLauncher({"--compare", path("whole"), path("report")}).output, "Nothing differs.\n");
    const Outcome compared = runLauncher({"--compare", path("killed"), path("whole")});
    EXPECT_EQ(compared.code, 3);
    EXPECT_NE(compared.output.find("new      1 x  error"), std::string::npos) << compared.output;
    EXPECT_NE(
        compared.output.find("changed  100 -> 90 x  GL_INVALID_OPERATION in glDrawArrays"), std::string::npos)
        << compared.output;
    child_process::fill(path("neither"), "text");
    EXPECT_EQ(runLauncher({"--compare", path("killed"), path("neither")}).code, 2);
}
