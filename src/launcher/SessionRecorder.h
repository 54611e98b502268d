#pragma once

#include "RecordSink.h"
#include "SessionWriter.h"

#include <chrono>
#include <map>
#include <string>

namespace launcher {

/// Writes what the processes report into a session file.
class SessionRecorder : public RecordSink {
public:
    /// Opens the file, in which nothing changes before start(). False if it may not be replaced; reason()
    /// tells why.
    bool claim(const std::string& path);
    const std::string& reason() const { return m_writer.reason(); }
    /// Begins the session, if there is to be one, of processes that see this device.
    void start(const std::string& device);

    void begin(pid_t pid, const std::string& name) override;
    void take(pid_t pid, const layer::ring::Record& record) override;
    void end(pid_t pid, bool isClean, const std::string& how, bool isTold) override;

    /// Writes out what has waited long enough; in how many milliseconds there is more to write, -1 for never.
    int flushOld();
    void close();

private:
    void tellFailure();

    sessions::SessionWriter m_writer;
    std::string m_path;
    std::string m_device;
    std::map<pid_t, std::uint32_t> m_clients;
    std::chrono::steady_clock::time_point m_firstWaiting; ///< Only while something waits.
    bool m_isWaiting = false;
    bool m_isFailureTold = false;
};

} // namespace launcher
