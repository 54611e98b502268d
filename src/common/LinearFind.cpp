#include "LinearFind.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace {

/// Milliseconds of a step, and from a change to another search.
constexpr int stepTime = 8;
constexpr int restartTime = 200;

} // namespace

LinearFind::LinearFind(QObject* parent)
    : Findable(parent)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &LinearFind::step);
    m_restart.setSingleShot(true);
    m_restart.setInterval(restartTime);
    connect(&m_restart, &QTimer::timeout, this, [this] {
        m_current.reset();
        m_wrapped = Wrapped::No;
        begin();
        m_isSearching = true;
        step();
    });
}

bool LinearFind::isOver(const QElapsedTimer& time)
{
    return time.hasExpired(stepTime);
}

void LinearFind::start(const FindPattern& pattern)
{
    FindPattern wantedPattern = pattern; // It may be ours, which stop() empties.
    stop();
    m_pattern = std::move(wantedPattern);
    if (m_pattern.isEmpty()) {
        Q_EMIT stateChanged();
        return;
    }
    begin();
    m_isSearching = true;
    m_wanted = Direction::Forward;
    step();
}

void LinearFind::stop()
{
    m_timer.stop();
    m_restart.stop();
    m_pattern = FindPattern();
    m_current.reset();
    m_wanted.reset();
    m_wrapped = Wrapped::No;
    m_isSearching = false;
    begin();
    mark();
}

void LinearFind::restartSoon()
{
    if (!m_pattern.isEmpty() && !m_restart.isActive())
        m_restart.start();
}

void LinearFind::continueSoon()
{
    if (m_pattern.isEmpty() || m_timer.isActive())
        return;
    m_isSearching = true;
    m_timer.start(restartTime / 2);
}

void LinearFind::step()
{
    m_isSearching = matchCount() < mostMatches && search();
    tryToGo();
    if (m_isSearching)
        m_timer.start(0);
    mark();
    Q_EMIT stateChanged();
}

void LinearFind::go(Direction direction)
{
    if (m_pattern.isEmpty())
        return;
    if (followReader(direction))
        m_current.reset();
    m_wrapped = Wrapped::No;
    m_wanted = direction;
    tryToGo();
    Q_EMIT stateChanged();
}

void LinearFind::tryToGo()
{
    if (!m_wanted)
        return;
    const std::optional<std::size_t> match = wanted(*m_wanted);
    if (match) {
        m_current = match;
        show(*match);
    }
    if (match || !m_isSearching)
        m_wanted.reset();
}

/// The match to go to; none while it is not known.
std::optional<std::size_t> LinearFind::wanted(Direction direction)
{
    const std::size_t count = matchCount();
    const std::optional<std::size_t> reader = m_current ? m_current : firstAtReader();
    const bool isForward = direction == Direction::Forward;
    if (isForward && reader) {
        const std::size_t next = m_current ? *m_current + 1 : *reader;
        if (next < count)
            return next;
    } else if (!isForward && reader && *reader > 0) {
        return *reader - 1;
    }
    if (m_isSearching || count == 0)
        return {};
    m_wrapped = isForward ? Wrapped::ToStart : Wrapped::ToEnd;
    return isForward ? 0 : count - 1;
}

Findable::State LinearFind::state() const
{
    State state;
    state.total = matchCount();
    state.current = m_current ? *m_current + 1 : 0;
    state.wrapped = m_wrapped;
    state.hasGivenUp = m_pattern.hasGivenUp();
    state.isLimited = matchCount() >= mostMatches;
    if (m_isSearching)
        state.percent = std::clamp(static_cast<int>(searchedPart() * 100), 0, 99);
    return state;
}
