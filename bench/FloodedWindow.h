#pragma once

#include "Client.h"
#include "ClientInterface.h"
#include "FloodSender.h"
#include "MainWindow.h"
#include "Preferences.h"
#include "Settings.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QTabWidget>

#include <ctime>
#include <functional>
#include <map>
#include <stdexcept>

namespace flood {

/// Milliseconds after which a measurement is given up.
constexpr qint64 patience = 300'000;

inline double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// Milliseconds that this thread has had a processor.
inline double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1000 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// The program's window, and what its clients have sent.
class Window {
public:
    explicit Window(bool recordsSessions = false)
        : m_preferences("Bench")
        , m_window(nullptr, withRecording(m_preferences, recordsSessions))
    {
        m_window.resize(900, 640);
        m_window.show();
        auto* server = m_window.findChild<QLocalServer*>();
        if (!server || !server->isListening())
            throw std::runtime_error("the window does not listen");
        // Behind the window's own slot, and before anything is read.
        QObject::connect(server, &QLocalServer::newConnection, &m_window, [this] { watchNewClients(); });
    }

    /// Waits until so many records have been received.
    void waitFor(int records, const Senders& senders)
    {
        QElapsedTimer waited;
        waited.start();
        while (count() < records) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            if (waited.hasExpired(patience) || senders.haveFailed())
                throw std::runtime_error("the records did not arrive");
        }
    }

    int count() const { return m_count; }
    const std::map<const Client*, int>& clients() const { return m_clients; }
    ClientInterface& page() const
    {
        for (auto* page : m_window.findChildren<ClientInterface*>()) {
            if (page->client())
                return *page;
        }
        throw std::runtime_error("there is no client");
    }

    std::function<void(const ui::messages::Message&)> onRecord = [](const ui::messages::Message&) {
    };

private:
    static Preferences& withRecording(Preferences& preferences, bool recordsSessions)
    {
        preferences.set(settings::recordSessions, recordsSessions);
        return preferences;
    }
    void watchNewClients()
    {
        for (auto* client : m_window.findChildren<Client*>()) {
            if (!m_clients.emplace(client, 0).second)
                continue;
            QObject::connect(client, &Client::clientMessage, &m_window,
                [this, client](const ui::messages::Message& record) {
                    ++m_count;
                    ++m_clients[client];
                    onRecord(record);
                });
            auto* pages = page().findChild<QTabWidget*>(QStringLiteral("tabWidget"));
            pages->setCurrentIndex(0);
        }
    }

    Preferences m_preferences;
    MainWindow m_window;
    std::map<const Client*, int> m_clients;
    int m_count = 0;
};

} // namespace flood
