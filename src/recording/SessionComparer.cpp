#include "SessionComparer.h"

#include <QElapsedTimer>

#include <set>
#include <string>

namespace {

/// Milliseconds that one step takes, and records that are read between two looks at the clock.
constexpr int stepTime = 10;
constexpr int recordsAtOnce = 100;

/// The devices of all that is compared, each once.
std::string devicesOf(const SessionRecords& records)
{
    std::set<std::string> names;
    for (const sessions::SessionClient& client : records.session().clients()) {
        if (records.isWanted(client.number) && !client.device.empty())
            names.insert(client.device);
    }
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

} // namespace

SessionComparer::SessionComparer(QObject* parent)
    : QObject(parent)
{
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &SessionComparer::step);
}

bool SessionComparer::start(const SessionSource& before, const SessionSource& after, QString& reason)
{
    m_timer.stop();
    m_sides.clear();
    m_current = 0;
    for (const SessionSource* source : {&before, &after}) {
        Side& side = *m_sides.emplace_back(std::make_unique<Side>());
        side.title = source->title;
        if (!side.records.open(*source)) {
            reason = tr("\"%1\" cannot be read: %2").arg(source->title, side.records.reason());
            return false;
        }
        side.summary.device = devicesOf(side.records);
    }
    m_timer.start();
    return true;
}

void SessionComparer::step()
{
    QElapsedTimer time;
    time.start();
    sessions::SessionRecord record;
    while (m_current < m_sides.size() && !time.hasExpired(stepTime)) {
        Side& side = *m_sides.at(m_current);
        bool more = true;
        for (int i = 0; more && i < recordsAtOnce; ++i) {
            more = side.records.next(record);
            if (!more)
                break;
            side.summary.add(record.record);
            ++side.recordCount;
        }
        if (!more)
            ++m_current;
    }
    if (m_current == m_sides.size()) {
        m_timer.stop();
        m_result = sessions::SessionComparison(m_sides[0]->summary, m_sides[1]->summary);
        Q_EMIT done();
        return;
    }
    std::uint64_t all = 1;
    std::uint64_t read = 0;
    for (const auto& side : m_sides) {
        all += side->records.session().recordCount();
        read += side->recordCount;
    }
    Q_EMIT progressed(static_cast<int>(read * 100 / all));
}

QString SessionComparer::damage() const
{
    for (const auto& side : m_sides) {
        if (!side->records.damage().isEmpty())
            return tr("%1: %2").arg(side->title, side->records.damage());
    }
    return {};
}
