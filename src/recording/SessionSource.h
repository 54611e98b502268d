#pragma once

#include "GuardedFile.h"
#include "SessionReader.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

/// Clients of a session that can be read, be it a file or what is kept of a connected client.
struct SessionSource {
    QString title; ///< What users know it by.
    std::function<platform::OpenedFile()> open; ///< A stream with what there is by now.
    std::vector<std::uint32_t> clients; ///< Their numbers in the session.

    bool has(std::uint32_t client) const;
};

/// All of a session file.
SessionSource sessionFileSource(const QString& path);
/// Clients of a session file that is open. It stays open as long as there is a copy of the source, whatever
/// happens to its name.
SessionSource openSessionSource(
    const QString& title, platform::FileStream file, const std::vector<std::uint32_t>& clients);

/// Reads the records of a source's clients one by one, across blocks. Damaged blocks are passed over.
class SessionRecords {
public:
    /// Makes a reader of a source. False with a reason.
    bool open(const SessionSource& source);
    const QString& reason() const { return m_reason; }
    /// What is missing, as far as it has been read; empty if nothing is.
    QString damage() const { return QString::fromStdString(m_reader.damage()); }

    const sessions::SessionReader& session() const { return m_reader; }
    /// The next record, valid until the call after. False at the end.
    bool next(sessions::SessionRecord& record);
    /// Whether a client is one of the source's.
    bool isWanted(std::uint32_t client) const { return m_wanted.at(client); }

private:
    sessions::SessionReader m_reader;
    QString m_reason;
    std::vector<bool> m_wanted;
    std::size_t m_nextBlock = 0;
    bool m_isLoaded = false;
};
