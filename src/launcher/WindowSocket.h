#pragma once

#include "Descriptor.h"

#include <cstdint>
#include <optional>
#include <string>

namespace launcher {

/// Where the window listens. The path is that of the launcher's start, whatever programs do to TMPDIR.
class WindowSocket {
public:
    /// Tells one window's socket from that of the next, even if both have the same number in the file system.
    struct Identity {
        std::uint64_t device;
        std::uint64_t number;
        std::int64_t changedAt; ///< Nanoseconds of the system's clock.

        bool operator==(const Identity&) const = default;
    };

    /// The socket "Corvale" in TMPDIR, else in /tmp.
    WindowSocket();

    /// Nothing if there is no socket of this user.
    std::optional<Identity> identity() const;
    /// A connection that never blocks; none if nobody takes it at once.
    Descriptor connect();
    /// Whether the last connect() failed since too many others wait for the window.
    bool isBusy() const { return m_isBusy; }

private:
    std::string m_path;
    bool m_isBusy = false;
};

} // namespace launcher
