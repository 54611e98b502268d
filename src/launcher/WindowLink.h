#pragma once

#include "Descriptor.h"
#include "Message.h"

#include <cstddef>
#include <functional>

namespace launcher {

class RecordQueue;

/// A client's connection to the window. Nothing in it ever waits.
class WindowLink {
public:
    explicit WindowLink(Descriptor connection);

    int descriptor() const { return m_connection.number(); }

    /// Sends records from the front of a queue and removes them from it once they are sent whole, until the
    /// window takes no more or some megabytes are through. False if the connection is lost. A record whose
    /// first part is sent must be at the front again with the next call.
    bool send(RecordQueue& queue);
    /// Whether the first part of a record is sent.
    bool isInRecord() const { return m_sentOfFirst > 0; }
    /// Bytes that the window's side has taken since the connection was made.
    std::uint64_t sent() const { return m_sent; }

    /// Gives the types of the records that the window has sent. False if the connection is lost.
    bool receive(const std::function<void(ui::messages::Type)>& take);

    /// Says that nothing more will come. The window answers by closing.
    void endSending();

private:
    Descriptor m_connection;
    std::size_t m_sentOfFirst = 0;
    std::uint64_t m_sent = 0;
    ui::messages::Message m_incoming;
    std::size_t m_incomingSize = 0;
};

} // namespace launcher
