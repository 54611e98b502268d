#pragma once

#include "Records.h"

#include <QDir>
#include <QString>

#include <cerrno>
#include <string>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

/// An application's end of a connection, without Qt's buffers and event loop: what is sent is in the system
/// when send() returns, and what is closed is closed.
class RawClient {
public:
    explicit RawClient(const QString& serverName)
        : m_descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        const QByteArray path = QFile::encodeName(QDir::tempPath() + QLatin1Char('/') + serverName);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
        if (connect(m_descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            close();
    }
    ~RawClient() { close(); }
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    bool isConnected() const { return m_descriptor >= 0; }

    /// Sends everything; blocks while the other end does not read.
    bool send(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const ssize_t sent = ::send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent < 0)
                return false;
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }
    bool send(const records::Message& message) { return send(records::bytes(message)); }

    /// Takes what has arrived, without waiting.
    void collect()
    {
        char buffer[16384];
        for (;;) {
            const ssize_t count = recv(m_descriptor, buffer, sizeof buffer, MSG_DONTWAIT);
            if (count <= 0)
                break;
            m_received.append(buffer, static_cast<std::size_t>(count));
        }
    }
    /// The types of the whole records that have been received so far.
    QList<quint32> receivedTypes()
    {
        collect();
        QList<quint32> types;
        for (std::size_t at = 0; at + ui::messages::recordSize <= m_received.size();
             at += ui::messages::recordSize) {
            records::Message message;
            std::memcpy(message.data(), m_received.data() + at, ui::messages::recordSize);
            types.append(message.rawType());
        }
        return types;
    }

    void close()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        m_descriptor = -1;
    }

private:
    int m_descriptor;
    std::string m_received;
};
