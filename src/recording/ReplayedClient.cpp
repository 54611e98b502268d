#include "ReplayedClient.h"

#include "RecordText.h"

#include <algorithm>
#include <cstring>

namespace offset = ui::messages::offset;

ReplayedClient::ReplayedClient(
    const sessions::SessionClient& facts, std::chrono::system_clock::time_point begin, QObject* parent)
    : Client(parent)
    , m_facts(facts)
    , m_begin(std::chrono::duration_cast<std::chrono::milliseconds>(begin.time_since_epoch()))
{
    setTime(facts.begin);
}

void ReplayedClient::begin()
{
    if (m_facts.pid != 0)
        Q_EMIT setPID(this, m_facts.pid);
    if (!m_facts.name.empty())
        Q_EMIT setName(this, record_text::singleLine(m_facts.name));
}

void ReplayedClient::setTime(sessions::SessionTime time)
{
    m_time = time;
    // A file can say anything; a calendar does not hold it all.
    constexpr std::chrono::milliseconds longest = std::chrono::hours(24 * 365 * 100);
    const auto sinceBegin = std::chrono::duration_cast<std::chrono::milliseconds>(time);
    setRecordTime((m_begin + std::clamp(sinceBegin, std::chrono::milliseconds(0), longest)).count());
}

void ReplayedClient::give(const sessions::SessionRecord& record, bool hasMore)
{
    const std::string_view payload =
        record.record.payload.substr(0, ui::messages::recordSize - offset::payload);
    m_message.setU32(offset::frame, record.record.frame);
    m_message.setU32(offset::type, record.record.type);
    char* const bytes = m_message.data() + offset::payload;
    std::copy(payload.begin(), payload.end(), bytes);
    if (m_used > payload.size())
        std::memset(bytes + payload.size(), 0, m_used - payload.size());
    m_used = payload.size();
    setTime(record.time);
    setBacklog(hasMore);
    announce(m_message);
}

QString ReplayedClient::device() const
{
    return record_text::singleLine(m_facts.device);
}

QString ReplayedClient::endText() const
{
    // Of a process whose end nobody has seen.
    return m_facts.endText == "ends" ? QString() : record_text::singleLine(m_facts.endText);
}

void ReplayedClient::end()
{
    if (m_message.text(offset::text) != m_facts.endText)
        setEndNote(endText());
    setBacklog(false);
    setTime(std::max(m_time, m_facts.endTime));
    if (m_facts.end == sessions::ClientEnd::Clean)
        Q_EMIT cleanDisconnect(this);
    else
        Q_EMIT ickyDisconnect(this);
}
