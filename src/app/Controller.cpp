#include "Controller.h"

#include "Descriptors.h"
#include "LocalListener.h"
#include "PreferenceKeys.h"
#include "Product.h"
#include "Resources.h"
#include "SocketFile.h"
#include "TerminationSignals.h"

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSocketNotifier>

#include <clocale>
#include <stdexcept>

namespace {

/// How long in milliseconds another instance has to answer.
constexpr int probeTime = 500;

/// What must happen before the application object is made; returns its argument.
int& prepareProcess(int& argc)
{
    platform::raiseDescriptorLimit();
    registerResources();
    return argc;
}

/// Loads the store and returns it; throws std::runtime_error with the reason where that fails.
PlistPreferences& load(PlistPreferences& preferences)
{
    std::string error;
    if (!preferences.load(error, true))
        throw std::runtime_error(error);
    return preferences;
}

} // namespace

Controller::StartUpLock::StartUpLock()
    : m_file(QStringLiteral("%1/CorvaleGUI-%2.lock").arg(QDir::tempPath()).arg(platform::userId()))
{
    // The application object has set the user's locale; files are written and read without it.
    std::setlocale(LC_NUMERIC, "C");
    // Without the lock the start goes on: it guards against a rare coincidence only.
    m_file.tryLock(2 * probeTime);
}

Controller::Controller(int& argc, char** argv)
    : QApplication(prepareProcess(argc), argv)
    , m_preferences(preferencekeys::storeName, TSRPreferencesImpl::perUser)
    , m_mainWindow(this, load(m_preferences))
    , m_catalogue(m_preferences)
    , m_instanceServer(new QLocalServer(this))
{
    setApplicationName(QStringLiteral("corvale-gui"));
    setApplicationVersion(product::version());
    setDesktopFileName(QStringLiteral("corvale-gui"));
    refuseSecondInstance();
    answerOtherInstances();
    m_startUpLock.release();
    m_mainWindow.setCatalogue(m_catalogue);
}

Controller::~Controller() = default;

void Controller::refuseSecondInstance() const
{
    QLocalSocket probe;
    probe.connectToServer(LocalListener::instanceName(), QIODevice::ReadWrite);
    const bool answered = probe.waitForConnected(probeTime);
    // A server that neither answers nor refuses is alive but busy.
    const bool refused = probe.error() == QLocalSocket::ConnectionRefusedError
        || probe.error() == QLocalSocket::ServerNotFoundError;
    if (answered || (!refused && LocalListener::isOwnSocket(LocalListener::instanceName())))
        throw std::runtime_error("CorvaleGUI is already running");
}

void Controller::answerOtherInstances()
{
    // Nothing is read from them, but connections that nobody takes would use up those that the server
    // accepts.
    connect(m_instanceServer, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* connection = m_instanceServer->nextPendingConnection())
            connection->deleteLater();
    });
    auto* listener = new LocalListener(m_instanceServer, LocalListener::instanceName(), this);
    listener->start();
}

void Controller::endOnSignals()
{
    const int descriptor = platform::catchTerminationSignals();
    if (descriptor < 0)
        return;
    // Closing the window tells the clients, and the end of the program removes the sockets.
    connect(new QSocketNotifier(descriptor, QSocketNotifier::Read, this), &QSocketNotifier::activated, this,
        [this] {
            m_mainWindow.close();
            quit();
        });
}

int Controller::run()
{
    endOnSignals();
    m_mainWindow.show();
    m_mainWindow.showSplash();
    return QApplication::exec();
}
