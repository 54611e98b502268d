#pragma once

#include "Descriptor.h"

#include <chrono>
#include <cstdint>
#include <vector>

#include <sys/types.h>

namespace launcher {

/// Ends a program, with all that it has started, once it has run long enough: politely first, and after some
/// seconds for good.
class RunLimit {
public:
    using Clock = std::chrono::steady_clock;
    enum class Reached { None, Time, Frames };

    /// Zero is no limit.
    RunLimit(std::chrono::milliseconds time, std::uint32_t frames)
        : m_time(time)
        , m_frames(frames)
    {
    }
    /// The program has been started.
    void start() { m_start = Clock::now(); }

    /// Ends the program where that is due. In how many milliseconds this should be called again at the
    /// latest; -1 for never.
    int enforce(pid_t program, std::uint32_t frames);
    /// Whether nothing is left to wait for once the program has ended: if it was ended here, what it has
    /// started ends as well, with the same time for it unless that is urgent. To be called again and again.
    bool finish(bool isUrgent);

    Reached reached() const { return m_reached; }
    /// Whether asking was not enough.
    bool isHard() const { return m_isHard; }

private:
    struct Process {
        pid_t pid = 0;
        Descriptor descriptor;
    };

    void add(const std::vector<pid_t>& roots);
    std::vector<pid_t> living() const;
    void killAll(std::vector<pid_t> roots);
    void signalAll(int signal) const;

    std::chrono::milliseconds m_time;
    std::uint32_t m_frames;
    Clock::time_point m_start;
    Clock::time_point m_polite;
    Clock::time_point m_killed;
    std::vector<Process> m_processes; ///< Those that were asked to end.
    Reached m_reached = Reached::None;
    bool m_isHard = false;
};

} // namespace launcher
