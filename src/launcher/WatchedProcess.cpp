#include "WatchedProcess.h"

#include "Notices.h"
#include "WholeRecord.h"

#include <utility>

#include <poll.h>

namespace launcher {

using layer::ring::Reader;
using ui::messages::noFrame;
using ui::messages::Type;

WatchedProcess::WatchedProcess(
    Newcomer newcomer, const Naming& naming, QueueBudget& budget, RecordSink& sink, int wakeUp)
    : m_ring(std::move(newcomer.ring))
    , m_doorbell(std::make_unique<Doorbell>(*m_ring, wakeUp))
    , m_death(std::move(newcomer.death))
    , m_sink(sink)
    , m_client(newcomer.pid, naming, newcomer.arguments, budget)
{
    m_sink.begin(pid(), m_client.name());
}

WatchedProcess::WatchedProcess(pid_t pid, const Naming& naming, const std::vector<std::string>& arguments,
    QueueBudget& budget, RecordSink& sink)
    : m_sink(sink)
    , m_client(pid, naming, arguments, budget)
{
    m_sink.begin(pid, m_client.name());
}

void WatchedProcess::attach(Newcomer newcomer, int wakeUp)
{
    m_ring = std::move(newcomer.ring);
    m_doorbell = std::make_unique<Doorbell>(*m_ring, wakeUp);
    m_death = std::move(newcomer.death);
    // A shell may have become another program.
    m_client.rename(newcomer.arguments);
}

bool WatchedProcess::isDead() const
{
    if (!m_ring)
        return false;
    pollfd state{m_death.number(), POLLIN, 0};
    // Without a pidfd it was gone before we could have one.
    return !m_death || poll(&state, 1, 0) > 0;
}

void WatchedProcess::addTo(std::vector<pollfd>& waitFor) const
{
    if (m_ring && m_death)
        waitFor.push_back({m_death.number(), POLLIN, 0});
    m_client.addTo(waitFor);
}

WatchedProcess::Drained WatchedProcess::drain(const std::function<bool()>& hasRoom)
{
    if (!m_ring || m_isBroken || m_doorbell->isArmed())
        return Drained::Empty;
    if (m_ring->filled() == 0 && m_ring->dropped() <= m_droppedTold) {
        m_doorbell->arm();
        return Drained::Empty;
    }
    return readRing(hasRoom) ? Drained::Partly : Drained::Stalled;
}

bool WatchedProcess::readRing(const std::function<bool()>& hasRoom)
{
    // What is dropped for want of room comes behind all that is in the ring now.
    const std::uint64_t dropped = m_ring->dropped();
    std::uint64_t left = m_ring->filled();
    while (left > 0) {
        if (!hasRoom())
            return false;
        Record record;
        const Reader::Next next = m_ring->next(record);
        if (next == Reader::Next::Broken || (next == Reader::Next::Record && !isOfProcess(record.type))) {
            breakOff();
            return true;
        }
        if (next == Reader::Next::Empty)
            break;
        take(record);
        const std::uint64_t space = layer::ring::spaceOf(record.payload.size());
        left -= std::min(left, space);
    }
    if (dropped > m_droppedTold)
        tell(Type::Warning,
            droppedText(dropped - m_droppedTold, "the program made them faster than they could be shown."));
    m_droppedTold = dropped;
    return true;
}

void WatchedProcess::readRest()
{
    m_doorbell.reset();
    if (!m_ring)
        return;
    // Once for what is there and once more for what was written meanwhile; a child of the process that still
    // writes does not keep us.
    for (int pass = 0; pass < 2 && !m_isBroken; ++pass)
        readRing([] { return true; });
}

void WatchedProcess::take(const Record& record)
{
    m_sink.take(pid(), record);
    m_client.take(record);
}

std::uint32_t WatchedProcess::frames() const
{
    return m_ring ? m_ring->frames() : noFrame;
}

void WatchedProcess::tell(Type type, std::string_view text)
{
    take({static_cast<std::uint32_t>(type), frames(), text});
}

void WatchedProcess::tellLast(Type type, std::string_view text)
{
    const Record record{static_cast<std::uint32_t>(type), frames(), text};
    m_sink.take(pid(), record);
    m_client.addLastWords(record);
}

void WatchedProcess::breakOff()
{
    m_isBroken = true;
    m_ring->stop();
    tell(Type::Warning,
        "What this program reports is not readable any more: it has written into memory that is not its own. "
        "Nothing more of it is shown.");
}

void WatchedProcess::passWireframe()
{
    if (m_ring)
        m_ring->setWireframe(m_client.isWireframe());
}

void WatchedProcess::finish(const ProcessEnd& end, bool tellsStatus)
{
    readRest();
    const bool isKnown = end.kind == ProcessEnd::Kind::Exited;
    if (end.kind == ProcessEnd::Kind::Killed) {
        const std::string how = notices::killed(signalText(end.number));
        tellLast(Type::Error, how);
        close(false, how, true);
    } else if (!isKnown && m_ring && !m_ring->hasEnded()) {
        // Either _exit() or a signal; only its parent has learned which.
        tellLast(Type::Warning, notices::endedAtOnce);
        close(false, std::string(notices::endedAtOnce), true);
    } else if (isKnown && tellsStatus) {
        const std::string how = notices::exited(end.number);
        tellLast(Type::Information, how);
        close(true, how, true);
    } else {
        close(true, isKnown ? "ends with status " + std::to_string(end.number) : "ends", false);
    }
}

void WatchedProcess::finishEnded(std::string_view reason)
{
    readRest();
    tellLast(Type::Information, reason);
    close(true, std::string(reason), true);
}

void WatchedProcess::leave(std::string_view why)
{
    if (m_ring) {
        m_ring->stop();
        m_ring->setWireframe(false);
    }
    readRest();
    if (!why.empty())
        tellLast(Type::Information, why);
    close(true, std::string(why.empty() ? "ends" : why), !why.empty());
}

void WatchedProcess::close(bool isClean, const std::string& how, bool isTold)
{
    m_sink.end(pid(), isClean, how, isTold);
    m_client.end(isClean);
    m_ring.reset();
    m_isAlive = false;
}

} // namespace launcher
