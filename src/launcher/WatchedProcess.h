#pragma once

#include "Client.h"
#include "Doorbell.h"
#include "Greeter.h"
#include "ProcessEnd.h"
#include "RecordSink.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace launcher {

/// A process that is a client of the window. Once it has announced itself, its ring is emptied into the
/// client until it ends. The program whose output is shown may be a client before, or without that.
class WatchedProcess {
public:
    enum class Drained {
        Empty, ///< The doorbell rings when there is more.
        Partly, ///< There may be more at once.
        Stalled, ///< There is more than may wait.
    };

    /// Budget, sink and the eventfd that tells of new records outlive this.
    WatchedProcess(
        Newcomer newcomer, const Naming& naming, QueueBudget& budget, RecordSink& sink, int wakeUp);
    /// One that has not announced itself.
    WatchedProcess(pid_t pid, const Naming& naming, const std::vector<std::string>& arguments,
        QueueBudget& budget, RecordSink& sink);
    /// It has announced itself.
    void attach(Newcomer newcomer, int wakeUp);
    bool isAttached() const { return m_ring != nullptr; }

    pid_t pid() const { return m_client.pid(); }
    Client& client() { return m_client; }
    const Client& client() const { return m_client; }
    bool isAlive() const { return m_isAlive; }
    /// Whether the process is dead though its end has not been noted.
    bool isDead() const;
    /// Adds what is to be waited for.
    void addTo(std::vector<pollfd>& waitFor) const;

    /// Reads what is in the ring now, as long as there is room for it.
    Drained drain(const std::function<bool()>& hasRoom);
    void passWireframe();
    /// Adds a message behind what has come so far.
    void tell(ui::messages::Type type, std::string_view text);

    /// Reads the rest and tells how the process ended; the exit status only if that is wanted.
    void finish(const ProcessEnd& end, bool tellsStatus = false);
    /// The same where the launcher has ended it; the reason is for the user.
    void finishEnded(std::string_view reason);
    /// How many frames it has shown until now.
    std::uint32_t frames() const;
    /// Ends the watching of a process that goes on; the reason, if any, is for the user.
    void leave(std::string_view why = {});

private:
    /// Reads up to as many bytes as are in the ring now. False if there was no room for one of them.
    bool readRing(const std::function<bool()>& hasRoom);
    void readRest();
    void take(const Record& record);
    void tellLast(ui::messages::Type type, std::string_view text);
    /// It has no more to tell. `how` has been its last message if `isTold`.
    void close(bool isClean, const std::string& how, bool isTold);
    void breakOff();

    std::unique_ptr<layer::ring::Reader>
        m_ring; ///< None before it has announced itself, and once it has ended.
    std::unique_ptr<Doorbell> m_doorbell; ///< Ends before the ring.
    Descriptor m_death;
    RecordSink& m_sink;
    Client m_client;
    std::uint64_t m_droppedTold = 0;
    bool m_isAlive = true;
    bool m_isBroken = false;
};

} // namespace launcher
