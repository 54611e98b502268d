#include "WindowLink.h"

#include "RecordQueue.h"
#include "WholeRecord.h"

#include <array>
#include <cerrno>
#include <optional>
#include <utility>
#include <vector>

#include <sys/socket.h>

namespace launcher {

using ui::messages::recordSize;

namespace {

constexpr std::size_t recordsAtOnce = 32;
/// Then others have their turn.
constexpr std::size_t sendLimit = 256 * recordSize;

} // namespace

WindowLink::WindowLink(Descriptor connection)
    : m_connection(std::move(connection))
{
}

bool WindowLink::send(RecordQueue& queue)
{
    std::size_t done = 0;
    while (!queue.empty() && done < sendLimit) {
        std::array<layer::ring::Record, recordsAtOnce> records;
        std::array<std::optional<WholeRecord>, recordsAtOnce> whole;
        std::vector<iovec> pieces;
        pieces.reserve(recordsAtOnce * 7);
        const std::size_t count = queue.peek(records);
        for (std::size_t i = 0; i < count; ++i)
            whole[i].emplace(records[i]).addTo(pieces, i == 0 ? m_sentOfFirst : 0);

        msghdr message{};
        message.msg_iov = pieces.data();
        message.msg_iovlen = pieces.size();
        const ssize_t size = sendmsg(m_connection.number(), &message, MSG_NOSIGNAL);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            return errno == EAGAIN || errno == ENOBUFS || errno == ENOMEM;
        done += static_cast<std::size_t>(size);
        m_sent += static_cast<std::uint64_t>(size);
        m_sentOfFirst += static_cast<std::size_t>(size);
        for (; m_sentOfFirst >= recordSize; m_sentOfFirst -= recordSize)
            queue.pop();
    }
    return true;
}

bool WindowLink::receive(const std::function<void(ui::messages::Type)>& take)
{
    for (;;) {
        const ssize_t size = recv(m_connection.number(), m_incoming.data() + m_incomingSize,
            recordSize - m_incomingSize, MSG_DONTWAIT);
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            return size < 0 && errno == EAGAIN;
        m_incomingSize += static_cast<std::size_t>(size);
        if (m_incomingSize < recordSize)
            continue;
        m_incomingSize = 0;
        take(m_incoming.type());
    }
}

void WindowLink::endSending()
{
    shutdown(m_connection.number(), SHUT_WR);
}

} // namespace launcher
