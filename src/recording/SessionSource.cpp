#include "SessionSource.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>

bool SessionSource::has(std::uint32_t client) const
{
    return std::find(clients.begin(), clients.end(), client) != clients.end();
}

SessionSource sessionFileSource(const QString& path)
{
    const auto open = [path] {
        return platform::openForReading(
            QFile::encodeName(path).toStdString(), std::numeric_limits<std::size_t>::max())
            .stream;
    };
    return {QFileInfo(path).fileName(), open, {}};
}

bool SessionRecords::open(const SessionSource& source)
{
    if (!m_reader.open(source.open()))
        return false;
    m_wanted.assign(m_reader.clients().size(), source.clients.empty());
    for (const std::uint32_t client : source.clients) {
        if (client < m_wanted.size())
            m_wanted[client] = true;
    }
    return true;
}

bool SessionRecords::next(sessions::SessionRecord& record)
{
    for (;;) {
        while (m_isLoaded && m_reader.next(record)) {
            if (isWanted(record.client))
                return true;
        }
        if (m_nextBlock >= m_reader.blockCount()) {
            m_isLoaded = false;
            return false;
        }
        m_isLoaded = m_reader.load(m_nextBlock++);
    }
}
