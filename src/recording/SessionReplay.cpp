#include "SessionReplay.h"

#include "EventLoopBudget.h"
#include "ReplayedClient.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>

using sessions::SessionTime;

namespace {

/// Milliseconds between two news of the progress.
constexpr int progressTime = 200;
/// Milliseconds after which the next record is looked at again at the latest.
constexpr int longestWait = 200;

} // namespace

SessionReplay::SessionReplay(QObject* parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &SessionReplay::pass);
}

SessionReplay::~SessionReplay() = default;

bool SessionReplay::open(const QString& path)
{
    m_path = path;
    const SessionSource source = sessionFileSource(path);
    if (!m_records.open(source)) {
        m_reason = m_records.reason();
        return false;
    }
    const std::vector<sessions::SessionClient>& clients = session().clients();
    for (std::size_t i = 0; i < std::min(clients.size(), clientLimit); ++i)
        m_clients.push_back(new ReplayedClient(clients[i], session().begin(), this));
    return true;
}

QString SessionReplay::damage() const
{
    if (session().clients().size() > clientLimit)
        return tr("Only the first %1 of %2 programs are shown.")
            .arg(clientLimit)
            .arg(session().clients().size());
    return m_records.damage();
}

SessionSource SessionReplay::source(const ReplayedClient& client, const QString& title) const
{
    // The file may be replaced or removed; what is open stays.
    return openSessionSource(title, session().again(), {client.facts().number});
}

SessionTime SessionReplay::length() const
{
    SessionTime length = std::max(m_position, session().lastTime());
    for (const sessions::SessionClient& client : session().clients())
        length = std::max(length, client.endTime);
    return length;
}

void SessionReplay::play(Pace pace)
{
    if (m_hasEnded)
        return;
    if (!m_sinceProgress.isValid()) {
        m_sinceProgress.start();
        for (ReplayedClient* client : m_clients)
            client->begin();
    }
    m_pace = pace;
    m_clockStart = m_position;
    m_clock.start();
    if (pace == Pace::Paused)
        m_timer.stop();
    else
        schedule(0);
    Q_EMIT progressed();
}

void SessionReplay::schedule(int milliseconds)
{
    m_timer.start(milliseconds);
}

void SessionReplay::fetch()
{
    m_hasCurrent = m_hasCurrent || m_records.next(m_current);
}

SessionTime SessionReplay::clock() const
{
    return m_clockStart
        + std::chrono::duration_cast<SessionTime>(std::chrono::nanoseconds(m_clock.nsecsElapsed()));
}

bool SessionReplay::isDue() const
{
    return m_pace == Pace::AtOnce || m_current.time <= clock();
}

void SessionReplay::pass()
{
    QElapsedTimer elapsed;
    elapsed.start();
    const qint64 limit = event_loop_budget::readingTime(m_lastIteration);
    for (;;) {
        fetch();
        if (!m_hasCurrent) {
            finish();
            return;
        }
        if (m_pace == Pace::Paused)
            return;
        if (!isDue()) {
            m_position = clock();
            const auto wait =
                std::chrono::ceil<std::chrono::milliseconds>(m_current.time - m_position).count();
            schedule(static_cast<int>(std::clamp<std::int64_t>(wait, 0, longestWait)));
            break;
        }
        giveCurrent(m_pace == Pace::AtOnce);
        if (elapsed.nsecsElapsed() >= limit) {
            schedule(0);
            break;
        }
    }
    tellProgress();
}

void SessionReplay::giveCurrent(bool hasMore)
{
    m_hasCurrent = false;
    ++m_played;
    m_position = std::max(m_position, m_current.time);
    if (m_current.client < m_clients.size())
        m_clients[m_current.client]->give(m_current, hasMore);
}

void SessionReplay::step()
{
    if (m_hasEnded || m_pace != Pace::Paused)
        return;
    fetch();
    if (m_hasCurrent)
        giveCurrent(false);
    else
        finish();
    Q_EMIT progressed();
}

void SessionReplay::finish()
{
    m_hasEnded = true;
    for (ReplayedClient* client : m_clients)
        client->end();
    Q_EMIT progressed();
    Q_EMIT ended();
}

void SessionReplay::tellProgress()
{
    if (m_sinceProgress.hasExpired(progressTime)) {
        m_sinceProgress.restart();
        Q_EMIT progressed();
    }
}
