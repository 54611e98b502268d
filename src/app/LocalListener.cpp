#include "LocalListener.h"

#include "SocketFile.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>

namespace {

/// Milliseconds that somebody has to answer on a name, and between two looks at whether the server still
/// listens.
constexpr int answerTime = 500;
constexpr int checkTime = 1000;

/// Connections that the system keeps until the window takes them: as many applications may start at once.
constexpr int pendingConnections = 1024;

/// Bytes of a socket's path at most. The system takes one more, but QLocalServer fails with it.
constexpr qsizetype longestPath = 106;

enum class Answer { Answered, Refused, Unclear };

Answer askFor(const QString& name)
{
    QLocalSocket probe;
    probe.connectToServer(LocalListener::socketPath(name), QIODevice::ReadWrite);
    if (probe.waitForConnected(answerTime))
        return Answer::Answered;
    return probe.error() == QLocalSocket::ConnectionRefusedError ? Answer::Refused : Answer::Unclear;
}

bool listen(QLocalServer& server, const QString& name)
{
    // An access option would make the server rename its socket over a name that another one answers on.
    const platform::OwnerOnlyFiles ownerOnly;
    return server.listen(LocalListener::socketPath(name));
}

/// True when the name is free for us to take: a socket file of ours that nobody answers on.
bool isLeftBehind(const QString& name)
{
    // To ask on the name itself would show up as a connected application where an instance is alive.
    const QString instance = LocalListener::instanceName();
    if (name != instance && LocalListener::isOwnSocket(instance) && askFor(instance) == Answer::Answered)
        return false;
    return LocalListener::isOwnSocket(name) && askFor(name) == Answer::Refused;
}

QString reasonForAddressInUse(const QString& name)
{
    const QString path = LocalListener::socketPath(name);
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
    const QString folder = LocalListener::folder();
    if (!QFileInfo(folder).isWritable())
        return LocalListener::tr(
            "\"%1\" cannot be written to. Set TMPDIR to a folder of your own, for this program "
            "and for the applications.")
            .arg(folder);
    return LocalListener::tr("the socket \"%1\" cannot be made (%2).")
        .arg(LocalListener::socketPath(name), server.errorString());
}

/// Why there cannot be such a socket, whatever its server does; empty when there can.
QString reasonForNoPlace(const QString& name)
{
    const QString folder = LocalListener::folder();
    if (!QFileInfo(folder).isDir())
        return LocalListener::tr(
            "The folder \"%1\", which TMPDIR names, does not exist. Create it, or set TMPDIR to "
            "another one, for this program and for the applications.")
            .arg(folder);
    const QString path = LocalListener::socketPath(name);
    if (QFile::encodeName(path).size() > longestPath)
        return LocalListener::tr(
            "\"%1\" is too long for a socket. Set TMPDIR to a shorter folder, for this program "
            "and for the applications.")
            .arg(path);
    return {};
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

QString LocalListener::folder()
{
    const QString set = QFile::decodeName(qgetenv("TMPDIR"));
    const QString folder = QDir::cleanPath(set.isEmpty() ? QStringLiteral("/tmp") : set);
    const QString canonical = QDir(folder).canonicalPath();
    return canonical.isEmpty() ? QDir(folder).absolutePath() : canonical;
}

QString LocalListener::socketPath(const QString& name)
{
    return folder() + QLatin1Char('/') + name;
}

QString LocalListener::listenOnce(QLocalServer& server, const QString& name)
{
    QString problem = reasonForNoPlace(name);
    if (!problem.isEmpty() || listen(server, name))
        return problem;
    if (server.serverError() == QAbstractSocket::AddressInUseError && isLeftBehind(name)) {
        QLocalServer::removeServer(socketPath(name));
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
    m_server->setListenBacklogSize(pendingConnections);
    m_check.setInterval(checkTime);
    // The server tells nobody when it stops to listen, nor would it learn that its file has gone.
    connect(&m_check, &QTimer::timeout, this, &LocalListener::check);
}

void LocalListener::start()
{
    const QString problem = listenOnce(*m_server, m_name);
    m_ownFile = isListening() ? identity() : FileIdentity();
    m_check.start();
    setProblem(problem);
}

void LocalListener::setProblem(const QString& problem)
{
    if (std::exchange(m_hasState, true) && problem == m_problem)
        return;
    m_problem = problem;
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

LocalListener::FileIdentity LocalListener::identity() const
{
    return platform::fileIdentity(QFile::encodeName(path()).toStdString());
}

void LocalListener::check()
{
    const FileIdentity found = identity();
    if (isListening() && found == m_ownFile)
        return;
    if (isListening() && found != FileIdentity()) {
        // To close the server would remove a file that is not its own.
        setProblem(reasonForAddressInUse(m_name));
        return;
    }
    if (isListening())
        m_server->close();
    start();
}
