#include "RecordLog.h"

#include "FileErrors.h"
#include "GlEnumerants.h"
#include "WholeRecord.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <concepts>
#include <cstdio>
#include <cstring>

#include <fcntl.h>

namespace launcher {

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

/// Bytes of lines that go to the system at once.
constexpr std::size_t batchSize = 64U << 10U;
/// Bytes of lines that wait where the file takes no more; whole lines beyond them are lost.
constexpr std::size_t waitingLimit = 1U << 20U;

/// Adds a text as part of a line: control characters are written as escapes.
void addEscaped(std::string& line, std::string_view text)
{
    const auto isControl = [](char c) {
        return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
    };
    while (!text.empty()) {
        const auto end = std::find_if(text.begin(), text.end(), isControl);
        const auto plain = static_cast<std::size_t>(end - text.begin());
        line.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty())
            return;
        char escape[8];
        if (text.front() == '\n')
            line += "\\n";
        else if (text.front() == '\t')
            line += "\\t";
        else
            line.append(escape,
                static_cast<std::size_t>(std::snprintf(
                    escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(text.front()))));
        text.remove_prefix(1);
    }
}

void addNumber(std::string& line, std::integral auto value)
{
    std::array<char, 24> digits;
    line.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}

/// Adds the name of a value, or its number if it has none.
void addName(std::string& line, const char* name, std::uint32_t value)
{
    if (*name != '\0') {
        line += name;
        return;
    }
    std::array<char, 16> digits;
    line.append(digits.data(),
        static_cast<std::size_t>(std::snprintf(digits.data(), digits.size(), "0x%04X", value)));
}

void addEnumerant(std::string& line, std::uint32_t value)
{
    addName(line, gl::enumerantName(static_cast<std::int32_t>(value)), value);
}

void addReport(std::string& line, const Message& message)
{
    line += "report ";
    switch (message.type()) {
    case Type::ReportLeadingNumber:
        addNumber(line, message.u32(offset::reportKey));
        break;
    case Type::ReportFlag:
        addNumber(line, message.u32(offset::reportKey));
        line += ": ";
        addNumber(line, message.u8(offset::reportFlag));
        break;
    case Type::ReportText:
        addEscaped(line, message.text(offset::reportText, offset::reportTextEnd));
        line += ": ";
        addNumber(line, message.u8(offset::reportTextEnd));
        break;
    case Type::ReportDetail:
        addEscaped(line, message.text(offset::reportText, offset::reportTextEnd));
        line += ": ";
        addNumber(line, message.u32(offset::reportTextEnd));
        break;
    case Type::ReportKeyedText:
    case Type::ReportOtherKeyedText:
        addNumber(line, message.u32(offset::reportKey));
        line += ": ";
        addEscaped(line, message.text(offset::reportKeyedText));
        break;
    default:
        line += "complete";
    }
}

void addText(std::string& line, std::string_view kind, std::string_view text)
{
    line += kind;
    addEscaped(line, text);
}

/// Adds kind and text of a record.
void addRecord(std::string& line, const Message& message)
{
    switch (message.type()) {
    case Type::SetName:
        return addText(line, "name ", message.text(offset::text));
    case Type::IdentifiedMessage:
        addText(line, "message ", message.text(offset::identifiedText));
        line += " (ID: ";
        addNumber(line, message.u32(offset::identifiedId));
        line += ')';
        return;
    case Type::LineBreak:
        line += "end-of-message";
        return;
    case Type::DebugMessage:
        line += "debug ";
        addEnumerant(line, message.u32(offset::debugType));
        line += ' ';
        addEnumerant(line, message.u32(offset::debugSeverity));
        line += ' ';
        addNumber(line, message.u32(offset::debugId));
        return addText(line, " ", message.text(offset::debugText));
    case Type::Information:
        return addText(line, "information ", message.text(offset::text));
    case Type::Warning:
        return addText(line, "warning ", message.text(offset::text));
    case Type::Error:
        return addText(line, "error ", message.text(offset::text));
    case Type::GlError: {
        const std::uint32_t code = message.u32(offset::glErrorCode);
        line += "gl-error ";
        addName(line, gl::errorName(code), code);
        addText(line, " in ", message.text(offset::glErrorFunction, offset::glErrorDescription));
        return addText(line, ": ", message.text(offset::glErrorDescription));
    }
    case Type::ContextInformation:
        line += "context ";
        addNumber(line, message.i32(offset::contextNumber));
        line += message.u32(offset::contextStrict) != 0 ? " strict" : " loose";
        return;
    default:
        addReport(line, message);
    }
}

} // namespace

