#include "SessionSource.h"

#include "FileErrors.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <memory>
#include <utility>

bool SessionSource::has(std::uint32_t client) const
{
    return std::find(clients.begin(), clients.end(), client) != clients.end();
}

SessionSource sessionFileSource(const QString& path)
{
    const auto open = [path] {
        return platform::openForReading(
            QFile::encodeName(path).toStdString(), std::numeric_limits<std::size_t>::max());
    };
    return {QFileInfo(path).fileName(), open, {}};
}

SessionSource openSessionSource(
    const QString& title, platform::FileStream file, const std::vector<std::uint32_t>& clients)
{
    const std::shared_ptr<std::FILE> shared = std::move(file);
    const auto open = [shared] {
        platform::OpenedFile again;
        if (!shared)
            return again;
        again.stream = platform::openAgain(fileno(shared.get()));
        if (!again.stream)
            again.reason = again.cause = platform::errorText(errno);
        return again;
    };
    return {title, open, clients};
}

bool SessionRecords::open(const SessionSource& source)
{
    platform::OpenedFile file = source.open();
    const bool isOpen = m_reader.open(std::move(file.stream));
    m_reason = QString::fromStdString(file.cause.empty() ? m_reader.reason() : file.cause);
    if (!isOpen)
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
