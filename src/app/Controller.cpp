#include "Controller.h"

#include "Descriptors.h"
#include "DlgPreferences.h"
#include "LocalListener.h"
#include "OutlinedStyle.h"
#include "PlainMessageBox.h"
#include "Product.h"
#include "ProfileSaving.h"
#include "Resources.h"
#include "SaveReadOnlyProfile.h"
#include "StartUpFailure.h"
#include "TerminationSignals.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPushButton>
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

/// Loads the store and returns it; throws StartUpFailure where that fails.
Preferences& load(Preferences& preferences)
{
    // The application object has set the user's locale; files are written and read without it.
    std::setlocale(LC_NUMERIC, "C");
    std::string error;
    if (!preferences.load(error))
        throw StartUpFailure(error, preferences.loadProblem());
    return preferences;
}

} // namespace

Controller::Controller(int& argc, char** argv)
    : QApplication(prepareProcess(argc), argv)
    , m_mainWindow(this, load(m_preferences))
    , m_catalogue(m_preferences)
    , m_instanceServer(new QLocalServer(this))
{
    setApplicationName(QStringLiteral("corvale-gui"));
    setApplicationVersion(product::version());
    OutlinedStyle::install();
    setDesktopFileName(QStringLiteral("corvale-gui"));
    refuseSecondInstance();
    // Whoever sees this instance answer may end it by a signal at once.
    endOnSignals();
    answerOtherInstances();
    m_startUpLock.release();
    m_mainWindow.setCatalogue(m_catalogue);
}

Controller::~Controller() = default;

void Controller::refuseSecondInstance() const
{
    // What somebody else has put there says nothing about this user's instances.
    if (!LocalListener::isOwnSocket(LocalListener::instanceName()))
        return;
    QLocalSocket probe;
    probe.connectToServer(LocalListener::socketPath(LocalListener::instanceName()), QIODevice::ReadWrite);
    const bool answered = probe.waitForConnected(probeTime);
    // A server that neither answers nor refuses is alive but busy.
    const bool refused = probe.error() == QLocalSocket::ConnectionRefusedError
        || probe.error() == QLocalSocket::ServerNotFoundError;
    if (answered || !refused)
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
    connect(listener, &LocalListener::stateChanged, &m_mainWindow,
        [this, listener] { m_mainWindow.setInstanceProblem(listener->problem()); });
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
            // Where the window waits for a console that is being saved, its closing ends the program.
            if (m_mainWindow.end())
                quit();
        });
}

void Controller::editPreferences()
{
    DlgPreferences dialog(&m_preferences, &m_mainWindow);
    dialog.exec();
    m_mainWindow.preferencesEdited(dialog.savedFiles());
}

std::string Controller::directoryForSaving()
{
    std::string set = m_catalogue.profilesDirectory();
    if (!set.empty())
        return set;
    PlainMessageBox box(QMessageBox::Question, QStringLiteral("Corvale GUI"),
        tr("No folder for profiles is chosen yet."),
        tr("Choose the folder in which your profiles are kept. \"Edit > Preferences...\" changes it later."),
        &m_mainWindow, QMessageBox::Cancel);
    QPushButton* choose = box.addButton(tr("&Choose..."), QMessageBox::AcceptRole);
    box.setDefaultButton(choose);
    box.exec();
    if (box.clickedButton() != choose)
        return {};
    std::string chosen =
        QFile::encodeName(QFileDialog::getExistingDirectory(&m_mainWindow, tr("Choose directory"),
                              QDir::homePath(), QFileDialog::ShowDirsOnly))
            .toStdString();
    if (chosen.empty())
        return {};
    m_preferences.set(settings::profilesDirectory, chosen);
    return chosen;
}

bool Controller::askForCopy()
{
    return dialogs::SaveReadOnlyProfile(&m_mainWindow).exec() == QDialog::Accepted;
}

bool Controller::mayReplace(const std::string& fileName)
{
    return profile_saving::mayReplaceForeign(fileName, &m_mainWindow);
}

bool Controller::save(ProfileData& profile, const std::string& directory)
{
    return profile_saving::save(profile, directory, &m_mainWindow);
}

bool Controller::saveAs(ProfileData& profile, const std::string& directory)
{
    return profile_saving::saveAs(profile, directory, &m_mainWindow);
}

int Controller::run(const std::vector<std::string>& sessionFiles)
{
    m_mainWindow.restorePlace();
    m_mainWindow.show();
    m_mainWindow.showSplash();
    // Once the window is on the screen.
    QMetaObject::invokeMethod(
        &m_mainWindow,
        [this, sessionFiles] {
            for (const std::string& file : sessionFiles)
                m_mainWindow.openSession(QFile::decodeName(file.c_str()));
        },
        Qt::QueuedConnection);
    return QApplication::exec();
}
