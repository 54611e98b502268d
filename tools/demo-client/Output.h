#pragma once

#include <chrono>
#include <stdexcept>
#include <string_view>

namespace demo {

using Clock = std::chrono::steady_clock;

/// Thrown when a session ends before its scenario does. The text says so in words for the user.
class SessionOver : public std::runtime_error {
public:
    enum class Reason { StopNotice, Interrupted, Closed };

    explicit SessionOver(Reason reason);

    Reason reason() const { return m_reason; }

private:
    Reason m_reason;
};

/// Where the bytes of a scenario go: the window's socket, or a test. Once the session is over every function
/// throws SessionOver.
class Output {
public:
    virtual ~Output() = default;

    /// Sends all the bytes, which need not be whole records.
    virtual void send(std::string_view bytes) = 0;

    virtual void pause(Clock::duration time) = 0;

    /// Waits until the receiver has taken all that was sent and had time to act on it.
    virtual void settle() = 0;

    /// Sends the last bytes, even after a stop notice, and closes. Does nothing in the middle of a record.
    virtual void finish(std::string_view lastBytes) = 0;
};

} // namespace demo
