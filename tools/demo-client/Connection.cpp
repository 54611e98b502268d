#include "Connection.h"

#include "Interruption.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#ifdef __linux__
#include <linux/sockios.h>
#endif

using namespace std::chrono_literals;
using ui::messages::recordSize;

namespace demo {

namespace {

/// Longest wait in one call, so that an interruption is seen soon.
constexpr Clock::duration waitSlice = 50ms;

/// How long a write that does not get on is continued after the session should have ended.
constexpr Clock::duration graceTime = 1s;

/// How long the other end has for its last words after ours.
constexpr Clock::duration lingerTime = 1s;

/// How long settle() waits for a slow receiver, and how long one that has read everything gets to act on it.
constexpr Clock::duration settleLimit = 5s;
constexpr Clock::duration settleTime = 250ms;

std::string describe(SessionOver::Reason reason)
{
    switch (reason) {
    case SessionOver::Reason::StopNotice:
        return "the window said that it no longer listens";
    case SessionOver::Reason::Interrupted:
        return "interrupted";
    case SessionOver::Reason::Closed:
        break;
    }
    return "the window closed the connection without a stop notice";
}

std::string errorText(int code)
{
    return std::generic_category().message(code);
}

bool wouldBlock(int code)
{
    return code == EAGAIN || code == EWOULDBLOCK;
}

} // namespace

SessionOver::SessionOver(Reason reason)
    : std::runtime_error(describe(reason))
    , m_reason(reason)
{
}

std::string socketPath(const std::string& pathOrName)
{
    if (pathOrName.find('/') != std::string::npos)
        return pathOrName;
    const char* folder = std::getenv("TMPDIR");
    std::string path = folder && *folder != '\0' ? folder : "/tmp";
    if (path.back() != '/')
        path += '/';
    return path + pathOrName;
}

int connectTo(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        throw ConnectError("The socket path \"" + path + "\" has " + std::to_string(path.size())
            + " bytes; the system allows " + std::to_string(sizeof address.sun_path - 1)
            + ". Choose a shorter TMPDIR or --socket.");
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);

    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    if (descriptor < 0)
        throw ConnectError("Cannot make a socket: " + errorText(errno) + ".");
    int result = -1;
    do
        result = connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    while (result != 0 && errno == EINTR && !interruption::isRequested());
    if (result != 0) {
        const int code = errno;
        close(descriptor);
        throw ConnectError("Cannot connect to \"" + path + "\": " + errorText(code)
            + ". Start corvale-gui first, with the same TMPDIR, or name its socket with --socket.");
    }
    return descriptor;
}

Connection::Connection(int descriptor, Listener listener)
    : m_descriptor(descriptor)
    , m_listener(std::move(listener))
{
    fcntl(m_descriptor, F_SETFL, fcntl(m_descriptor, F_GETFL) | O_NONBLOCK);
}

Connection::~Connection()
{
    close(m_descriptor);
}

void Connection::send(std::string_view bytes)
{
    receive();
    endIfAsked();
    write(bytes);
}

void Connection::pause(Clock::duration time)
{
    const Clock::time_point end = Clock::now() + time;
    do {
        receive();
        endIfAsked();
        waitFor(POLLIN, end - Clock::now());
    } while (Clock::now() < end);
}

void Connection::settle()
{
    const Clock::time_point end = Clock::now() + settleLimit;
    while (bytesUnread() > 0 && Clock::now() < end)
        pause(10ms);
    pause(settleTime);
}

void Connection::finish(std::string_view lastBytes)
{
    try {
        if (isBetweenRecords())
            write(lastBytes);
        // Closing with unread records in our queue would look like a broken connection at the other end.
        shutdown(m_descriptor, SHUT_WR);
        const Clock::time_point end = Clock::now() + lingerTime;
        while (Clock::now() < end) {
            receive();
            waitFor(POLLIN, end - Clock::now());
        }
    } catch (const SessionOver&) {
        // The other end was faster; there is nothing left to say.
        return;
    }
}

void Connection::write(std::string_view bytes)
{
    std::optional<Clock::time_point> giveUpAt;
    while (!bytes.empty()) {
        const ssize_t count = ::send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count >= 0) {
            m_sent += static_cast<std::uint64_t>(count);
            bytes.remove_prefix(static_cast<std::size_t>(count));
            continue;
        }
        if (errno == EINTR)
            continue;
        const bool isLost = !wouldBlock(errno);
        // A server that is gone may have left a stop notice behind.
        receive();
        if (isLost)
            endSession();
        if (isAskedToEnd() && !giveUpAt)
            giveUpAt = Clock::now() + graceTime;
        if (giveUpAt && Clock::now() >= *giveUpAt)
            endSession();
        waitFor(POLLIN | POLLOUT, waitSlice);
    }
}

void Connection::receive()
{
    for (;;) {
        const ssize_t count =
            recv(m_descriptor, m_incoming.data() + m_incomingSize, recordSize - m_incomingSize, 0);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && wouldBlock(errno))
            return;
        if (count <= 0)
            endSession();
        m_incomingSize += static_cast<std::size_t>(count);
        if (m_incomingSize < recordSize)
            continue;
        m_incomingSize = 0;
        if (m_incoming.type() == ui::messages::Type::NotifyServerStop)
            m_stopNotice = true;
        m_listener(m_incoming);
    }
}

void Connection::waitFor(short events, Clock::duration atMost) const
{
    const auto time =
        std::chrono::ceil<std::chrono::milliseconds>(std::clamp(atMost, Clock::duration(0), waitSlice));
    pollfd state{m_descriptor, events, 0};
    poll(&state, 1, static_cast<int>(time.count()));
}

bool Connection::isBetweenRecords() const
{
    return m_sent % recordSize == 0;
}

bool Connection::isAskedToEnd() const
{
    return m_stopNotice || interruption::isRequested();
}

void Connection::endIfAsked() const
{
    if (isAskedToEnd() && isBetweenRecords())
        endSession();
}

void Connection::endSession() const
{
    if (m_stopNotice)
        throw SessionOver(SessionOver::Reason::StopNotice);
    throw SessionOver(
        interruption::isRequested() ? SessionOver::Reason::Interrupted : SessionOver::Reason::Closed);
}

int Connection::bytesUnread() const
{
    int count = 0;
#ifdef SIOCOUTQ
    if (ioctl(m_descriptor, SIOCOUTQ, &count) != 0)
        return 0;
#endif
    return count;
}

} // namespace demo
