#include "ChildAnswer.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host_query {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int answered = 0;
constexpr int refused = 1;

void writeAll(int file, const std::string& text)
{
    std::size_t at = 0;
    while (at < text.size()) {
        const ssize_t size = write(file, text.data() + at, text.size() - at);
        if (size < 0 && errno != EINTR)
            return;
        at += size > 0 ? static_cast<std::size_t>(size) : 0;
    }
}

[[noreturn]] void answer(const std::function<std::string()>& function, int pipeEnd)
{
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    int code = answered;
    std::string text;
    try {
        text = function();
    } catch (const std::exception& error) {
        code = refused;
        text = error.what();
    }
    writeAll(pipeEnd, text);
    // Destructors of drivers may crash.
    _exit(code);
}

/// Reads to the end. Empty for that, else why not.
std::string readAll(int file, Clock::time_point end, std::size_t mostBytes, std::string& text)
{
    std::array<char, 65536> buffer{};
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0)
            return "the driver takes too long";
        pollfd readable{file, POLLIN, 0};
        if (poll(&readable, 1, static_cast<int>(left)) <= 0)
            continue;
        const ssize_t size = read(file, buffer.data(), buffer.size());
        if (size == 0)
            return {};
        if (size > 0)
            text.append(buffer.data(), static_cast<std::size_t>(size));
        if (text.size() > mostBytes)
            return "the driver says too much";
    }
}

} // namespace

ChildAnswer askChild(
    const std::function<std::string()>& function, std::chrono::milliseconds limit, std::size_t mostBytes)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return {false, std::strerror(errno)};
    const pid_t child = fork();
    if (child == 0)
        answer(function, ends[1]);
    close(ends[1]);
    if (child < 0) {
        close(ends[0]);
        return {false, std::strerror(errno)};
    }
    std::string text;
    const std::string reason = readAll(ends[0], Clock::now() + limit, mostBytes, text);
    close(ends[0]);
    if (!reason.empty())
        kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    if (!reason.empty())
        return {false, reason};
    if (WIFSIGNALED(status))
        return {false, std::string("the driver has crashed: ") + strsignal(WTERMSIG(status))};
    return {WEXITSTATUS(status) == answered, text};
}

} // namespace host_query
