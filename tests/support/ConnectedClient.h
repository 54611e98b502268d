#pragma once

#include "Client.h"
#include "RawClient.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QTest>

#include <memory>

/// A Client and the application's end of its connection.
class ConnectedClient {
public:
    ConnectedClient()
    {
        const QString name = QStringLiteral("test%1").arg(++s_count);
        server.listen(name);
        application = std::make_unique<RawClient>(name);
        server.waitForNewConnection(5000);
        socket = server.nextPendingConnection();
    }
    /// Makes the Client; bytes that were sent before wait in the socket.
    Client& start()
    {
        client = std::make_unique<Client>(nullptr, socket);
        return *client;
    }

    QLocalServer server;
    std::unique_ptr<RawClient> application;
    QLocalSocket* socket = nullptr;
    std::unique_ptr<Client> client;

private:
    static inline int s_count = 0;
};
