#include "ConsolePace.h"

#include "EventLoopBudget.h"

#include <algorithm>
#include <utility>

namespace {

/// Entries that are written at once in one iteration of the event loop at most.
constexpr int atOnceLimit = 300;

/// Nanoseconds of writing with hardly a pause that make a flood. A sender whose records just fit into the
/// time for reading would else be none for a quarter of a second.
constexpr qint64 longWriting = 20'000'000;

/// Of the time, the part that goes into writing at once, and what may be taken in advance.
constexpr int allowancePart = 5;
constexpr qint64 mostAllowance = 1'500'000'000;

/// Milliseconds between two refreshes in a flood, between two steps of filling up, and until a view that
/// nobody sees tries again to refresh.
constexpr int refreshInterval = 100;
constexpr int fillInterval = 5;
constexpr int hiddenInterval = 20;

/// Entries between two refreshes that are no flood any more.
constexpr int fewEntries = 3;

} // namespace

ConsolePace::ConsolePace()
    : m_allowance(mostAllowance)
{
    m_sinceAllowance.start();
    m_refresh.setSingleShot(true);
    connect(&m_refresh, &QTimer::timeout, this, &ConsolePace::refreshDue);
}

bool ConsolePace::mayWriteAtOnce(Reading reading, bool isDocumentClosed)
{
    beginIteration();
    m_hurried = reading == Reading::Behind
        || (reading != Reading::NoConnection
            && (m_writingInRow > longWriting || !event_loop_budget::mayWriteAtOnce(this)));
    if (m_flooded || isDocumentClosed) {
        ++m_sinceRefresh;
        return false;
    }
    if (m_hurried || !m_isIterationAffordable || m_atOnce >= atOnceLimit) {
        m_flooded = true;
        m_writingTime = m_writingInRow = 0;
        m_sinceRefresh = 1;
        refreshNow();
        return false;
    }
    ++m_atOnce;
    return true;
}

void ConsolePace::beginIteration()
{
    const quint64 iteration = event_loop_budget::iteration();
    if (std::exchange(m_iteration, iteration) == iteration)
        return;
    const bool isCalm = m_flooded || m_writingTime < m_sinceAllowance.nsecsElapsed() / 2;
    m_writingInRow = isCalm ? 0 : m_writingInRow + m_writingTime;
    m_isIterationAffordable = m_flooded || isAffordable();
    m_atOnce = 0;
    m_writingTime = 0;
}

bool ConsolePace::isAffordable()
{
    m_allowance = std::min(mostAllowance, m_allowance + m_sinceAllowance.nsecsElapsed() / allowancePart);
    m_sinceAllowance.restart();
    return m_allowance > 0;
}

void ConsolePace::addWritingTime(qint64 nanoseconds)
{
    event_loop_budget::addWritingTime(this, nanoseconds);
    m_allowance -= nanoseconds;
    m_writingTime += nanoseconds;
}

void ConsolePace::refreshNow()
{
    m_refresh.start(0);
}

void ConsolePace::fillUp()
{
    m_refresh.start(fillInterval);
}

bool ConsolePace::beginRefresh(bool isVisible)
{
    m_refreshIsVisible = isVisible;
    m_floodEnds = !m_flooded || isFloodEnding();
    const bool isUseful = isVisible || m_floodEnds;
    // One view at a time, and first the one that is looked at.
    if (isUseful && !event_loop_budget::claimRefresh()) {
        m_refresh.start(isVisible ? 0 : hiddenInterval);
        return false;
    }
    m_sinceRefresh = 0;
    m_hurried = false;
    if (!isUseful)
        m_refresh.start(refreshInterval);
    m_refreshTime.start();
    return isUseful;
}

void ConsolePace::endRefresh(bool areEntriesWaiting, bool isFillable)
{
    const auto cost = static_cast<int>(m_refreshTime.elapsed());
    if (m_floodEnds)
        m_flooded = areEntriesWaiting;
    if (areEntriesWaiting || (isFillable && !m_flooded))
        m_refresh.start(m_refreshIsVisible ? std::max(fillInterval, cost) : hiddenInterval + cost);
    else if (m_flooded)
        m_refresh.start(std::max(refreshInterval, 8 * cost));
}

bool ConsolePace::isFloodEnding()
{
    return m_sinceRefresh <= fewEntries && !m_hurried && isAffordable();
}
