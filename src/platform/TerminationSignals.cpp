#include "TerminationSignals.h"

#ifndef _WIN32
#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>
#endif

namespace platform {

#ifdef _WIN32

int catchTerminationSignals()
{
    return -1;
}

#else

namespace {

/// Written to by the signal handler, which may call little else than write().
int pipeEnd = -1;

extern "C" void noteSignal(int /*number*/)
{
    const int kept = errno;
    const char byte = 1;
    // A full pipe says as much as another byte would.
    [[maybe_unused]] const ssize_t written = write(pipeEnd, &byte, 1);
    errno = kept;
}

} // namespace

int catchTerminationSignals()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    pipeEnd = ends[1];
    struct sigaction action { };
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaction(number, &action, nullptr);
    return ends[0];
}

#endif

} // namespace platform
