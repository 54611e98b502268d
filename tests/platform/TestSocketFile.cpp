#include "ChildProcess.h"
#include "Descriptors.h"
#include "SocketFile.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// Leaves a socket file behind, as a killed server does.
fs::path makeSocketFile(const fs::path& path)
{
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(descriptor);
    return path;
}

} // namespace

TEST(SocketFile, onlyASocketOfOurOwnCounts)
{
    const fs::path folder = child_process::freshFolder();
    const fs::path socketPath = makeSocketFile(folder / "socket");
    std::ofstream(folder / "plain") << "not a socket";
    fs::create_symlink(socketPath, folder / "link");
    mkfifo((folder / "fifo").c_str(), 0600);

    EXPECT_TRUE(platform::isOwnSocketFile(socketPath));
    EXPECT_FALSE(platform::isOwnSocketFile(folder / "plain"));
    EXPECT_FALSE(platform::isOwnSocketFile(folder / "link")) << "a link may lead anywhere";
    EXPECT_FALSE(platform::isOwnSocketFile(folder / "fifo"));
    EXPECT_FALSE(platform::isOwnSocketFile(folder / "absent"));
    EXPECT_FALSE(platform::isOwnSocketFile(folder));
    if (geteuid() == 0) {
        ASSERT_EQ(lchown(socketPath.c_str(), 12345, 12345), 0);
        EXPECT_FALSE(platform::isOwnSocketFile(socketPath)) << "somebody else's";
    }
}

TEST(SocketFile, ownerOnlyFilesLastsForItsScope)
{
    umask(022);
    const fs::path folder = child_process::freshFolder();
    fs::path inside;
    {
        const platform::OwnerOnlyFiles ownerOnly;
        inside = makeSocketFile(folder / "inside");
    }
    const fs::path outside = makeSocketFile(folder / "outside");
    EXPECT_EQ(fs::status(inside).permissions() & fs::perms::mask, fs::perms::owner_all);
    EXPECT_EQ(fs::status(outside).permissions() & fs::perms::mask,
        fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec | fs::perms::others_read
            | fs::perms::others_exec);
}

TEST(Descriptors, softLimitIsRaised)
{
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = 64;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    const std::size_t raised = platform::raiseDescriptorLimit();
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(raised, limit.rlim_cur);
    EXPECT_GT(raised, 64U);
}
