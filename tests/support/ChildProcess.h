#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

/// Processes and files for tests of what happens on disk.
namespace child_process {

constexpr int skipped = 77;

/// Starts a process that runs the body and ends with the code it returns, or with 1 when an expectation
/// failed.
template <typename Body> pid_t start(Body body)
{
    const pid_t child = fork();
    if (child == 0) {
        const int code = body();
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : code);
    }
    return child;
}

/// Waits for a process. Its exit code, or minus the number of the signal that ended it.
inline int finish(pid_t child)
{
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return -1000;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

template <typename Body> int run(Body body)
{
    return finish(start(body));
}

/// True while the process has that file open.
inline bool hasOpen(pid_t process, const std::filesystem::path& path)
{
    std::error_code error;
    for (const auto& entry :
        std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/fd", error)) {
        if (std::filesystem::read_symlink(entry, error) == path)
            return true;
    }
    return false;
}

/// In a child only: puts a small disk over a folder, which nobody else sees and which goes with the process.
/// False where that is not allowed.
inline bool mountSmallDisk(const std::filesystem::path& folder, const char* size)
{
    return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && mount("tmpfs", folder.c_str(), "tmpfs", 0, size) == 0;
}

/// In a child only: nothing can be written in that folder any more.
inline bool makeReadOnly(const std::filesystem::path& folder)
{
    return mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

inline std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void fill(const std::filesystem::path& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary) << content;
}

/// A new, empty folder of the running test.
inline std::filesystem::path freshFolder()
{
    static int number = 0;
    auto folder = std::filesystem::temp_directory_path() / ("folder" + std::to_string(++number));
    std::filesystem::create_directory(folder);
    return folder;
}

} // namespace child_process
