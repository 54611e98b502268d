#include "StartUpLock.h"

#include "LocalListener.h"
#include "SocketFile.h"

#include <QFile>

namespace {

/// In milliseconds: about twice as long as the other instance waits for answers.
constexpr int longestWait = 1000;

} // namespace

StartUpLock::StartUpLock()
    : m_file(LocalListener::socketPath(QStringLiteral("CorvaleGUI-%1.lock").arg(platform::userId())))
{
    // Somebody else's file in its place says nothing about this user's instances.
    const std::string path = QFile::encodeName(m_file.fileName()).toStdString();
    const bool isForeign =
        platform::fileIdentity(path) != platform::fileIdentity({}) && !platform::isOwnFile(path);
    if (!isForeign)
        m_file.tryLock(longestWait);
}
