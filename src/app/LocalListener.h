#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <utility>

class QLocalServer;

/// Keeps a local server listening on a name in the temporary folder, for the user's own processes only.
///
/// A socket file that a crashed run has left behind is replaced; one that somebody answers on never is.
/// Whatever keeps the server from listening, at the start or later, is told by problem() and tried again: the
/// folder may be missing or be renamed, somebody else may have the name, and the server gives up its name
/// when it runs out of descriptors.
class LocalListener : public QObject {
    Q_OBJECT

public:
    /// Serves a server that lives at least as long and does not listen yet.
    LocalListener(QLocalServer* server, const QString& name, QObject* parent);

    /// Tries to listen; problem() tells why where that fails, and it is tried again until it works.
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

    /// The folder of the sockets: TMPDIR, else /tmp. It need not exist.
    static QString folder();
    /// The path of the socket with a name.
    static QString socketPath(const QString& name);

Q_SIGNALS:
    /// Whether the server listens, or why it does not, has changed.
    void stateChanged();

private:
    /// Device and inode of the socket file; zeros where there is none.
    using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;

    void check();
    FileIdentity identity() const;
    void setProblem(const QString& problem);

    QLocalServer* m_server;
    QString m_name;
    QString m_problem;
    FileIdentity m_ownFile; ///< Of the file that the server has made.
    QTimer m_check;
    bool m_hasState = false;
};
