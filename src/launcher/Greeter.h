#pragma once

#include "Descriptor.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <poll.h>
#include <sys/types.h>

namespace layer::ring {
class Reader;
} // namespace layer::ring

namespace launcher {

/// What a process has handed over when it began to use EGL.
struct Newcomer {
    pid_t pid = 0;
    Descriptor death; ///< A pidfd; none if the process is dead and gone already.
    std::vector<std::string> arguments;
    std::unique_ptr<layer::ring::Reader> ring;
};

/// The control socket on which the watched processes announce themselves. Everything that it gets is checked;
/// what makes no sense or comes from another user is dropped.
class Greeter {
public:
    /// Listens at a path. False if it cannot.
    bool listen(const std::string& path);

    /// Takes whatever has come until now, without waiting.
    void receive(const std::function<void(Newcomer)>& welcome);

    /// Adds what is to be waited for.
    void addTo(std::vector<pollfd>& waitFor) const;

private:
    struct Caller {
        Descriptor connection;
        pid_t pid;
    };

    void acceptCallers();

    Descriptor m_listener;
    std::deque<Caller> m_callers; ///< Connected, and have sent nothing yet.
};

} // namespace launcher
