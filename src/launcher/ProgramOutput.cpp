#include "ProgramOutput.h"

#include "Message.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <termios.h>

namespace launcher {

namespace {

constexpr std::size_t readSize = 16U << 10U; // bytes
/// How often is read before others have their turn.
constexpr int readsAtOnce = 16;
/// Of the text in a record, without the NUL behind it.
constexpr std::size_t longestLine = ui::messages::recordSize - ui::messages::offset::text - 1; // bytes

bool isReady(int file, short event)
{
    pollfd state{file, event, 0};
    return poll(&state, 1, 0) > 0;
}

/// Writes what can be written without waiting, as the owner of a file that is shared with others cannot ask
/// for that. The number of bytes, or -1 with errno.
ssize_t writeSome(int file, std::string_view bytes)
{
    const ssize_t sent = send(file, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent >= 0 || errno != ENOTSOCK)
        return sent;
    if (!isReady(file, POLLOUT)) {
        errno = EAGAIN;
        return -1;
    }
    // A pipe that can be written to takes as much at least.
    return write(file, bytes.data(), std::min<std::size_t>(bytes.size(), PIPE_BUF));
}

/// How much of a text that is too long fits, without cutting a character of UTF-8.
std::size_t fittingSize(std::string_view text)
{
    constexpr std::size_t longestCharacter = 4;
    std::size_t size = longestLine;
    while (size > longestLine - longestCharacter && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U)
        --size;
    return size;
}

bool isDevice(int file)
{
    struct stat status { };
    return fstat(file, &status) == 0 && S_ISCHR(status.st_mode);
}

/// The two ends of a terminal that changes nothing of what is written to it and has the size of the given
/// one.
std::array<int, 2> openTerminal(int like)
{
    constexpr std::size_t longestName = 64;
    std::array<char, longestName> name{};
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0)
        return {-1, -1};
    int program = -1;
    if (grantpt(master) == 0 && unlockpt(master) == 0 && ptsname_r(master, name.data(), name.size()) == 0)
        program = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (program < 0) {
        close(master);
        return {-1, -1};
    }
    termios settings{};
    if (tcgetattr(program, &settings) == 0) {
        settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
        tcsetattr(program, TCSANOW, &settings);
    }
    winsize size{};
    if (ioctl(like, TIOCGWINSZ, &size) == 0)
        ioctl(program, TIOCSWINSZ, &size);
    return {master, program};
}

} // namespace

ProgramOutput::Stream::Stream(int stream)
    : own(stream)
{
    std::array<int, 2> ends{-1, -1};
    // On a terminal as on a device that takes no notice, what the program writes is to come line by line.
    // Into a pipe most programs write some kilobytes at once, and nothing of that when they are killed.
    if (isDevice(own))
        ends = openTerminal(own);
    // Without pipes the program keeps the launcher's streams.
    if (ends[0] < 0 && pipe2(ends.data(), O_CLOEXEC) != 0)
        return;
    reading = Descriptor(ends[0]);
    programEnd = Descriptor(ends[1]);
    fcntl(reading.number(), F_SETFL, O_NONBLOCK);
}

bool ProgramOutput::Stream::passOn()
{
    if (isOwnGone)
        unpassed.clear();
    while (!unpassed.empty()) {
        const ssize_t size = writeSome(own, unpassed);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0 && errno == EAGAIN)
            return false;
        if (size >= 0) {
            unpassed.erase(0, static_cast<std::size_t>(size));
            continue;
        }
        isOwnGone = true;
        unpassed.clear();
        // Alone, a program whose output nobody wants would learn it from the next write. Programs live on
        // without anybody who reads their errors: a window that has been closed, for one.
        if (errno == EPIPE && own == STDOUT_FILENO)
            reading.reset();
    }
    return true;
}

bool ProgramOutput::Stream::read(const TakeLine& takeLine)
{
    std::array<char, readSize> bytes;
    const ssize_t size = ::read(reading.number(), bytes.data(), bytes.size());
    if (size < 0 && (errno == EAGAIN || errno == EINTR))
        return false;
    if (size <= 0) {
        reading.reset();
        return false;
    }
    const std::string_view text(bytes.data(), static_cast<std::size_t>(size));
    left -= std::min(left, text.size());
    unpassed = text;
    cutLines(text, takeLine);
    return passOn();
}

void ProgramOutput::Stream::cutLines(std::string_view bytes, const TakeLine& takeLine)
{
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        line += bytes.substr(0, end);
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
        std::size_t given = 0;
        for (; line.size() - given > longestLine;) {
            const std::string_view rest = std::string_view(line).substr(given);
            const std::size_t size = fittingSize(rest);
            give(rest.substr(0, size), takeLine);
            given += size;
        }
        line.erase(0, given);
        if (end != std::string_view::npos) {
            give(line, takeLine);
            line.clear();
        }
    }
}

void ProgramOutput::Stream::give(std::string_view text, const TakeLine& takeLine) const
{
    if (text.ends_with('\r'))
        text.remove_suffix(1);
    // A text would end with the first NUL. The window shows other control characters in some way.
    std::string shown(text);
    std::replace(shown.begin(), shown.end(), '\0', '\x01');
    takeLine(shown);
}

ProgramOutput::ProgramOutput() = default;

std::array<int, 2> ProgramOutput::programEnds() const
{
    return {m_streams[0].programEnd.number(), m_streams[1].programEnd.number()};
}

void ProgramOutput::closeProgramEnds()
{
    for (Stream& stream : m_streams)
        stream.programEnd.reset();
}

void ProgramOutput::transfer(bool hasRoom, const TakeLine& takeLine)
{
    m_hasRoom = hasRoom;
    for (Stream& stream : m_streams) {
        bool moves = stream.passOn() && hasRoom;
        for (int i = 0; i < readsAtOnce && moves && stream.reading; ++i)
            moves = stream.read(takeLine);
    }
}

void ProgramOutput::addTo(std::vector<pollfd>& waitFor) const
{
    for (const Stream& stream : m_streams) {
        if (!stream.unpassed.empty())
            waitFor.push_back({stream.own, POLLOUT, 0});
        else if (stream.reading && m_hasRoom)
            waitFor.push_back({stream.reading.number(), POLLIN, 0});
    }
}

void ProgramOutput::noteEnd()
{
    for (Stream& stream : m_streams) {
        int size = 0;
        if (stream.reading && ioctl(stream.reading.number(), FIONREAD, &size) == 0)
            stream.left = static_cast<std::size_t>(std::max(size, 0));
    }
}

bool ProgramOutput::isRead() const
{
    return std::all_of(m_streams.begin(), m_streams.end(), [](const Stream& stream) {
        return stream.unpassed.empty() && (!stream.reading || stream.left == 0);
    });
}

bool ProgramOutput::isClosed() const
{
    return isRead() && !m_streams[0].reading && !m_streams[1].reading;
}

void ProgramOutput::finish(const TakeLine& takeLine)
{
    for (Stream& stream : m_streams) {
        stream.reading.reset();
        if (!stream.line.empty())
            stream.give(stream.line, takeLine);
        stream.line.clear();
    }
}

} // namespace launcher
