#include "RunOutput.h"

#include "ScratchFile.h"

#include <array>
#include <cerrno>
#include <string_view>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace checks {

namespace {

bool areSame(int stream, int other)
{
    struct stat one { };
    struct stat two { };
    return fstat(stream, &one) == 0 && fstat(other, &two) == 0 && one.st_dev == two.st_dev
        && one.st_ino == two.st_ino;
}

bool hasBytes(const platform::FileStream& file)
{
    struct stat status { };
    return file && fstat(fileno(file.get()), &status) == 0 && status.st_size > 0;
}

bool writeAll(int stream, std::string_view bytes, const RunOutput::MayGoOn& mayGoOn)
{
    constexpr int pause = 100; // milliseconds
    while (!bytes.empty()) {
        pollfd state{stream, POLLOUT, 0};
        const bool isStalled = poll(&state, 1, pause) <= 0;
        if (!mayGoOn(isStalled))
            return false;
        if (isStalled)
            continue;
        const ssize_t size = write(stream, bytes.data(), bytes.size());
        if (size > 0)
            bytes.remove_prefix(static_cast<std::size_t>(size));
        else if (errno != EINTR && errno != EAGAIN)
            return false;
    }
    return true;
}

void passFile(const platform::FileStream& file, int stream, const RunOutput::MayGoOn& mayGoOn)
{
    // A pipe that is ready takes so many without blocking.
    std::array<char, 4096> bytes{};
    off_t place = 0;
    for (;;) {
        const ssize_t size = file ? pread(fileno(file.get()), bytes.data(), bytes.size(), place) : 0;
        if (size <= 0 || !writeAll(stream, {bytes.data(), static_cast<std::size_t>(size)}, mayGoOn))
            return;
        place += size;
    }
}

} // namespace

RunOutput::RunOutput()
    : m_output(platform::openNamelessFile())
{
    if (m_output && !areSame(STDOUT_FILENO, STDERR_FILENO))
        m_errors = platform::openNamelessFile();
}

void RunOutput::redirect() const
{
    if (!m_output)
        return;
    dup2(fileno(m_output.get()), STDOUT_FILENO);
    dup2(fileno((m_errors ? m_errors : m_output).get()), STDERR_FILENO);
}

bool RunOutput::isEmpty() const
{
    return !hasBytes(m_output) && !hasBytes(m_errors);
}

void RunOutput::pass(const MayGoOn& mayGoOn) const
{
    passFile(m_output, STDOUT_FILENO, mayGoOn);
    passFile(m_errors, STDERR_FILENO, mayGoOn);
}

} // namespace checks
