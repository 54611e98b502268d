#include "ChildProcess.h"
#include "FileFaults.h"
#include "FileReplacement.h"
#include "GuardedFile.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using child_process::contentOf;
using child_process::fill;

namespace {

const std::string oldContent(3000, 'o');
const std::string newContent(5000, 'n');

class FileReplacement : public testing::Test {
protected:
    void SetUp() override { fill(file, oldContent); }

    bool isWhole() const { return contentOf(file) == oldContent || contentOf(file) == newContent; }

    fs::path folder = child_process::freshFolder();
    fs::path file = folder / "file";
    fs::path temporary = folder / "file.tmp";
};

} // namespace

TEST_F(FileReplacement, everyStepMayFail)
{
    int number = 1;
    for (bool cameUp = true; cameUp; ++number) {
        fill(file, oldContent);
        file_faults::failCall(number, ENOSPC);
        const platform::FileResult result = platform::replaceFile(file, newContent);
        cameUp = file_faults::clear();
        EXPECT_TRUE(isWhole()) << "step " << number;
        EXPECT_EQ(result.reason.empty(), !cameUp) << "step " << number;
        EXPECT_EQ(contentOf(file) == newContent,
            !cameUp || result.reason.find("sync the folder") != std::string::npos);
        EXPECT_FALSE(fs::exists(temporary)) << "step " << number;
    }
    EXPECT_GT(number, 6) << "opening, emptying, writing, syncing, moving and syncing the folder can all fail";
}

TEST_F(FileReplacement, contentIsDurableBeforeItMoves)
{
    file_faults::clear();
    EXPECT_TRUE(platform::replaceFile(file, newContent));
    EXPECT_EQ(file_faults::trace(), "open ftruncate fchmod write fsync rename open fsync ");
}

TEST_F(FileReplacement, muchContentBecomesDurableOnTheWay)
{
    platform::FileReplacement replacement(file);
    file_faults::clear();
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(replacement.append(std::string(1U << 20U, 'n')));
    EXPECT_EQ(file_faults::trace(), "write write write write fsync write write write write fsync ");
}

TEST_F(FileReplacement, shortWritesAreCompleted)
{
    file_faults::shortWrites(7);
    EXPECT_EQ(platform::replaceFile(file, newContent).reason, "");
    file_faults::clear();
    EXPECT_EQ(contentOf(file), newContent);
}

TEST_F(FileReplacement, sizeLimit)
{
    EXPECT_EQ(child_process::run([this] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_FALSE(platform::replaceFile(file, newContent));
        EXPECT_EQ(contentOf(file), oldContent);
        return 0;
    }),
        0);
}

TEST_F(FileReplacement, linksAreFollowedAndModesKept)
{
    ASSERT_EQ(chmod(file.c_str(), 0640), 0);
    fs::create_directory(folder / "far");
    fs::create_symlink("../file", folder / "far" / "second");
    fs::create_symlink(folder / "far" / "second", folder / "first");
    fs::create_symlink("born", folder / "dangling");
    fs::create_symlink("circle", folder / "circle");

    EXPECT_EQ(platform::replaceFile(folder / "first", newContent).reason, "");
    EXPECT_EQ(contentOf(file), newContent);
    EXPECT_TRUE(fs::is_symlink(folder / "first") && fs::is_symlink(folder / "far" / "second"));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));

    EXPECT_EQ(platform::replaceFile(folder / "dangling", newContent).reason, "");
    EXPECT_EQ(contentOf(folder / "born"), newContent);
    EXPECT_TRUE(fs::is_symlink(folder / "dangling"));
    EXPECT_FALSE(platform::replaceFile(folder / "circle", newContent));
}

TEST_F(FileReplacement, onlyFilesAreReplaced)
{
    fs::create_directory(folder / "directory");
    mkfifo((folder / "fifo").c_str(), 0600);
    for (const char* name : {"directory", "fifo", "missing/file", ""})
        EXPECT_FALSE(platform::replaceFile(folder / name, newContent)) << name;
    EXPECT_TRUE(fs::is_fifo(folder / "fifo"));
    fs::create_symlink(file, temporary);
    EXPECT_FALSE(platform::replaceFile(file, newContent)) << "the temporary file leads elsewhere";
    EXPECT_EQ(contentOf(file), oldContent);
    EXPECT_TRUE(fs::is_symlink(temporary));
}

TEST_F(FileReplacement, processesTakeTurns)
{
    constexpr int rounds = 150;
    fill(file, "");
    const auto append = [this] {
        for (int round = 0; round < rounds; ++round) {
            platform::FileReplacement replacement(file);
            if (!replacement.commit(contentOf(file) + 'x'))
                return 1;
        }
        return 0;
    };
    const pid_t first = child_process::start(append);
    const pid_t second = child_process::start(append);
    EXPECT_EQ(child_process::finish(first), 0);
    EXPECT_EQ(child_process::finish(second), 0);
    EXPECT_EQ(contentOf(file).size(), 2U * rounds);
}

TEST_F(FileReplacement, patienceEnds)
{
    const int holder = open(temporary.c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(flock(holder, LOCK_EX), 0);
    const platform::FileReplacement replacement(file);
    EXPECT_FALSE(replacement.ready());
    EXPECT_TRUE(fs::exists(temporary)) << "it belongs to the other one";
    close(holder);
}

TEST_F(FileReplacement, onlyReasonableFilesAreRead)
{
    constexpr std::size_t limit = 4000;
    fs::create_directory(folder / "directory");
    mkfifo((folder / "fifo").c_str(), 0600);
    fill(folder / "monster", newContent);
    for (const char* name : {"directory", "fifo", "monster", "absent"}) {
        const platform::FileBytes bytes = platform::readFile(folder / name, limit);
        EXPECT_FALSE(bytes.ok) << name;
        EXPECT_NE(bytes.reason.find(name), std::string::npos) << bytes.reason;
        EXPECT_EQ(bytes.absent, name == std::string("absent"));
    }
    EXPECT_FALSE(platform::readFile("/dev/zero", limit).ok);
    EXPECT_EQ(platform::readFile(file, oldContent.size()).bytes, oldContent);

    const platform::OpenedFile opened = platform::openForReading(file, limit);
    fill(file, newContent);
    EXPECT_FALSE(platform::readStream(opened.stream.get(), limit).ok) << "it has grown since it was opened";
}
