#pragma once

#include "Descriptor.h"
#include "RingReader.h"

#include <string>
#include <string_view>

#include <sys/types.h>

namespace launcher {

/// A file with one line for each record: time, process, kind, frame and text. Each line is in the system's
/// hands before the next record is looked at.
class RecordLog {
public:
    /// Replaces the file at a path. False if it cannot be opened; reason() tells why.
    bool open(const std::string& path);
    const std::string& reason() const { return m_reason; }

    void write(pid_t pid, const layer::ring::Record& record);
    /// A line about a process that is not of its own making.
    void note(pid_t pid, std::string_view text);

private:
    void writeLine(pid_t pid, std::string_view text);

    Descriptor m_file;
    std::string m_path;
    std::string m_reason;
    bool m_hasFailed = false;
};

} // namespace launcher
