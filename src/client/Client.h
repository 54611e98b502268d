#pragma once

#include "MetaTypes.h"

#include <QObject>
#include <QPointer>

#include <chrono>
#include <optional>

class ControlRecordSender;
class QLocalSocket;

/// One connected application: cuts its byte stream into records, emits a signal for each, and sends the
/// control records. Works on the thread of its socket; every signal is emitted before the next record is
/// read.
///
/// A read pass lasts about ten milliseconds at most, which all clients share, and then goes on through the
/// event loop, so that a flood of records leaves the window alive. What an application sent before its end is
/// always read before the end is reported. What it sends behind its good-bye is thrown away.
class Client : public QObject {
    Q_OBJECT

public:
    /// Watches a connected socket, which its server goes on to own. Bytes that have arrived already are read
    /// once the event loop runs again, so that the client's signals can be connected before.
    Client(QObject* parent, QLocalSocket* socket);

    /// True while more has arrived than could be read in the time that there is for it.
    bool hasBacklog() const { return m_hasBacklog; }
    /// When the record that is announced arrived, in milliseconds since the epoch, if that is not now.
    std::optional<qint64> recordTime() const { return m_recordTime; }
    /// What is known of its end and has not been announced as a record; empty for most.
    const QString& endNote() const { return m_endNote; }
    /// When the record that is announced was read; of no use where recordTime() tells.
    std::chrono::steady_clock::time_point readingTime() const { return m_readingTime; }

Q_SIGNALS:
    void setPID(Client*, PID_TYPE);
    void setName(Client*, const QString&);
    /// A record of types 14 to 20.
    void systemReportMessage(const ui::messages::Message&);
    /// A record of types 3 to 10.
    void clientMessage(const ui::messages::Message&);
    /// The application said good-bye.
    void cleanDisconnect(Client*);
    /// The connection ended without a good-bye.
    void ickyDisconnect(Client*);
    /// A record of a type that no application may send. Everything that was buffered behind it is dropped.
    void badRead(Client*);

public Q_SLOTS:
    void wireframeOn();
    void wireframeOff();
    void notifyServerStop();
    void socketDisconnected();
    void socketReadyRead();

protected:
    /// Without a connection, for records that come from elsewhere. Nothing is ever sent.
    explicit Client(QObject* parent);

    /// Emits the signal of a record that an application may send. False for the others, and its good-bye.
    bool announce(const ui::messages::Message& message);
    void setBacklog(bool hasBacklog) { m_hasBacklog = hasBacklog; }
    void setRecordTime(qint64 time) { m_recordTime = time; }
    void setEndNote(const QString& note) { m_endNote = note; }

private:
    enum class Step { GoOn, Stop };

    void readRecords(bool bounded);
    Step readRecord();
    Step dispatch(const ui::messages::Message& message);
    void continueLater();
    void send(const ui::messages::Message& record);

    QPointer<QLocalSocket> m_socket;
    ControlRecordSender* m_controlSender = nullptr;
    bool m_saidGoodbye = false;
    bool m_continuationPending = false;
    bool m_hasBacklog = false;
    std::optional<qint64> m_recordTime;
    QString m_endNote;
    std::chrono::steady_clock::time_point m_readingTime = std::chrono::steady_clock::now();
    quint64 m_lastIteration = 0; ///< Of the event loop, in which the client has read.
    bool m_reading = false;
    bool m_disconnectPending = false; ///< The socket was disconnected during a read pass.
};
