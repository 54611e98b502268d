#pragma once

#include "Client.h"
#include "Message.h"
#include "SessionReader.h"

#include <chrono>

/// A client that is read from a session: it emits the signals that the connected one has emitted.
class ReplayedClient : public Client {
    Q_OBJECT

public:
    ReplayedClient(
        const sessions::SessionClient& facts, std::chrono::system_clock::time_point begin, QObject* parent);

    /// Tells PID and name, as far as they are known at its beginning.
    void begin();
    /// Announces one of its records; `hasMore` where the next one comes at once.
    void give(const sessions::SessionRecord& record, bool hasMore);
    /// Ends as the client has. To be called once.
    void end();

    const sessions::SessionClient& facts() const { return m_facts; }
    /// The profile that it saw in place of the machine, and how it ended; empty where that is not known.
    QString device() const;
    QString endText() const;

private:
    void setTime(sessions::SessionTime time);

    sessions::SessionClient m_facts;
    std::chrono::milliseconds m_begin; ///< Since the epoch.
    sessions::SessionTime m_time{}; ///< Of the last record.
    ui::messages::Message m_message;
    std::size_t m_used = 0; ///< Bytes of its payload that may not be zero.
};
