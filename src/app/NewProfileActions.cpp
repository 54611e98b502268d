#include "NewProfileActions.h"

#include "Client.h"
#include "ClientInterface.h"
#include "ClientTabWidget.h"
#include "ContextInterface.h"
#include "LauncherFile.h"
#include "Limits.h"
#include "PlainMessageBox.h"
#include "ProfileReader.h"

#include <QAction>
#include <QMenu>
#include <QProcess>

#include <algorithm>
#include <map>
#include <set>

namespace {

/// The numbers that profiles have for the versions of OpenGL ES.
const std::map<QString, int>& sections()
{
    static const std::map<QString, int> numbers{{QStringLiteral("1.0"), 1}, {QStringLiteral("1.1"), 1},
        {QStringLiteral("2.0"), 2}, {QStringLiteral("3.0"), 3}, {QStringLiteral("3.1"), 31},
        {QStringLiteral("3.2"), 32}};
    return numbers;
}

/// What contexts have told; nothing of theirs else is known.
ProfileData profileOf(const QList<ContextInterface*>& contexts)
{
    std::map<int, std::set<std::string>> extensions;
    for (const ContextInterface* context : contexts) {
        const auto section = sections().find(context->esVersion());
        if (section == sections().end())
            continue;
        std::set<std::string>& names = extensions[section->second];
        for (const QString& name : context->esExtensions())
            names.insert(name.toStdString());
    }
    ProfileData profile;
    for (const auto& [version, names] : extensions)
        profile.extensions()[version].assign(names.begin(), names.end());
    return profile;
}

} // namespace

NewProfileActions::NewProfileActions(const ClientTabWidget& clients, QMenu* menu, QAction* before)
    : QObject(menu)
    , m_clients(clients)
    , m_window(menu->parentWidget()->window())
    , m_ofMachine(new QAction(tr("Profile from This &Machine..."), this))
    , m_ofClient(new QAction(tr("Profile from Running &Client..."), this))
{
    m_ofMachine->setObjectName(QStringLiteral("actionProfile_from_Machine"));
    m_ofMachine->setStatusTip(tr("Make a profile of what EGL and OpenGL ES of this machine can do"));
    m_ofClient->setObjectName(QStringLiteral("actionProfile_from_Client"));
    m_ofClient->setStatusTip(tr("Make a profile of what the contexts of the client in front have told"));
    connect(m_ofMachine, &QAction::triggered, this, &NewProfileActions::askMachine);
    connect(m_ofClient, &QAction::triggered, this, &NewProfileActions::askClient);
    connect(menu, &QMenu::aboutToShow, this, &NewProfileActions::updateActions);
    menu->insertActions(before, {m_ofMachine, m_ofClient});
    updateActions();
}

NewProfileActions::~NewProfileActions()
{
    if (m_launcher)
        m_launcher->disconnect(this);
}

void NewProfileActions::askMachine()
{
    if (m_launcher)
        return;
    const QString path = launcher_file::find();
    if (path.isEmpty()) {
        showFailure(tr("This machine cannot be asked"), launcher_file::missingText());
        return;
    }
    m_answer.clear();
    m_launcher = new QProcess(this);
    QProcess* launcher = m_launcher;
    connect(launcher, &QProcess::readyReadStandardOutput, this, [this, launcher] {
        m_answer += launcher->readAllStandardOutput();
        if (m_answer.size() > qsizetype(platform::limits::fileSize))
            launcher->kill();
    });
    connect(launcher, &QProcess::finished, this, [this, launcher] { takeMachine(*launcher); });
    connect(launcher, &QProcess::errorOccurred, this, [this, launcher](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            takeMachine(*launcher);
    });
    launcher->start(path, {QStringLiteral("--make-profile"), QStringLiteral("-")});
    launcher->closeWriteChannel();
    updateActions();
    Q_EMIT statusMessage(tr("This machine is being asked what it can do."));
}

void NewProfileActions::takeMachine(QProcess& launcher)
{
    m_launcher = nullptr;
    launcher.deleteLater();
    updateActions();
    m_answer += launcher.readAllStandardOutput();
    const QString said = QString::fromLocal8Bit(launcher.readAllStandardError()).trimmed();
    const bool isMade = launcher.error() != QProcess::FailedToStart
        && launcher.exitStatus() == QProcess::NormalExit && launcher.exitCode() == 0;
    if (!isMade) {
        showFailure(tr("This machine could not be asked"), said.isEmpty() ? launcher.errorString() : said);
        return;
    }
    try {
        const ProfileData profile = readProfile(m_answer.toStdString());
        Q_EMIT statusMessage(said.isEmpty() ? tr("This is what this machine can do; save it as a profile.")
                                            : said.section(QLatin1Char('\n'), 0, 0));
        Q_EMIT made(profile);
    } catch (const ProfileError& error) {
        showFailure(tr("This machine could not be asked"), QString::fromStdString(error.reason()));
    }
}

void NewProfileActions::askClient()
{
    const ClientInterface* client = currentClient();
    if (!client)
        return;
    ProfileData profile = profileOf(client->findChildren<ContextInterface*>());
    if (profile.extensions().empty()) {
        showFailure(tr("There is nothing to make a profile of"),
            tr("%1 has not told of a context of OpenGL ES yet. Wait until it has one, and try again.")
                .arg(client->title()));
        return;
    }
    profile.setDevice(tr("Device of %1").arg(client->title()).toStdString());
    Q_EMIT statusMessage(tr("Versions and extensions come from the client; it has not told anything else."));
    Q_EMIT made(profile);
}

const ClientInterface* NewProfileActions::currentClient() const
{
    const ClientInterface* page = m_clients.pageAt(m_clients.currentIndex());
    return page && page->state() != ClientInterface::State::Fresh ? page : nullptr;
}

void NewProfileActions::updateActions()
{
    m_ofMachine->setEnabled(!m_launcher);
    m_ofClient->setEnabled(currentClient() != nullptr);
}

void NewProfileActions::showFailure(const QString& text, const QString& details)
{
    auto* box = new PlainMessageBox(QMessageBox::Warning, m_window->windowTitle(), text, details, m_window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}
