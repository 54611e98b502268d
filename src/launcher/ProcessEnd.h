#pragma once

#include <string>

#include <sys/types.h>

namespace launcher {

/// How a process ended.
struct ProcessEnd {
    enum class Kind {
        Exited, ///< By itself; `number` is its status.
        Killed, ///< `number` is the signal.
        Unknown, ///< Its parent was faster than we.
    };

    Kind kind = Kind::Unknown;
    int number = 0;

    /// From what waitpid() tells.
    static ProcessEnd fromStatus(int status);

    /// What is left to see of a dead process that is no child of ours: as long as its parent has not waited
    /// for it, the system still shows how it ended. After that nobody can tell any more.
    static ProcessEnd ofZombie(pid_t pid);
};

/// A signal with its meaning, such as "SIGSEGV (segmentation fault)".
std::string signalText(int number);

} // namespace launcher
