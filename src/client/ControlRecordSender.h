#pragma once

#include "Message.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <string>
#include <vector>

class QLocalSocket;
class QSocketNotifier;

/// Sends control records to an application, past the buffers of the socket: a write that fails there closes
/// the socket and throws away what the application sent before its end.
///
/// An application need not read. What its socket does not take waits here, of each kind the latest record
/// only: of the wireframe switch, the last state is what counts.
class ControlRecordSender : public QObject {
    Q_OBJECT

public:
    ControlRecordSender(QLocalSocket* socket, QObject* parent);
    ~ControlRecordSender() override;

    /// Sends a record at once, as far as the socket takes it. Nothing happens once the socket is closed.
    void send(const ui::messages::Message& record);

private:
    void sendWaiting();
    bool sendRest();
    void waitForRoom();
    void giveUp();

    QPointer<QLocalSocket> m_socket;
    std::unique_ptr<QSocketNotifier> m_roomNotifier;
    std::string m_rest; ///< Of the record that is being sent.
    std::vector<ui::messages::Message> m_waiting;
};
