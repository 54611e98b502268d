#pragma once

#include "ProgramName.h"
#include "RecordQueue.h"
#include "WindowLink.h"
#include "WindowSocket.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <poll.h>
#include <sys/types.h>

namespace launcher {

/// One watched process as the window sees it: a client with a connection of its own, which waits for the
/// window, and comes again with all that matters when there is a new one.
class Client {
public:
    /// The budget outlives the client.
    Client(pid_t pid, const Naming& naming, const std::vector<std::string>& arguments, QueueBudget& budget);

    pid_t pid() const { return m_pid; }
    const std::string& name() const { return m_name; }
    /// Names it anew, since its process has become another program.
    void rename(const std::vector<std::string>& arguments);

    void take(const Record& record);
    /// Drops some of the oldest records that wait; to be done only while there is no connection.
    void dropOldest();
    std::size_t bytesWaiting() const { return m_waiting.bytes(); }

    /// No more records come. A clean end is told as a good-bye, any other shows as a lost connection.
    void end(bool isClean);
    /// Adds the last words behind everything else, whatever had to be dropped. To be called before end().
    void addLastWords(const Record& record) { m_last.push(record); }

    bool isConnected() const { return m_link != nullptr; }
    /// Whether it is worth while to connect to a window: not if that one has said that it listens no more.
    bool wants(const WindowSocket::Identity& window) const { return !m_link && m_refusedBy != window; }
    void connect(Descriptor connection, const WindowSocket::Identity& window);
    /// Sends and receives what can be sent and received now.
    void transfer();
    /// Adds what is to be waited for.
    void addTo(std::vector<pollfd>& waitFor) const;
    /// Bytes that the current window has taken.
    std::uint64_t sent() const { return m_link ? m_link->sent() : 0; }

    bool isWireframe() const { return m_isWireframe; }
    /// Whether it has ended and nothing is left to do for it.
    bool isDone() const { return m_isDone; }

private:
    struct KeptRecord {
        std::uint32_t type;
        std::uint32_t frame;
        std::string payload;
    };
    /// The newest records of a kind, for a window that comes later.
    struct Kept {
        std::deque<KeptRecord> records;
        std::size_t bytes = 0;

        void add(const Record& record, std::size_t countLimit);
    };

    bool sendAll();
    bool hasMore() const { return !m_first.empty() || !m_waiting.empty() || !m_last.empty(); }
    void receive();
    void disconnect(bool isRefused);

    pid_t m_pid;
    Naming m_naming;
    std::string m_name;
    Kept m_contexts;
    Kept m_report;
    std::uint64_t m_dropped = 0; ///< In front of what waits.

    // What is sent, in this order.
    RecordQueue m_first; ///< Made anew for each window.
    RecordQueue m_waiting;
    RecordQueue m_last;

    std::unique_ptr<WindowLink> m_link;
    WindowSocket::Identity m_window{}; ///< The one that is connected.
    std::optional<WindowSocket::Identity> m_refusedBy;
    bool m_isStopNoticed = false;
    bool m_isWireframe = false;
    bool m_hasEnded = false;
    bool m_isDone = false;
    /// Until when the window may answer the end; set once everything is sent.
    std::optional<std::chrono::steady_clock::time_point> m_lingerEnd;
};

/// What the user reads where records are missing.
std::string droppedText(std::uint64_t count, std::string_view why);

} // namespace launcher
