#include "RunResult.h"

namespace checks {

int RunResult::programStatus() const
{
    constexpr int signalBase = 128;
    switch (end) {
    case End::NotRun:
    case End::Exited:
        return number;
    case End::Killed:
        return signalBase + number;
    default:
        return 0;
    }
}

} // namespace checks
