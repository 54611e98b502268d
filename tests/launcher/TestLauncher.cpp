#include "FakeWindow.h"
#include "LauncherRun.h"

#include <algorithm>
#include <csignal>
#include <numeric>
#include <optional>
#include <thread>

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/resource.h>

using namespace std::chrono_literals;
using ui::messages::Message;

namespace {

class Launcher : public testing::Test {
protected:
    static void SetUpTestSuite() { LauncherRun::prepare(); }
    /// A launcher that was killed leaves its folder behind.
    void SetUp() override { setenv("XDG_RUNTIME_DIR", child_process::freshFolder().c_str(), 1); }

    /// Arguments that run the stand-in with some steps, behind options.
    static LauncherRun::Arguments program(
        const LauncherRun::Arguments& steps, LauncherRun::Arguments options = {})
    {
        options.emplace_back(WATCHED_PROGRAM);
        options.insert(options.end(), steps.begin(), steps.end());
        return options;
    }
    static std::vector<std::uint32_t> countUpTo(std::uint32_t last, std::uint32_t first = 1)
    {
        std::vector<std::uint32_t> numbers(last - first + 1);
        std::iota(numbers.begin(), numbers.end(), first);
        return numbers;
    }
    static std::vector<std::filesystem::path> leftFolders()
    {
        std::vector<std::filesystem::path> left;
        for (const auto& entry : std::filesystem::directory_iterator(std::getenv("XDG_RUNTIME_DIR")))
            left.push_back(entry.path());
        return left;
    }
};

struct Death {
    const char* name;
    LauncherRun::Arguments steps;
    int code;
    const char* lastWords; ///< Of a lost connection; null for a good-bye.
};

void PrintTo(const Death& death, std::ostream* stream)
{
    *stream << death.name;
}

class LauncherDeath : public Launcher, public testing::WithParamInterface<Death> { };

} // namespace

