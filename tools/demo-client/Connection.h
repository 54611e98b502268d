#pragma once

#include "Message.h"
#include "Output.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

namespace demo {

/// Thrown when there is no server to talk to. The text says what to do about it.
class ConnectError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The path of a server's socket: a text with a slash is a path already, any other is the name of a socket in
/// the temporary folder (TMPDIR, else /tmp).
std::string socketPath(const std::string& pathOrName);

/// Connects to the socket at a path and returns its descriptor, which the caller owns.
int connectTo(const std::string& path);

/// A connection to the window. It reads whatever arrives while it writes or waits, so neither end can block
/// the other for good.
class Connection : public Output {
public:
    using Listener = std::function<void(const ui::messages::Message&)>;

    /// Takes over the descriptor of a connected stream socket. The listener gets every whole record received.
    Connection(int descriptor, Listener listener);
    ~Connection() override;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void send(std::string_view bytes) override;
    void pause(Clock::duration time) override;
    void settle() override;
    void finish(std::string_view lastBytes) override;

private:
    void write(std::string_view bytes);
    void receive();
    void waitFor(short events, Clock::duration atMost) const;
    bool isBetweenRecords() const;
    bool isAskedToEnd() const;
    void endIfAsked() const;
    [[noreturn]] void endSession() const;
    int bytesUnread() const;

    int m_descriptor;
    Listener m_listener;
    std::uint64_t m_sent = 0;
    ui::messages::Message m_incoming;
    std::size_t m_incomingSize = 0;
    bool m_stopNotice = false;
};

} // namespace demo
