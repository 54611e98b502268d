#include "Client.h"

#include "ControlRecordSender.h"
#include "EventLoopBudget.h"
#include "RecordText.h"

#include <QLocalSocket>

using ui::messages::Message;
using ui::messages::recordSize;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

/// Bytes that are buffered for a socket. What an application sends beyond them stays in the system's buffers.
constexpr qint64 bufferLimit = 64 * static_cast<qint64>(recordSize);

} // namespace

Client::Client(QObject* parent, QLocalSocket* socket)
    : QObject(parent)
    , m_socket(socket)
    , m_controlSender(new ControlRecordSender(socket, this))
{
    registerClientMetaTypes();
    socket->setReadBufferSize(bufferLimit);
    connect(socket, SIGNAL(readyRead()), SLOT(socketReadyRead()));
    connect(socket, SIGNAL(disconnected()), SLOT(socketDisconnected()));
    // A disconnected socket is of no use, but would keep its buffers as long as the server lives.
    connect(socket, SIGNAL(disconnected()), socket, SLOT(deleteLater()));
    continueLater();
}

Client::Client(QObject* parent)
    : QObject(parent)
{
    registerClientMetaTypes();
}

void Client::socketReadyRead()
{
    if (!m_saidGoodbye)
        readRecords(true);
    else if (m_socket)
        m_socket->readAll(); // An application that goes on writing would wait for ever.
}

void Client::readRecords(bool bounded)
{
    if (m_reading)
        return;
    m_reading = true;
    const QPointer<Client> self(this);
    const auto begin = std::chrono::steady_clock::now();
    const auto end = begin + std::chrono::nanoseconds(event_loop_budget::readingTime(m_lastIteration));
    m_readingTime = begin;
    Step step = Step::GoOn;
    bool isOutOfTime = false;
    while (step == Step::GoOn && !isOutOfTime) {
        step = readRecord();
        if (!self)
            return;
        m_readingTime = std::chrono::steady_clock::now();
        isOutOfTime = step == Step::GoOn && bounded && m_readingTime >= end;
    }
    if (isOutOfTime)
        continueLater();
    m_hasBacklog = isOutOfTime;
    m_reading = false;
    if (m_disconnectPending) {
        m_disconnectPending = false;
        socketDisconnected();
    }
}

Client::Step Client::readRecord()
{
    if (!m_socket)
        return Step::Stop;
    // A failed read leaves a record that counts as a bad one, never as one that was sent.
    Message message = Message::make(static_cast<Type>(0xFFFFFFFF));
    // The count is compared unsigned: a failing peek counts as a whole record and ends in a bad read.
    if (static_cast<quint64>(m_socket->peek(message.data(), static_cast<qint64>(recordSize))) < recordSize)
        return Step::Stop;
    m_socket->read(message.data(), static_cast<qint64>(recordSize));
    const QPointer<Client> self(this);
    if (dispatch(message) == Step::Stop || !self)
        return Step::Stop;
    return m_socket && m_socket->bytesAvailable() >= 1 ? Step::GoOn : Step::Stop;
}

Client::Step Client::dispatch(const Message& message)
{
    if (message.type() == Type::CleanDisconnect) {
        disconnect(m_socket, SIGNAL(disconnected()), this, SLOT(socketDisconnected()));
        m_saidGoodbye = true;
        Q_EMIT cleanDisconnect(this);
        return Step::Stop;
    }
    if (announce(message))
        return Step::GoOn;
    const QPointer<Client> self(this);
    Q_EMIT badRead(this);
    if (self && m_socket)
        m_socket->readAll();
    return Step::Stop;
}

bool Client::announce(const Message& message)
{
    switch (message.type()) {
    case Type::SetPid:
        Q_EMIT setPID(this, message.u32(offset::pid));
        return true;
    case Type::SetName:
        Q_EMIT setName(this, record_text::singleLine(message.text(offset::text)));
        return true;
    case Type::IdentifiedMessage:
    case Type::LineBreak:
    case Type::DebugMessage:
    case Type::Information:
    case Type::Warning:
    case Type::Error:
    case Type::GlError:
    case Type::ContextInformation:
        Q_EMIT clientMessage(message);
        return true;
    case Type::ReportLeadingNumber:
    case Type::ReportFlag:
    case Type::ReportText:
    case Type::ReportDetail:
    case Type::ReportKeyedText:
    case Type::ReportOtherKeyedText:
    case Type::ReportComplete:
        Q_EMIT systemReportMessage(message);
        return true;
    case Type::CleanDisconnect:
    case Type::NotifyServerStop:
    case Type::WireframeOn:
    case Type::WireframeOff:
        break;
    }
    return false;
}

void Client::continueLater()
{
    // The socket announces new bytes only, so bytes that a pass leaves behind need another one.
    if (m_continuationPending)
        return;
    m_continuationPending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_continuationPending = false;
            if (m_socket && !m_saidGoodbye && m_socket->bytesAvailable() > 0)
                readRecords(true);
        },
        Qt::QueuedConnection);
}

void Client::socketDisconnected()
{
    if (m_reading) {
        m_disconnectPending = true;
        return;
    }
    const QPointer<Client> self(this);
    if (m_socket && m_socket->bytesAvailable() > 0)
        readRecords(false);
    // The application's last records may have held its good-bye.
    if (self && !m_saidGoodbye)
        Q_EMIT ickyDisconnect(this);
}

void Client::wireframeOn()
{
    send(Message::wireframeOn());
}

void Client::wireframeOff()
{
    send(Message::wireframeOff());
}

void Client::notifyServerStop()
{
    send(Message::notifyServerStop());
}

void Client::send(const Message& record)
{
    if (m_controlSender)
        m_controlSender->send(record);
}
