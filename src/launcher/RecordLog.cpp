#include "RecordLog.h"

#include "FileErrors.h"
#include "GlEnumerants.h"
#include "WholeRecord.h"

#include <cerrno>
#include <cstdio>
#include <ctime>

#include <fcntl.h>

namespace launcher {

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

std::string timeText()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char date[32];
    const std::size_t size = std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    const std::string milliseconds = std::to_string(1000 + now.tv_nsec / 1'000'000);
    return std::string(date, size) + "." + milliseconds.substr(1);
}

/// A text on one line: control characters are written as escapes.
std::string oneLine(std::string_view text)
{
    std::string line;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        char escape[8];
        if (c == '\n')
            line += "\\n";
        else if (c == '\t')
            line += "\\t";
        else if (code < ' ' || code == 0x7F)
            line.append(
                escape, static_cast<std::size_t>(std::snprintf(escape, sizeof escape, "\\x%02X", code)));
        else
            line += c;
    }
    return line;
}

std::string valueName(const char* name, std::uint32_t value)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "0x%04X", value);
    return *name != '\0' ? name : digits;
}

std::string enumerant(std::uint32_t value)
{
    return valueName(gl::enumerantName(static_cast<std::int32_t>(value)), value);
}

std::string reportText(const Message& message)
{
    switch (message.type()) {
    case Type::ReportLeadingNumber:
        return std::to_string(message.u32(offset::reportKey));
    case Type::ReportFlag:
        return std::to_string(message.u32(offset::reportKey)) + ": "
            + std::to_string(message.u8(offset::reportFlag));
    case Type::ReportText:
        return std::string(message.text(offset::reportText, offset::reportTextEnd)) + ": "
            + std::to_string(message.u8(offset::reportTextEnd));
    case Type::ReportDetail:
        return std::string(message.text(offset::reportText, offset::reportTextEnd)) + ": "
            + std::to_string(message.u32(offset::reportTextEnd));
    case Type::ReportKeyedText:
    case Type::ReportOtherKeyedText:
        return std::to_string(message.u32(offset::reportKey)) + ": "
            + std::string(message.text(offset::reportKeyedText));
    default:
        return "complete";
    }
}

/// Kind and text of a record.
std::string recordText(const Message& message)
{
    switch (message.type()) {
    case Type::SetName:
        return "name " + std::string(message.text(offset::text));
    case Type::IdentifiedMessage:
        return "message " + std::string(message.text(offset::identifiedText))
            + " (ID: " + std::to_string(message.u32(offset::identifiedId)) + ")";
    case Type::LineBreak:
        return "end-of-message";
    case Type::DebugMessage:
        return "debug " + enumerant(message.u32(offset::debugType)) + " "
            + enumerant(message.u32(offset::debugSeverity)) + " "
            + std::to_string(message.u32(offset::debugId)) + " "
            + std::string(message.text(offset::debugText));
    case Type::Information:
        return "information " + std::string(message.text(offset::text));
    case Type::Warning:
        return "warning " + std::string(message.text(offset::text));
    case Type::Error:
        return "error " + std::string(message.text(offset::text));
    case Type::GlError: {
        const std::uint32_t code = message.u32(offset::glErrorCode);
        return "gl-error " + valueName(gl::errorName(code), code) + " in "
            + std::string(message.text(offset::glErrorFunction, offset::glErrorDescription)) + ": "
            + std::string(message.text(offset::glErrorDescription));
    }
    case Type::ContextInformation:
        return "context " + std::to_string(message.i32(offset::contextNumber))
            + (message.u32(offset::contextStrict) != 0 ? " strict" : " loose");
    default:
        return "report " + reportText(message);
    }
}

} // namespace

bool RecordLog::open(const std::string& path)
{
    m_path = path;
    // A FIFO that nobody reads is refused, and one that is read slowly must not hold up the launcher.
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    m_file = Descriptor(::open(path.c_str(), flags, 0666));
    if (!m_file)
        m_reason = platform::errorText(errno);
    return static_cast<bool>(m_file);
}

void RecordLog::write(pid_t pid, const layer::ring::Record& record)
{
    if (!m_file)
        return;
    const Message message = WholeRecord(record).message();
    const std::string frame = record.frame == ui::messages::noFrame ? "-" : std::to_string(record.frame);
    writeLine(pid, frame + " " + recordText(message));
}

void RecordLog::note(pid_t pid, std::string_view text)
{
    if (m_file)
        writeLine(pid, "- " + std::string(text));
}

void RecordLog::writeLine(pid_t pid, std::string_view text)
{
    const std::string line = timeText() + " " + std::to_string(pid) + " " + oneLine(text) + "\n";
    ssize_t size = 0;
    do
        size = ::write(m_file.number(), line.data(), line.size());
    while (size < 0 && errno == EINTR);
    if (size == static_cast<ssize_t>(line.size()) || m_hasFailed)
        return;
    m_hasFailed = true;
    const std::string why = size < 0 ? platform::errorText(errno) : "it takes no more";
    std::fprintf(stderr, "corvale-run: Lines are missing in %s: %s.\n", m_path.c_str(), why.c_str());
}

} // namespace launcher
