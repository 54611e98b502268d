#pragma once

#include "DeviceOfProfile.h"
#include "Greeter.h"
#include "Options.h"
#include "PrivateFolder.h"
#include "Program.h"
#include "ProgramOutput.h"
#include "RecordLog.h"
#include "RecordSink.h"
#include "RunLimit.h"
#include "SessionRecorder.h"
#include "WatchedProcess.h"
#include "WindowSocket.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace launcher {

/// What became of a program.
struct RunOutcome {
    std::optional<ProcessEnd> end = {}; ///< None if it was not run.
    int exitCode = 0; ///< Of the launcher, where the program was not run; the user has been told why.
    std::string failure = {}; ///< Why it was not run, as a sentence.
    bool isUnwatchable = false;
    bool hasWatched = false;
    RunLimit::Reached limit = RunLimit::Reached::None; ///< What it was ended for.
    bool isHardEnd = false;
    std::uint32_t frames = 0; ///< Of the process that showed most.
    std::string device = {}; ///< The profile's name; empty without one.
    std::string program = {}; ///< What was watched, if all of it has one name; empty else.
    std::chrono::milliseconds time{};
};

/// Runs a program and stands between its watched processes and the window until it ends.
class Launcher {
public:
    /// The sink, if any, gets all that the processes report. It outlives this.
    explicit Launcher(Options options, RecordSink* sink = nullptr);

    /// Runs the program to its end, or tells the user why it cannot.
    RunOutcome runProgram();
    /// Ends with an exit code, or does not return: then the program was killed, and this process is as well.
    int run();

private:
    using Clock = std::chrono::steady_clock;

    /// Takes the profile. False, with the lines for the user, where the wanted one is not to be had.
    bool chooseDevice();
    std::variant<Changes, Unwatchable> setUp();
    int fail(int code, const std::string& text) const;
    int exitCode(const RunOutcome& outcome) const;
    void noteUnwatched(const std::string& reason);
    /// Opens the files that are to be written, as they are.
    bool claimFiles();

    ProcessEnd watch();
    void welcome(Newcomer newcomer);
    void noteFrames();
    void finish(WatchedProcess& program);
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
    SessionRecorder m_session;
    RecordSinks m_sinks;
    RunLimit m_limit;
    std::uint32_t m_frames = 0;
    Descriptor m_wakeUp; ///< Readable when a ring has records.
    QueueBudget m_budget;
    std::vector<std::unique_ptr<WatchedProcess>> m_processes;
    bool m_isWatching = false;
    bool m_hasWatched = false;
    std::set<std::string> m_watchedNames;
    std::optional<ProcessEnd> m_end;
    bool m_hasLeft = false;
    Clock::time_point m_endTime;
    Clock::time_point m_nextConnect;
    Clock::time_point m_lastProgress;
    std::uint64_t m_sentBefore = 0;
};

} // namespace launcher
