#pragma once

#include "Descriptor.h"
#include "LayerSetup.h"
#include "ProcessEnd.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

#include <signal.h>
#include <sys/types.h>

namespace launcher {

/// The program that the launcher was started for: its start, the signals between it, the launcher and the
/// terminal, and its end. The two share the process group, so what the terminal sends reaches both.
class Program {
public:
    using OutputEnds = std::array<int, 2>;

    /// From now on the signals that concern the program wait in descriptor().
    Program();

    /// Starts a program as execvp() does, with the signals as the launcher found them, and with the given
    /// standard output and error; of -1, the launcher's own. 0, or the error's number.
    int start(const std::vector<std::string>& arguments, const Changes& environment,
        const OutputEnds& output = {-1, -1});

    pid_t pid() const { return m_pid; }
    /// Readable when there is something for handleSignals().
    int descriptor() const { return m_signals.number(); }
    /// Passes signals on, and stops the launcher while the program is stopped.
    void handleSignals();
    /// Whether the program may have ended, so that collectEnd() should be called.
    bool mayHaveEnded() const { return m_mayHaveEnded; }
    /// How the program ended; nothing while it runs.
    std::optional<ProcessEnd> collectEnd();
    /// Whether someone wants the launcher to end though the program has ended already.
    bool isInterrupted() const { return m_isInterrupted; }

    /// Ends this process as the program ended.
    [[noreturn]] static void endLike(const ProcessEnd& end, int exitCode);

private:
    [[noreturn]] void execute(const std::vector<std::string>& arguments, const Changes& environment,
        const OutputEnds& output, const Descriptor& report);
    void pass(int number, bool fromTerminal);

    sigset_t m_maskBefore{};
    struct sigaction m_childActionBefore { };
    Descriptor m_signals;
    pid_t m_pid = 0;
    bool m_mayHaveEnded = false;
    bool m_hasEnded = false;
    bool m_isInterrupted = false;
};

} // namespace launcher
