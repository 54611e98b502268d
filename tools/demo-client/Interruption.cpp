#include "Interruption.h"

#include <csignal>

namespace demo::interruption {

namespace {

volatile std::sig_atomic_t requested = 0;

extern "C" void noteInterruption(int /*signal*/)
{
    requested = 1;
}

} // namespace

void watch()
{
    // Without SA_RESTART, so that a blocking call returns and the request is seen.
    struct sigaction action = {};
    action.sa_handler = noteInterruption;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool isRequested()
{
    return requested != 0;
}

} // namespace demo::interruption
