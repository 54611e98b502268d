#include "Controller.h"

#include "Descriptors.h"
#include "LocalListener.h"
#include "PreferenceKeys.h"
#include "Product.h"
#include "Resources.h"

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

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
    : m_file(QDir::tempPath() + QStringLiteral("/CorvaleGUI.lock"))
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
    LocalListener::listenOnce(*m_instanceServer, LocalListener::instanceName());
    m_startUpLock.release();
    m_mainWindow.setCatalogue(m_catalogue);
}

Controller::~Controller() = default;

void Controller::refuseSecondInstance() const
{
    QLocalSocket probe;
    probe.connectToServer(LocalListener::instanceName(), QIODevice::ReadWrite);
    if (probe.waitForConnected(probeTime))
        throw std::runtime_error("CorvaleGUI is already running");
}

int Controller::run()
{
    m_mainWindow.show();
    return QApplication::exec();
}
