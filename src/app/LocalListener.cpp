#include "LocalListener.h"

#include "SocketFile.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>

namespace {

/// Milliseconds that somebody has to answer on a name, and between two attempts to listen again.
constexpr int answerTime = 500;
constexpr int retryTime = 1000;

QString socketPath(const QString& name)
{
    return QDir::cleanPath(QDir::tempPath()) + QLatin1Char('/') + name;
}

enum class Answer { Answered, Refused, Unclear };

Answer askFor(const QString& name)
{
    QLocalSocket probe;
    probe.connectToServer(name, QIODevice::ReadWrite);
    if (probe.waitForConnected(answerTime))
        return Answer::Answered;
    return probe.error() == QLocalSocket::ConnectionRefusedError ? Answer::Refused : Answer::Unclear;
}

bool listen(QLocalServer& server, const QString& name)
{
    // An access option would make the server rename its socket over a name that another one answers on.
    const platform::OwnerOnlyFiles ownerOnly;
    return server.listen(name);
}

/// True when the name is free for us to take: a socket file of ours that nobody answers on.
bool isLeftBehind(const QString& name)
{
    // To ask on the name itself would show up as a connected application where an instance is alive.
    if (name != LocalListener::instanceName() && askFor(LocalListener::instanceName()) == Answer::Answered)
        return false;
    return LocalListener::isOwnSocket(name) && askFor(name) == Answer::Refused;
}

QString reasonForAddressInUse(const QString& name)
{
    const QString path = socketPath(name);
    if (LocalListener::isOwnSocket(name))
        return LocalListener::tr(
            "Another program of yours answers on \"%1\". Close it, then start this one again.")
            .arg(path);
    if (!platform::isOwnFile(QFile::encodeName(path).toStdString()))
        return LocalListener::tr(
            "\"%1\" belongs to another user. Set TMPDIR to a folder of your own, for this "
            "program and for the applications.")
            .arg(path);
    return LocalListener::tr("\"%1\" is in the way. Move it elsewhere, then start this program again.")
        .arg(path);
}

QString reasonForNoSocket(const QLocalServer& server, const QString& name)
{
    /// Bytes of a socket's path at most.
    constexpr qsizetype longestPath = 107;
    const QString path = socketPath(name);
    if (QFile::encodeName(path).size() > longestPath)
        return LocalListener::tr(
            "\"%1\" is too long for a socket. Set TMPDIR to a shorter folder, for this program "
            "and for the applications.")
            .arg(path);
    if (!QFileInfo(QDir::tempPath()).isWritable())
        return LocalListener::tr(
            "\"%1\" cannot be written to. Set TMPDIR to a folder of your own, for this program "
            "and for the applications.")
            .arg(QDir::tempPath());
    return LocalListener::tr("the socket \"%1\" cannot be made (%2).").arg(path, server.errorString());
}

} // namespace

bool LocalListener::isOwnSocket(const QString& name)
{
    return platform::isOwnSocketFile(QFile::encodeName(socketPath(name)).toStdString());
}

QString LocalListener::instanceName()
{
    return QStringLiteral("CorvaleGUI");
}

QString LocalListener::listenOnce(QLocalServer& server, const QString& name)
{
    if (listen(server, name))
        return {};
    if (server.serverError() == QAbstractSocket::AddressInUseError && isLeftBehind(name)) {
        QLocalServer::removeServer(name);
        if (listen(server, name))
            return {};
    }
    if (server.serverError() == QAbstractSocket::AddressInUseError)
        return reasonForAddressInUse(name);
    return reasonForNoSocket(server, name);
}

LocalListener::LocalListener(QLocalServer* server, const QString& name, QObject* parent)
    : QObject(parent)
    , m_server(server)
    , m_name(name)
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(retryTime);
    connect(&m_retry, &QTimer::timeout, this, &LocalListener::listenAgain);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, [this] {
        if (!QFileInfo::exists(path()))
            listenAgain();
    });
}

void LocalListener::start()
{
    m_problem = listenOnce(*m_server, m_name);
    watch();
    Q_EMIT stateChanged();
}

bool LocalListener::isListening() const
{
    return m_server->isListening();
}

QString LocalListener::path() const
{
    return socketPath(m_name);
}

void LocalListener::watch()
{
    // The server tells nobody when it stops to listen, but its file goes with it.
    if (isListening() && !m_watcher.files().contains(path()))
        m_watcher.addPath(path());
}

void LocalListener::listenAgain()
{
    if (m_server->isListening())
        m_server->close();
    start();
    if (!isListening())
        m_retry.start();
}
