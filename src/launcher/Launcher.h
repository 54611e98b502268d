#pragma once

#include "DeviceOfProfile.h"
#include "Greeter.h"
#include "Options.h"
#include "PrivateFolder.h"
#include "Program.h"
#include "ProgramOutput.h"
#include "RecordLog.h"
#include "WatchedProcess.h"
#include "WindowSocket.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace launcher {

/// Runs a program and stands between its watched processes and the window until it ends.
class Launcher {
public:
    explicit Launcher(Options options);

    /// Ends with an exit code, or does not return: then the program was killed, and this process is as well.
    int run();

private:
    using Clock = std::chrono::steady_clock;

    /// Takes the profile. False, with the lines for the user, where the wanted one is not to be had.
    bool chooseDevice();
    std::variant<Changes, Unwatchable> setUp();
    int fail(int code, const std::string& text) const;
    int exitCode(const ProcessEnd& end) const;

    ProcessEnd watch();
    void welcome(Newcomer newcomer);
    /// Notes the ends of processes; once the program has ended, leaves those that live on.
    void noteEnds();
    /// Passes on what the program writes; how long may be waited for the next time, in milliseconds.
    int passOutput();
    /// Whether all is read that belongs to the program's output.
    bool isOutputRead() const;
    void showLine(std::string_view line);
    void finishOutput();
    WatchedProcess& programClient();
    void connectClients();
    void transfer();
    void removeDone();
    /// Reads the rings; how long may be waited for the next time, in milliseconds.
    int drain();
    bool hasRoom();
    void wait(int atMost);
    /// Whether the window has got everything that it takes.
    bool isDelivered();

    Options m_options;
    Naming m_naming;
    bool m_isStrict = false;
    std::optional<Device> m_device; ///< None for the machine.
    WindowSocket m_window;
    std::unique_ptr<PrivateFolder> m_folder;
    Program m_program;
    std::optional<ProgramOutput> m_output; ///< None if it is not shown.
    std::uint64_t m_droppedLines = 0;
    std::string m_whyUnwatched; ///< For the user, to be told once.
    Greeter m_greeter;
    RecordLog m_log;
    Descriptor m_wakeUp; ///< Readable when a ring has records.
    QueueBudget m_budget;
    std::vector<std::unique_ptr<WatchedProcess>> m_processes;
    bool m_isWatching = false;
    bool m_hasWatched = false;
    std::optional<ProcessEnd> m_end;
    bool m_hasLeft = false;
    Clock::time_point m_endTime;
    Clock::time_point m_nextConnect;
    Clock::time_point m_lastProgress;
    std::uint64_t m_sentBefore = 0;
};

} // namespace launcher
