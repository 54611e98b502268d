#pragma once

#include "SessionSummary.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace checks {

/// What came of one run of the program on one device, with what it reported.
struct RunResult : sessions::SessionSummary {
    enum class End {
        NotRun, ///< `failure` says why.
        Unwatchable, ///< The same.
        Exited, ///< `number` is the status.
        Killed, ///< `number` is the signal.
        TimeOver, ///< Ended by us.
        FramesDone, ///< Ended by us, as it was wanted.
    };

    End end = End::NotRun;
    int number = 0;
    std::string program; ///< What was watched, by its name; empty if that has none.
    std::string failure;
    bool isWatched = false; ///< Whether it has called EGL.
    bool isHardEnd = false; ///< It did not end when it was asked to.
    std::uint32_t frames = 0;
    std::chrono::milliseconds time{};

    /// Of the program as a shell has it; 0 where we have ended it.
    int programStatus() const;
    std::string deviceName() const { return device.empty() ? "this machine" : device; }
};

} // namespace checks
