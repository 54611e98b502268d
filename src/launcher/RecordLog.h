#pragma once

#include "Descriptor.h"
#include "Message.h"
#include "RecordSink.h"

#include <ctime>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace launcher {

/// A file with one line for each record: time, process, kind, frame and text. Lines wait for flush() unless
/// they are many.
class RecordLog : public RecordSink {
public:
    /// Opens the file at a path to write behind what is there. False if that cannot be; reason() tells why.
    bool open(const std::string& path);
    /// Removes what was in the file before.
    void clear();
    const std::string& reason() const { return m_reason; }

    void begin(pid_t pid, const std::string& name) override;
    void take(pid_t pid, const layer::ring::Record& record) override;
    void end(pid_t pid, bool isClean, const std::string& how, bool isTold) override;

    /// Puts all lines into the system's hands. What it does not take now is tried again later.
    void flush();
    /// Flushes for the last time.
    void close();

private:
    /// A line about a process that is not of its own making.
    void note(pid_t pid, std::string_view text);
    bool beginLine(pid_t pid);
    void endLine();
    void tellLoss(int error);

    Descriptor m_file;
    std::string m_path;
    std::string m_reason;
    std::string m_lines; ///< Not written yet.
    ui::messages::Message m_message; ///< The last record, with zeros behind its end.
    std::size_t m_messageEnd = 0;
    std::time_t m_second = -1;
    std::string m_date; ///< Of that second.
    bool m_isLossTold = false;
};

} // namespace launcher
