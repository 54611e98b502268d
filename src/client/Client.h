#pragma once

#include "MetaTypes.h"

#include <QObject>
#include <QPointer>

class QLocalSocket;

/// One connected application: cuts its byte stream into records, emits a signal for each, and writes the
/// control records. Works on the thread of its socket; every signal is emitted before the next record is
/// read.
///
/// A read pass lasts about ten milliseconds at most, which all clients share, and then goes on through the
/// event loop, so that a flood of records leaves the window alive. What an application sent before its end is
/// always read before the end is reported.
class Client : public QObject {
    Q_OBJECT

public:
    /// Watches a connected socket, which stays its server's. Bytes that arrived before are read as well, once
    /// the event loop runs again, so that whoever made the client can connect its signals first.
    Client(QObject* parent, QLocalSocket* socket);

    /// True while more has arrived than could be read in the time that there is for it.
    bool hasBacklog() const { return m_hasBacklog; }

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
    /// A record of a type that no application may send; everything that was buffered behind it is lost.
    void badRead(Client*);

public Q_SLOTS:
    void wireframeOn();
    void wireframeOff();
    void notifyServerStop();
    void socketDisconnected();
    void socketReadyRead();

private:
    enum class Step { GoOn, Stop };

    void readRecords(bool bounded);
    Step readRecord();
    Step dispatch(const ui::messages::Message& message);
    void continueLater();
    void write(const ui::messages::Message& message);
    void readWhatAGoneApplicationSent();

    QPointer<QLocalSocket> m_socket;
    bool m_saidGoodbye = false;
    bool m_continuationPending = false;
    bool m_hasBacklog = false;
    quint64 m_lastTurn = 0;
    bool m_reading = false;
    bool m_endPending = false;
};