TEST_P(LauncherDeath, everythingBeforeItArrives)
{
    FakeWindow window;
    LauncherRun::Arguments steps{"errors", "3000"};
    steps.insert(steps.end(), GetParam().steps.begin(), GetParam().steps.end());
    LauncherRun run(program(steps));
    ASSERT_TRUE(window.takeAll());
    EXPECT_EQ(run.finish(), GetParam().code);
    EXPECT_TRUE(leftFolders().empty());

    const SeenClient& client = window.clients.at(0);
    ASSERT_GE(client.records.size(), 3003U);
    EXPECT_EQ(client.records[0].type, 0U);
    EXPECT_EQ(client.records[1].type, 2U);
    EXPECT_EQ(client.records[1].text, "watched-program");
    EXPECT_EQ(client.errorFrames(), countUpTo(3000));
    EXPECT_EQ(client.records.size(), 3003U);
    if (GetParam().lastWords) {
        EXPECT_EQ(client.records.back().type, 8U);
        EXPECT_EQ(client.records.back().text, GetParam().lastWords);
    } else {
        EXPECT_EQ(client.records.back().type, 1U);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, LauncherDeath,
    testing::Values(Death{"return", {}, 0, nullptr}, Death{"exit", {"exit", "7"}, 7, nullptr},
        Death{"quickExit", {"_exit", "200"}, 200, nullptr},
        Death{"closedDescriptors", {"close", "_exit", "3"}, 3, nullptr},
        Death{"exec", {"exec", "sh", "-c", "exit 4"}, 4, nullptr},
        Death{"crash", {"signal", "11"}, -SIGSEGV, "Killed by SIGSEGV (segmentation fault)"},
        Death{"abort", {"signal", "6"}, -SIGABRT, "Killed by SIGABRT (aborted)"},
        Death{"kill", {"signal", "9"}, -SIGKILL, "Killed by SIGKILL (killed)"},
        Death{"terminate", {"signal", "15"}, -SIGTERM, "Killed by SIGTERM (terminated)"}),
    [](const auto& test) { return std::string(test.param.name); });

/// Whoever stands in for another process has a tab of its own, and an exec of a watched program is a new one.
TEST_F(Launcher, eachProcessIsAClient)
{
    FakeWindow window;
    LauncherRun forking(program({"errors", "10", "fork", "errors", "5"}, {"--name", "Chosen"}));
    ASSERT_TRUE(window.takeAll(2));
    EXPECT_EQ(forking.finish(), 0);
    LauncherRun executing(program({"errors", "3", "exec", WATCHED_PROGRAM, "errors", "2"}));
    ASSERT_TRUE(window.takeAll(4));
    EXPECT_EQ(executing.finish(), 0);

    std::vector<std::vector<std::uint32_t>> errors;
    for (const SeenClient& client : window.clients) {
        EXPECT_EQ(client.records.back().type, 1U);
        errors.push_back(client.errorFrames());
    }
    EXPECT_EQ(window.clients[0].records[1].text, "Chosen");
    EXPECT_EQ(errors[0], countUpTo(15));
    EXPECT_EQ(errors[1], countUpTo(15, 11));
    EXPECT_EQ(errors[2], countUpTo(3));
    EXPECT_EQ(errors[3], countUpTo(2));
}

TEST_F(Launcher, doesNotWaitForProcessesThatOutliveTheProgram)
{
    FakeWindow window;
    LauncherRun run(program({"leave", "errors", "1", "read"}));
    EXPECT_EQ(run.line(), "ready");
    EXPECT_EQ(run.finish(), 0);
    EXPECT_EQ(leftFolders().size(), 1U) << "the process may still look for its EGL";
    run.goOn();
    EXPECT_EQ(run.line(), "0 interruptions");
}

TEST_F(Launcher, windowsMayComeLateAndGo)
{
    auto window = std::make_optional<FakeWindow>();
    window.reset();
    LauncherRun run(program({"type", "10", "errors", "3", "type", "20", "read", "errors", "4", "read",
        "errors", "2", "read", "errors", "1"}));
    EXPECT_EQ(run.line(), "ready");

    window.emplace();
    ASSERT_TRUE(window->takeErrors(3));
    const std::vector<std::uint32_t> kept{0, 2, 10, 20};
    const std::vector<std::uint32_t> first{0, 2, 10, 20, 9, 9, 9};
    EXPECT_EQ(window->clients.at(0).types(), first);
    // This one is gone without a word: the next one gets what matters again, and what came meanwhile.
    window.reset();
    run.goOn();
    EXPECT_EQ(run.line(), "0 interruptions");
    EXPECT_EQ(run.line(), "ready");
    std::this_thread::sleep_for(50ms);
    window.emplace();
    ASSERT_TRUE(window->takeErrors(4));
    EXPECT_EQ(window->clients.at(0).errorFrames(), countUpTo(9, 6));

    // It does not want this client any more, so the client stays away until there is another one.
    window->send(Message::notifyServerStop());
    ASSERT_TRUE(window->takeAll());
    run.goOn();
    EXPECT_EQ(run.line(), "0 interruptions");
    EXPECT_EQ(run.line(), "ready");
    EXPECT_FALSE(window->takeUntil([&, start = std::chrono::steady_clock::now()] {
        EXPECT_EQ(window->clients.size(), 1U);
        return std::chrono::steady_clock::now() > start + 1s;
    }) && window->clients.size() != 1);
    window.reset();
    window.emplace();
    ASSERT_TRUE(window->takeErrors(2));
    run.goOn();
    ASSERT_TRUE(window->takeAll());
    EXPECT_EQ(window->clients.at(0).types(), (std::vector<std::uint32_t>{0, 2, 10, 20, 9, 9, 9, 1}));
    EXPECT_EQ(window->clients.at(0).errorFrames(), countUpTo(12, 10));
    EXPECT_EQ(run.finish(), 0);
}

TEST_F(Launcher, aStoppedWindowHoldsNothingUp)
{
    FakeWindow window;
    LauncherRun run(program({"time", "200000", "60", "read"}));
    EXPECT_LT(std::stod(run.line()), 1.0);
    ASSERT_TRUE(window.takeAccountOf(200'000));
    EXPECT_TRUE(std::ranges::is_sorted(window.clients.at(0).errorFrames()));
    run.goOn();
    EXPECT_TRUE(window.takeAll());

    LauncherRun atEnd(program({"time", "200000", "60"}));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(atEnd.finish(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
}

/// Whether there is no window or a slow one: what is missing is counted where it is missing.
TEST_F(Launcher, tellsWhatWasDropped)
{
    constexpr std::size_t count = 20'000; // of 8 KiB, more than may wait
    for (const bool isWindowThere : {false, true}) {
        std::optional<FakeWindow> window;
        if (isWindowThere)
            window.emplace();
        LauncherRun run(program({"time", std::to_string(count), "8100", "read", "errors", "1"}));
        run.line();
        if (!window)
            window.emplace();
        ASSERT_TRUE(window->takeAccountOf(count)) << isWindowThere;
        run.goOn();
        ASSERT_TRUE(window->takeAll());
        const SeenClient& client = window->clients[0];
        EXPECT_EQ(client.errorCount + client.droppedCount, count + 1);
        EXPECT_TRUE(std::ranges::is_sorted(client.errorFrames()));
        const std::string text = isWindowThere ? "made them faster" : "no window took them";
        EXPECT_EQ(std::ranges::count_if(client.records,
                      [&](const auto& record) { return record.text.find(text) != std::string::npos; }),
            isWindowThere ? std::ranges::count(client.types(), 7U) : 1);
        EXPECT_GT(client.droppedCount, 0U);
    }
}

TEST_F(Launcher, believesNothingThatIsInTheRing)
{
    for (const LauncherRun::Arguments& steps :
        {LauncherRun::Arguments{"scribble"}, LauncherRun::Arguments{"type", "1"}}) {
        FakeWindow window;
        LauncherRun::Arguments all{"errors", "2", "read"};
        all.insert(all.end(), steps.begin(), steps.end());
        all.insert(all.end(), {"errors", "5", "read", "_exit", "5"});
        LauncherRun run(program(all));
        EXPECT_EQ(run.line(), "ready");
        ASSERT_TRUE(window.takeErrors(2));
        run.goOn();
        EXPECT_EQ(run.line(), "0 interruptions");
        run.goOn();
        ASSERT_TRUE(window.takeAll());
        EXPECT_EQ(run.finish(), 5);
        EXPECT_EQ(window.clients[0].types(), (std::vector<std::uint32_t>{0, 2, 9, 9, 7, 1}));
    }
}

TEST_F(Launcher, passesWireframeToTheProgram)
{
    FakeWindow window;
    LauncherRun run(program({"errors", "1", "wireframe"}));
    ASSERT_TRUE(window.takeErrors(1));
    window.send(Message::wireframeOn());
    EXPECT_TRUE(window.takeAll());
    EXPECT_EQ(run.finish(), 0);
}

TEST_F(Launcher, passesSignalsOnAndStopsWithTheProgram)
{
    LauncherRun run(program({"catch", "10", "catch", "15", "read"}));
    EXPECT_EQ(run.line(), "ready");
    kill(run.pid(), SIGUSR1);
    std::this_thread::sleep_for(100ms);
    kill(run.pid(), SIGTERM);
    std::this_thread::sleep_for(100ms);

    kill(-run.pid(), SIGTSTP);
    int status = 0;
    ASSERT_EQ(waitpid(run.pid(), &status, WUNTRACED), run.pid());
    EXPECT_TRUE(WIFSTOPPED(status));
    kill(run.pid(), SIGCONT);
    run.goOn();
    EXPECT_EQ(run.line(), "2 interruptions");
    EXPECT_EQ(run.finish(), 0);
}

/// Nobody would let the launcher go on.
TEST_F(Launcher, goesOnWhileTheProgramAloneIsStopped)
{
    LauncherRun run(program({"stop", "_exit", "5"}));
    siginfo_t change{};
    EXPECT_EQ(waitid(P_PID, static_cast<id_t>(run.pid()), &change, WEXITED | WSTOPPED | WNOWAIT), 0);
    EXPECT_EQ(change.si_code, CLD_EXITED);
    EXPECT_EQ(change.si_status, 5);
}

TEST_F(Launcher, letsThreadsBeCancelled)
{
    LauncherRun run(program({"cancel", "_exit", "5"}));
    EXPECT_EQ(run.finish(), 5);
}

/// The terminal tells both; the program must hear of it once each time, and decide alone.
TEST_F(Launcher, leavesCtrlCToTheProgram)
{
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        execl(CORVALE_RUN, CORVALE_RUN, WATCHED_PROGRAM, "catch", "2", "read", "_exit", "6", nullptr);
        _exit(99);
    }
    std::string output;
    const auto waitFor = [&](const std::string& text) {
        char byte = 0;
        while (output.find(text) == std::string::npos && read(terminal, &byte, 1) == 1)
            output += byte;
    };
    waitFor("ready");
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(write(terminal, "\x03", 1), 1);
        std::this_thread::sleep_for(30ms);
    }
    EXPECT_EQ(write(terminal, "\n", 1), 1);
    waitFor("interruptions");
    EXPECT_NE(output.find("8 interruptions"), std::string::npos) << output;
    EXPECT_EQ(child_process::finish(child), 6);
    close(terminal);
}

TEST_F(Launcher, writesALineForEachRecordIntoTheLog)
{
    const std::filesystem::path log = child_process::freshFolder() / "log";
    LauncherRun run(program({"type", "10", "errors", "2", "read", "signal", "11"}, {"--log", log.string()}));
    EXPECT_EQ(run.line(), "ready");
    for (int i = 0; i < 100 && child_process::contentOf(log).find(" 3 gl-error") == std::string::npos; ++i)
        std::this_thread::sleep_for(50ms);
    kill(run.pid(), SIGKILL);
    EXPECT_EQ(run.finish(), -SIGKILL);
    const std::string text = child_process::contentOf(log);
    EXPECT_EQ(std::ranges::count(text, '\n'), 4);
    EXPECT_NE(text.find(" 1 context 1954047348 loose\n"), std::string::npos) << text;
    EXPECT_NE(text.find(" 3 gl-error GL_INVALID_OPERATION in glDrawArrays: xxx"), std::string::npos) << text;
    run.goOn();

    LauncherRun refused(program({}, {"--log", "/nonexistent/log"}));
    EXPECT_EQ(refused.errors(), "corvale-run: Cannot write /nonexistent/log: No such file or directory.\n");
    EXPECT_EQ(refused.finish(), 2);
}

TEST_F(Launcher, replacesFilesOnlyForAProgramThatRuns)
{
    const std::filesystem::path folder = child_process::freshFolder();
    const std::string log = folder / "log";
    const std::string session = folder / "session";
    const LauncherRun::Arguments files{"--log", log, "--session", session};
    ASSERT_EQ(LauncherRun(program({"errors", "1"}, files)).finish(), 0);
    const std::string oldLog = child_process::contentOf(log);
    const std::string oldSession = child_process::contentOf(session);
    ASSERT_FALSE(oldLog.empty() || oldSession.empty());
    const auto runWith = [&](const LauncherRun::Arguments& others) {
        LauncherRun::Arguments arguments = files;
        arguments.insert(arguments.end(), others.begin(), others.end());
        return LauncherRun(arguments).finish();
    };
    EXPECT_EQ(runWith({"--profile", "Typo", "true"}), 2);
    EXPECT_EQ(runWith({"/etc/passwd"}), 126);
    EXPECT_EQ(runWith({"/no/such/program"}), 127);
    EXPECT_EQ(runWith({"--session", "/nonexistent/session", "true"}), 2);
    std::filesystem::create_symlink(log, folder / "alias");
    EXPECT_EQ(runWith({"--session", (folder / "alias").string(), "true"}), 2);
    EXPECT_EQ(child_process::contentOf(log), oldLog);
    EXPECT_EQ(child_process::contentOf(session), oldSession);
    EXPECT_EQ(runWith({"true"}), 0);
    EXPECT_EQ(child_process::contentOf(log), "");
}

TEST_F(Launcher, saysWhenNothingCanBeWatched)
{
    const std::filesystem::path missing = std::filesystem::temp_directory_path() / "none";
    const std::string before = std::getenv("CORVALE_LAYER_DIR");
    setenv("CORVALE_LAYER_DIR", missing.c_str(), 1);
    const std::string reason = "there is no " + (missing / "libEGL_corvale.so").string() + ".\n";
    const std::string name = WATCHED_PROGRAM;
    LauncherRun said(program({"errors", "1"}));
    EXPECT_EQ(said.line(), "unwatched");
    EXPECT_EQ(said.errors(), "corvale-run: Running " + name + " without watching it: " + reason);
    EXPECT_EQ(said.finish(), 90);
    LauncherRun quiet(program({"errors", "1"}, {"--quiet"}));
    EXPECT_EQ(quiet.errors(), "");
    EXPECT_EQ(quiet.finish(), 90);
    LauncherRun required(program({"errors", "1"}, {"--require"}));
    EXPECT_EQ(required.errors(), "corvale-run: Cannot watch " + name + ": " + reason);
    EXPECT_EQ(required.finish(), 126);
    LauncherRun impersonated(program({"errors", "1"}, {"--quiet", "--profile", "Ostrell Wren"}));
    EXPECT_TRUE(impersonated.errors().ends_with("the profile Ostrell Wren has no effect.\n"));
    EXPECT_EQ(impersonated.finish(), 90);
    setenv("CORVALE_LAYER_DIR", before.c_str(), 1);

    LauncherRun never(program({"unwatched"}, {"--require"}));
    EXPECT_NE(never.errors().find("Nothing was watched"), std::string::npos);
    EXPECT_EQ(never.finish(), 1);
}

TEST_F(Launcher, titlesTellWhichDeviceAProgramSees)
{
    for (const auto& [name, title] :
        {std::pair("", "watched-program on Ostrell Wren"), {"Mine", "Mine on Ostrell Wren"}}) {
        FakeWindow window;
        LauncherRun run(program({"errors", "1"}, {"--profile", "Ostrell Wren", "--name", name}));
        ASSERT_TRUE(window.takeAll());
        EXPECT_EQ(run.errors(), "");
        EXPECT_EQ(window.clients.at(0).records.at(1).text, title);
    }
}

TEST_F(Launcher, makesNoProfileOfNothing)
{
    const std::filesystem::path file = child_process::freshFolder() / "made.xml";
    child_process::fill(file, "old");
    LauncherRun nothing({"--make-profile", file.string()});
    EXPECT_TRUE(nothing.errors().ends_with(
        "corvale-run: This machine has no OpenGL ES; there is no profile to be made.\n"));
    EXPECT_EQ(nothing.finish(), 1);
    EXPECT_EQ(child_process::contentOf(file), "old");
    EXPECT_EQ(std::ranges::distance(std::filesystem::directory_iterator(file.parent_path())), 1);
    LauncherRun nowhere({"--make-profile", (file / "below").string()});
    EXPECT_NE(nowhere.errors().find("Not a directory"), std::string::npos);
    EXPECT_EQ(nowhere.finish(), 1);
    EXPECT_EQ(LauncherRun({"--make-profile", file.string(), "true"}).finish(), 2);
}

TEST_F(Launcher, endsWithTheCodesOfAShell)
{
    EXPECT_EQ(LauncherRun({"--", "no-such-program"}).finish(), 127);
    EXPECT_EQ(LauncherRun({"/etc/passwd"}).finish(), 126);
    EXPECT_EQ(LauncherRun({}).finish(), 2);
    EXPECT_EQ(LauncherRun({"--bogus", "true"}).finish(), 2);
    EXPECT_EQ(LauncherRun({"--profile", "Any", "true"}).finish(), 2);
    EXPECT_EQ(LauncherRun({"sh", "-c", "exit 5", "--help"}).finish(), 5);
    EXPECT_EQ(LauncherRun({"--version"}).line(), "corvale-run " CORVALE_VERSION);
}