bool RecordLog::open(const std::string& path)
{
    m_path = path;
    // A FIFO that nobody reads is refused, and one that is read slowly must not hold up the launcher.
    constexpr int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    m_file = Descriptor(::open(path.c_str(), flags, 0666));
    if (!m_file)
        m_reason = platform::errorText(errno);
    return static_cast<bool>(m_file);
}

void RecordLog::clear()
{
    // It fails where there is nothing to be cleared, such as for a pipe.
    if (m_file && ftruncate(m_file.number(), 0) != 0 && errno != EINVAL)
        tellLoss(errno);
}

void RecordLog::take(pid_t pid, const layer::ring::Record& record)
{
    if (!m_file || !beginLine(pid))
        return;
    const std::size_t end = WholeRecord(record).copyTo(m_message);
    if (end < m_messageEnd)
        std::memset(m_message.data() + end, 0, m_messageEnd - end);
    m_messageEnd = end;
    if (record.frame == ui::messages::noFrame)
        m_lines += '-';
    else
        addNumber(m_lines, record.frame);
    m_lines += ' ';
    addRecord(m_lines, m_message);
    endLine();
}

void RecordLog::begin(pid_t pid, const std::string& name)
{
    note(pid, "begins " + name);
}

void RecordLog::end(pid_t pid, bool, const std::string& how, bool isTold)
{
    if (!isTold)
        note(pid, how);
}

void RecordLog::note(pid_t pid, std::string_view text)
{
    if (!m_file || !beginLine(pid))
        return;
    addText(m_lines, "- ", text);
    endLine();
}

bool RecordLog::beginLine(pid_t pid)
{
    if (m_lines.size() > waitingLimit) {
        tellLoss(EAGAIN);
        return false;
    }
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (now.tv_sec != m_second) {
        tm local{};
        localtime_r(&now.tv_sec, &local);
        char date[32];
        m_date.assign(date, std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S.", &local));
        m_second = now.tv_sec;
    }
    m_lines += m_date;
    const auto milliseconds = now.tv_nsec / 1'000'000;
    m_lines.append(milliseconds < 10 ? 2 : milliseconds < 100 ? 1 : 0, '0');
    addNumber(m_lines, milliseconds);
    m_lines += ' ';
    addNumber(m_lines, pid);
    m_lines += ' ';
    return true;
}

void RecordLog::endLine()
{
    m_lines += '\n';
    if (m_lines.size() >= batchSize)
        flush();
}

void RecordLog::flush()
{
    if (m_lines.empty())
        return;
    ssize_t size = 0;
    do
        size = ::write(m_file.number(), m_lines.data(), m_lines.size());
    while (size < 0 && errno == EINTR);
    if (size >= 0)
        m_lines.erase(0, static_cast<std::size_t>(size));
    else if (errno != EAGAIN)
        tellLoss(errno);
}

void RecordLog::close()
{
    flush();
    if (!m_lines.empty())
        tellLoss(EAGAIN);
    m_file.reset();
}

void RecordLog::tellLoss(int error)
{
    if (!m_isLossTold)
        std::fprintf(stderr, "corvale-run: Lines are missing in %s: %s.\n", m_path.c_str(),
            error == EAGAIN ? "it takes no more" : platform::errorText(error).c_str());
    m_isLossTold = true;
}

} // namespace launcher
