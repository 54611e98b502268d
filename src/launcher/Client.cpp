#include "Client.h"

#include "WholeRecord.h"

#include <utility>

using namespace std::chrono_literals;

namespace launcher {

using ui::messages::noFrame;
using ui::messages::Type;

namespace {

constexpr std::size_t contextLimit = 256;
constexpr std::size_t reportLimit = 4200; // records
constexpr std::size_t keptBytesLimit = 4U << 20U;
/// How long the window may take to answer the end; closing earlier does no harm unless it sends just then.
constexpr auto lingerTime = 300ms;

} // namespace

Client::Client(
    pid_t pid, const Naming& naming, const std::vector<std::string>& arguments, QueueBudget& budget)
    : m_pid(pid)
    , m_naming(naming)
    , m_name(naming.nameOf(arguments))
    , m_first(budget)
    , m_waiting(budget)
    , m_last(budget)
{
}

void Client::Kept::add(const Record& record, std::size_t countLimit)
{
    records.push_back({record.type, record.frame, std::string(record.payload)});
    bytes += record.payload.size();
    while (records.size() > countLimit || bytes > keptBytesLimit) {
        bytes -= records.front().payload.size();
        records.pop_front();
    }
}

void Client::take(const Record& record)
{
    // Names are for the launcher to give.
    if (record.type == static_cast<std::uint32_t>(Type::SetName))
        return;
    if (record.type == static_cast<std::uint32_t>(Type::ContextInformation)) {
        m_contexts.add(record, contextLimit);
    } else if (isKept(record.type)) {
        m_report.add(record, reportLimit);
    } else {
        m_waiting.push(record);
        return;
    }
    // A window that comes later gets these first.
    if (m_link)
        m_waiting.push(record);
}

void Client::rename(const std::vector<std::string>& arguments)
{
    const std::string name = m_naming.nameOf(arguments);
    if (name == m_name)
        return;
    m_name = name;
    // A window that comes later gets it first.
    if (m_link)
        m_waiting.push({static_cast<std::uint32_t>(Type::SetName), noFrame, m_name});
}

void Client::dropOldest()
{
    m_dropped += m_waiting.dropOldest();
}

void Client::end(bool isClean)
{
    if (isClean)
        m_last.push({static_cast<std::uint32_t>(Type::CleanDisconnect), noFrame, {}});
    m_hasEnded = true;
}

void Client::connect(Descriptor connection, const WindowSocket::Identity& window)
{
    m_link = std::make_unique<WindowLink>(std::move(connection));
    m_window = window;
    m_first.push(
        {static_cast<std::uint32_t>(Type::SetPid), noFrame, number(static_cast<std::uint32_t>(m_pid))});
    m_first.push({static_cast<std::uint32_t>(Type::SetName), noFrame, m_name});
    for (const Kept* kept : {&m_contexts, &m_report}) {
        for (const KeptRecord& record : kept->records)
            m_first.push({record.type, record.frame, record.payload});
    }
    if (m_dropped > 0)
        m_first.push({static_cast<std::uint32_t>(Type::Warning), noFrame,
            droppedText(m_dropped, "no window took them, and too many were waiting.")});
}

void Client::transfer()
{
    if (!m_link)
        return;
    receive();
    if (m_link && !sendAll()) {
        // The window may have said before why it went.
        receive();
        if (m_link)
            disconnect(false);
    }
    if (!m_link || !m_hasEnded || hasMore())
        return;
    const auto now = std::chrono::steady_clock::now();
    if (!m_lingerEnd) {
        m_link->endSending();
        m_lingerEnd = now + lingerTime;
    }
    if (now >= *m_lingerEnd)
        disconnect(false);
}

bool Client::sendAll()
{
    if (!m_link->send(m_first))
        return false;
    if (!m_first.empty())
        return true;
    m_dropped = 0;
    if (!m_link->send(m_waiting))
        return false;
    return !m_waiting.empty() || m_link->send(m_last);
}

void Client::receive()
{
    const bool isAlive = m_link->receive([this](Type type) {
        if (type == Type::WireframeOn || type == Type::WireframeOff)
            m_isWireframe = type == Type::WireframeOn;
        else if (type == Type::NotifyServerStop)
            m_isStopNoticed = true;
    });
    if (m_isStopNoticed || !isAlive)
        disconnect(m_isStopNoticed);
}

void Client::disconnect(bool isRefused)
{
    const bool isSent = !hasMore();
    m_link.reset();
    m_isStopNoticed = false;
    m_isWireframe = false;
    if (isRefused)
        m_refusedBy = m_window;
    m_first.removeIf([](const Record&) { return true; });
    // The next window gets them first.
    m_waiting.removeIf([](const Record& record) { return isKept(record.type); });
    m_isDone = m_hasEnded && (isSent || isRefused);
}

void Client::addTo(std::vector<pollfd>& waitFor) const
{
    if (!m_link)
        return;
    const int events = hasMore() ? POLLIN | POLLOUT : POLLIN;
    waitFor.push_back({m_link->descriptor(), static_cast<short>(events), 0});
}

std::string droppedText(std::uint64_t count, std::string_view why)
{
    std::string digits = std::to_string(count);
    for (std::size_t place = digits.size(); place > 3;) {
        place -= 3;
        digits.insert(place, 1, ',');
    }
    return digits + (count == 1 ? " message was dropped here: " : " messages were dropped here: ")
        + std::string(why);
}

} // namespace launcher
