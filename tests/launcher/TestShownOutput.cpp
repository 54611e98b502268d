#include "FakeWindow.h"
#include "LauncherRun.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

class ShownOutput : public testing::Test {
protected:
    static void SetUpTestSuite() { LauncherRun::prepare(); }
    void SetUp() override { setenv("XDG_RUNTIME_DIR", child_process::freshFolder().c_str(), 1); }

    static LauncherRun::Arguments shell(const std::string& script)
    {
        return {"--show-output", "--", "sh", "-c", script};
    }
    /// Type and text of each record, but for the type of the window's own first one.
    static std::vector<std::string> seen(const SeenClient& client)
    {
        std::vector<std::string> lines;
        for (const SeenClient::Record& record : client.records) {
            if (record.type != 0)
                lines.push_back(std::to_string(record.type) + " " + record.text);
        }
        return lines;
    }
    static std::size_t peakMemory(pid_t pid) // kilobytes
    {
        std::ifstream status("/proc/" + std::to_string(pid) + "/status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with("VmHWM:"))
                return std::stoul(line.substr(6));
        }
        return 0;
    }
};

} // namespace

/// A program that begins to use EGL later than it writes is the same client.
TEST_F(ShownOutput, isInOneClientWithTheErrors)
{
    FakeWindow window;
    LauncherRun run(
        shell("echo one; printf 'two\\r\\n\\n'; read go; exec " WATCHED_PROGRAM " errors 2 _exit 3"));
    EXPECT_EQ(run.line(), "one");
    EXPECT_EQ(run.line(), "two\r");
    ASSERT_TRUE(
        window.takeUntil([&] { return !window.clients.empty() && window.clients[0].records.size() == 5; }));
    run.closeInput();
    ASSERT_TRUE(window.takeAll());
    EXPECT_EQ(run.finish(), 3);
    ASSERT_EQ(window.clients.size(), 1U);
    const std::vector<std::string> lines = seen(window.clients[0]);
    const std::vector<std::string> first(lines.begin(), lines.begin() + 4);
    EXPECT_EQ(first, (std::vector<std::string>{"2 sh", "6 one", "6 two", "6 "}));
    EXPECT_EQ(window.clients[0].types(), (std::vector<std::uint32_t>{0, 2, 6, 6, 6, 2, 9, 9, 6, 1}));
    EXPECT_EQ(lines[4], "2 watched-program");
    EXPECT_EQ(lines[7], "6 Ended with exit status 3");
}

TEST_F(ShownOutput, makesAClientOfAnyProgram)
{
    FakeWindow window;
    LauncherRun silent({"--show-output", "true"});
    ASSERT_TRUE(window.takeAll(1));
    EXPECT_EQ(silent.finish(), 0);
    LauncherRun crashing(shell("printf 'no end' >&2; kill -SEGV $$"));
    EXPECT_EQ(crashing.errors(), "no end\n");
    ASSERT_TRUE(window.takeAll(2));
    EXPECT_EQ(crashing.finish(), -SIGSEGV);

    using Lines = std::vector<std::string>;
    EXPECT_EQ(seen(window.clients[0]), (Lines{"2 true", "6 Ended with exit status 0", "1 "}));
    EXPECT_EQ(
        seen(window.clients[1]), (Lines{"2 sh", "6 no end", "8 Killed by SIGSEGV (segmentation fault)"}));
}

/// A window throws the output away, so programs are to write into something that makes them write line by
/// line.
TEST_F(ShownOutput, comesLineByLine)
{
    FakeWindow window;
    LauncherRun run(shell("awk 'BEGIN { print \"early\"; while (1) ; }'"), "/dev/null");
    EXPECT_TRUE(window.takeUntil([&] {
        return !window.clients.empty()
            && seen(window.clients[0]) == std::vector<std::string>{"2 sh", "6 early"};
    }));
    kill(run.pid(), SIGKILL);
}

TEST_F(ShownOutput, cutsLongLinesBetweenCharacters)
{
    constexpr std::size_t longest = 8215; // an odd number, while each character has two bytes
    FakeWindow window;
    LauncherRun run(shell("yes ä | head -n 20000 | tr -d '\\n'; echo; echo last"));
    ASSERT_TRUE(window.takeAll());
    std::string whole;
    std::vector<std::size_t> sizes;
    for (const SeenClient::Record& record : window.clients[0].records) {
        if (record.type == 6 && record.text.starts_with("ä")) {
            whole += record.text;
            sizes.push_back(record.text.size());
        }
    }
    EXPECT_EQ(sizes, (std::vector<std::size_t>{longest - 1, longest - 1, longest - 1, longest - 1, 7144}));
    EXPECT_EQ(whole.size(), 40'000U);
    EXPECT_EQ(seen(window.clients[0]).at(6), "6 last");
    EXPECT_EQ(run.line().size(), 40'000U);
    EXPECT_EQ(run.finish(), 0);
}

/// Nothing is read faster than somebody takes it, and a launcher that waits for that can still be ended.
TEST_F(ShownOutput, doesNotPileUpInTheLauncher)
{
    LauncherRun run(shell("echo ready; exec tr '\\0' x </dev/zero"));
    EXPECT_EQ(run.line(), "ready");
    std::this_thread::sleep_for(500ms);
    EXPECT_LT(peakMemory(run.pid()), 64U << 10U);
    for (int i = 0; i < 2; ++i) {
        kill(run.pid(), SIGTERM);
        std::this_thread::sleep_for(200ms);
    }
    EXPECT_EQ(run.finish(), -SIGTERM);
}

/// A window that takes nothing does not hold the program up for good; what it misses is counted.
TEST_F(ShownOutput, goesOnWithoutAWindowThatIsStuck)
{
    constexpr std::size_t count = 50'000; // of 4 KiB, more than may wait
    FakeWindow window;
    LauncherRun run(
        shell("yes $(printf '%04000d' 7) | head -n " + std::to_string(count) + " 1>&2; echo; echo done"));
    // Nobody reads what is passed on either.
    run.closeErrors();
    EXPECT_EQ(run.line(), "");
    EXPECT_EQ(run.line(), "done");
    const auto isShown = [](const SeenClient::Record& record) {
        return record.text.starts_with("00");
    };
    ASSERT_TRUE(window.takeAll());
    const SeenClient& client = window.clients.at(0);
    EXPECT_GT(client.droppedCount, 0U);
    // The two short lines may be among those that were dropped.
    const auto shown = static_cast<std::size_t>(std::ranges::count_if(client.records, isShown));
    EXPECT_GE(shown + client.droppedCount, count);
    EXPECT_LE(shown + client.droppedCount, count + 2);
}

TEST_F(ShownOutput, breaksThePipeOfTheOutputOnly)
{
    LauncherRun errors(
        shell("echo ready; read go; for i in 1 2 3; do echo $i >&2; sleep 0.05; done; exit 7"));
    EXPECT_EQ(errors.line(), "ready");
    errors.closeErrors();
    errors.goOn();
    errors.closeInput();
    EXPECT_EQ(errors.finish(), 7);

    LauncherRun output(shell("echo ready; read go; while echo more; do sleep 0.01; done"));
    EXPECT_EQ(output.line(), "ready");
    output.closeOutput();
    output.closeInput();
    EXPECT_EQ(output.finish(), -SIGPIPE);
}
