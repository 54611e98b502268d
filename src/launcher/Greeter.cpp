#include "Greeter.h"

#include "ProgramName.h"
#include "RingReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>

namespace launcher {

namespace {

using layer::ring::Greeting;

/// Connections that may be open without a greeting; the oldest make room for new ones.
constexpr std::size_t callerLimit = 64;

struct Packet {
    Greeting greeting;
    Descriptor memory;
    ssize_t size = 0; ///< Negative as long as nothing has come.
};

Packet receivePacket(const Descriptor& connection)
{
    Packet packet;
    iovec part{&packet.greeting, sizeof packet.greeting};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    do
        packet.size = recvmsg(connection.number(), &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    while (packet.size < 0 && errno == EINTR);
    if (packet.size < 0)
        packet.size = errno == EAGAIN ? -1 : 0;

    const cmsghdr* carried = packet.size >= 0 ? CMSG_FIRSTHDR(&message) : nullptr;
    if (carried && carried->cmsg_level == SOL_SOCKET && carried->cmsg_type == SCM_RIGHTS
        && carried->cmsg_len == CMSG_LEN(sizeof(int))) {
        int memory = -1;
        std::memcpy(&memory, CMSG_DATA(carried), sizeof memory);
        packet.memory = Descriptor(memory);
    }
    return packet;
}

} // namespace

bool Greeter::listen(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    m_listener = Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    return m_listener
        && bind(m_listener.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0
        && ::listen(m_listener.number(), SOMAXCONN) == 0;
}

void Greeter::acceptCallers()
{
    for (;;) {
        Descriptor connection(accept4(m_listener.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!connection && (errno == EINTR || errno == ECONNABORTED))
            continue;
        if (!connection)
            return;
        ucred peer{};
        socklen_t size = sizeof peer;
        // A process of another user, or one that this launcher cannot see, has no number to watch.
        if (getsockopt(connection.number(), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0
            || peer.uid != getuid() || peer.pid <= 0)
            continue;
        m_callers.push_back({std::move(connection), peer.pid});
        if (m_callers.size() > callerLimit)
            m_callers.pop_front();
    }
}

void Greeter::receive(const std::function<void(Newcomer)>& welcome)
{
    acceptCallers();
    for (auto caller = m_callers.begin(); caller != m_callers.end();) {
        const Packet packet = receivePacket(caller->connection);
        if (packet.size < 0) {
            ++caller;
            continue;
        }
        Newcomer newcomer;
        newcomer.pid = caller->pid;
        caller = m_callers.erase(caller);
        if (packet.size != ssize_t{sizeof(Greeting)} || packet.greeting.magic != layer::ring::magic
            || !packet.memory)
            continue;
        newcomer.ring = layer::ring::Reader::open(packet.memory.number());
        if (!newcomer.ring)
            continue;
        const std::size_t size =
            std::min<std::size_t>(packet.greeting.argumentsSize, sizeof packet.greeting.arguments);
        newcomer.arguments = splitArguments({packet.greeting.arguments, size});
        newcomer.death = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, newcomer.pid, 0)));
        if (!newcomer.death && errno != ESRCH) {
            // Too many of them: nobody would learn of its end.
            newcomer.ring->stop();
            continue;
        }
        welcome(std::move(newcomer));
    }
}

void Greeter::addTo(std::vector<pollfd>& waitFor) const
{
    waitFor.push_back({m_listener.number(), POLLIN, 0});
    for (const Caller& caller : m_callers)
        waitFor.push_back({caller.connection.number(), POLLIN, 0});
}

} // namespace launcher
