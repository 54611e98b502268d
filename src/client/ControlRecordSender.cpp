#include "ControlRecordSender.h"

#include <QLocalSocket>
#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>

#ifndef Q_OS_WIN
#include <sys/socket.h>
#endif

using ui::messages::Message;
using ui::messages::Type;

namespace {

bool isWireframe(const Message& record)
{
    return record.type() == Type::WireframeOn || record.type() == Type::WireframeOff;
}

bool isSameKind(const Message& one, const Message& other)
{
    return one.type() == other.type() || (isWireframe(one) && isWireframe(other));
}

} // namespace

ControlRecordSender::ControlRecordSender(QLocalSocket* socket, QObject* parent)
    : QObject(parent)
    , m_socket(socket)
{
    connect(socket, &QLocalSocket::disconnected, this, &ControlRecordSender::giveUp);
#ifdef Q_OS_WIN
    connect(socket, &QLocalSocket::bytesWritten, this, &ControlRecordSender::sendWaiting);
#endif
}

ControlRecordSender::~ControlRecordSender() = default;

void ControlRecordSender::send(const Message& record)
{
    m_waiting.erase(std::remove_if(m_waiting.begin(), m_waiting.end(),
                        [&record](const Message& other) { return isSameKind(other, record); }),
        m_waiting.end());
    m_waiting.push_back(record);
    sendWaiting();
}

void ControlRecordSender::sendWaiting()
{
    if (!m_socket || m_socket->state() != QLocalSocket::ConnectedState) {
        giveUp();
        return;
    }
    if (m_roomNotifier)
        m_roomNotifier->setEnabled(false);
    while (sendRest() && !m_waiting.empty()) {
        m_rest.assign(m_waiting.front().data(), ui::messages::recordSize);
        m_waiting.erase(m_waiting.begin());
    }
}

#ifdef Q_OS_WIN

/// True when nothing of a record is left to be sent.
bool ControlRecordSender::sendRest()
{
    if (!m_rest.empty() && m_socket->bytesToWrite() == 0) {
        m_socket->write(m_rest.data(), static_cast<qint64>(m_rest.size()));
        m_rest.clear();
    }
    return m_rest.empty();
}

#else

/// True when nothing of a record is left to be sent.
bool ControlRecordSender::sendRest()
{
    while (!m_rest.empty()) {
        const ssize_t sent = ::send(static_cast<int>(m_socket->socketDescriptor()), m_rest.data(),
            m_rest.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent >= 0) {
            m_rest.erase(0, static_cast<std::size_t>(sent));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            waitForRoom();
            return false;
        } else if (errno != EINTR) {
            // The application is gone. The socket learns that once it has read everything.
            giveUp();
        }
    }
    return true;
}

#endif

void ControlRecordSender::waitForRoom()
{
    if (!m_roomNotifier) {
        m_roomNotifier =
            std::make_unique<QSocketNotifier>(m_socket->socketDescriptor(), QSocketNotifier::Write);
        connect(m_roomNotifier.get(), &QSocketNotifier::activated, this, &ControlRecordSender::sendWaiting);
    }
    m_roomNotifier->setEnabled(true);
}

void ControlRecordSender::giveUp()
{
    m_rest.clear();
    m_waiting.clear();
    if (m_roomNotifier)
        m_roomNotifier->setEnabled(false);
}
