#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

class QLocalServer;

/// Keeps a local server listening on a bare name in the temporary folder, for the user's own processes only.
///
/// A socket file that a crashed run has left behind is replaced; one that somebody answers on never is. When
/// the server's file vanishes (the server gives up its name when it runs out of descriptors, and folders of
/// temporary files get cleaned), it listens again.
class LocalListener : public QObject {
    Q_OBJECT

public:
    /// Serves a server that lives at least as long.
    LocalListener(QLocalServer* server, const QString& name, QObject* parent);

    /// Tries to listen; problem() tells why where that fails.
    void start();

    bool isListening() const;
    /// Why the server does not listen, in words for the user; empty while it does.
    const QString& problem() const { return m_problem; }
    /// The path of the server's socket file.
    QString path() const;

    /// Listens on a name under the rules above, once. Returns an empty text or the reason why not.
    static QString listenOnce(QLocalServer& server, const QString& name);

    /// True when there is a socket file of this user under a name, whether or not anybody answers on it.
    static bool isOwnSocket(const QString& name);

    /// The name on which every running instance answers.
    static QString instanceName();

Q_SIGNALS:
    /// Whether the server listens, or why it does not, has changed.
    void stateChanged();

private:
    void listenAgain();
    void watch();

    QLocalServer* m_server;
    QString m_name;
    QString m_problem;
    QFileSystemWatcher m_watcher;
    QTimer m_retry;
};
