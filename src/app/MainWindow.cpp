#include "MainWindow.h"

#include "AboutBox.h"
#include "Client.h"
#include "ClientInterface.h"
#include "Console.h"
#include "ConsoleFontSize.h"
#include "ConsoleSaver.h"
#include "ConsoleViewActions.h"
#include "CurrentProfile.h"
#include "DesktopNotifier.h"
#include "DocumentationOpener.h"
#include "ErrorListModel.h"
#include "FeedbackDialog.h"
#include "FindBar.h"
#include "FocusedWheel.h"
#include "HostNotice.h"
#include "KeptFilters.h"
#include "LocalListener.h"
#include "MonitorStatus.h"
#include "MutedErrors.h"
#include "NewProfileActions.h"
#include "Preferences.h"
#include "PreferencesReporter.h"
#include "Product.h"
#include "ProfileCatalogue.h"
#include "ProfileChooser.h"
#include "RecentProfilesMenu.h"
#include "RunProgramActions.h"
#include "SessionActions.h"
#include "SessionPages.h"
#include "SystemFacts.h"
#include "SystemReportGUIReceiver.h"
#include "SystemReportPage.h"
#include "SystemReportViewer.h"
#include "TSRStats.h"
#include "TableExport.h"
#include "ThemeMenu.h"
#include "WindowController.h"
#include "WindowState.h"
#include "ui_MainWindow.h"
#include "widgets/Profile.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMessageBox>
#include <QShortcut>

namespace {

/// Milliseconds that a passing message stays in the status bar.
constexpr int messageTime = 10000;

/// A family of the font list, which knows no aliases such as "monospace".
QString fixedFontFamily()
{
    const QFontInfo system(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    if (system.fixedPitch())
        return system.family();
    QFont font(QStringLiteral("monospace"));
    font.setStyleHint(QFont::Monospace);
    return QFontInfo(font).family();
}

} // namespace

MainWindow::MainWindow(WindowController* controller, Preferences& preferences)
    : m_ui(std::make_unique<Ui::MainWindow>())
    , m_controller(controller)
    , m_preferences(preferences)
{
    registerClientMetaTypes();
    qRegisterMetaType<Error>("Error");
    m_ui->setupUi(this);
    setWindowIcon(QIcon(QStringLiteral(":/CorvaleResources/Corvale")));
    m_clientTabs = m_ui->clienttabs;
    m_ui->mainTabWidget->setFocus();
    m_status = new MonitorStatus(m_ui->statusbar);
    m_preferencesReporter = std::make_unique<PreferencesReporter>(m_preferences, *m_status);
    setUpErrorLists();
    setUpHelp();
    setUpPages();
    setUpProfiles();
    setUpFonts();
    setUpActions();
    setUpMenus();
    setUpServer();
}

MainWindow::~MainWindow()
{
    // They follow the pages, which are destroyed one by one.
    delete m_sessionActions;
    delete m_sessionPages;
    // Sockets announce their end while they are destroyed; nobody is left here to hear it.
    for (Client* client : findChildren<Client*>(QString(), Qt::FindDirectChildrenOnly))
        delete client;
    m_stats->finish();
}

void MainWindow::setUpHelp()
{
    m_stats = std::make_shared<TSRStats>(
        product::name().toStdString(), product::version().toStdString(), m_preferences);
    m_stats->initialise();
    m_aboutBox = new AboutBox(
        QStringLiteral(":/CorvaleResources/SplashCorvale"), product::nameAndVersion(), m_preferences, this);
}

void MainWindow::setUpErrorLists()
{
    m_keptFilters = std::make_unique<KeptFilters>(m_preferences);
    // Beside the preferences; without them it is kept nowhere.
    std::filesystem::path file = m_preferences.path();
    if (!file.empty())
        file.replace_filename("Corvale muted kinds.txt");
    m_mutedErrors = new MutedErrors(file, this);
    connect(m_mutedErrors, &MutedErrors::failed, this,
        [this](const QString& reason) { statusBar()->showMessage(reason, messageTime); });
    if (!m_mutedErrors->problem().isEmpty())
        statusBar()->showMessage(
            tr("The muted kinds cannot be read: %1").arg(m_mutedErrors->problem()), messageTime);
}

void MainWindow::setUpPages()
{
    m_reportReceiver = new SystemReportGUIReceiver(this);
    auto* reportPage = new SystemReportPage(m_reportReceiver, m_ui->tabSystemReport);
    m_ui->systemReportTabLayout->addWidget(reportPage);
    m_reportViewer = &reportPage->viewer();
    connect(reportPage, &SystemReportPage::statusMessage, this,
        [this](const QString& text) { statusBar()->showMessage(text, messageTime); });
    connect(
        m_ui->cmbFont, SIGNAL(currentFontChanged(const QFont&)), m_reportViewer, SLOT(setFont(const QFont&)));
}

void MainWindow::setUpProfiles()
{
    m_currentProfile = new models::CurrentProfile(m_controller, this);
    m_profileChooser = new ProfileChooser(*m_currentProfile, m_ui->cmbProfile);
    m_profilePanel = new widgets::Profile(*m_currentProfile, m_ui->tabProfileProperties);
    m_profilePanel->clear();
    auto* host = new HostNotice(*m_currentProfile, *m_ui->cmbProfile, m_ui->tabProfileProperties);
    connect(host, &HostNotice::newProfileWanted, m_ui->actionNew_Profile, &QAction::trigger);
    m_ui->profilePropertiesTabLayout->addWidget(host);
    m_ui->profilePropertiesTabLayout->addWidget(m_profilePanel);
    m_ui->actionNew_Profile->setEnabled(m_controller != nullptr);
    connect(m_currentProfile, &models::CurrentProfile::listChanged, this,
        [this] { m_status->setSkippedProfiles(m_currentProfile->catalogue()->brokenFiles()); });
    connect(m_currentProfile, &models::CurrentProfile::fileSaved, this, [this](const QString& path) {
        addRecentProfile(path);
        statusBar()->showMessage(tr("The profile is saved in \"%1\".").arg(path), messageTime);
    });
    connect(m_currentProfile, &models::CurrentProfile::editedChanged, this, &MainWindow::markEdits);
    connect(m_currentProfile, &models::CurrentProfile::shownLost, this, [this] {
        statusBar()->showMessage(
            tr("The profile that you are changing is not in the list any more. \"Save\" keeps your "
               "changes as a new one."),
            messageTime);
    });
}

void MainWindow::setUpFonts()
{
    const QString family = QString::fromLatin1(m_preferences.get(settings::guiFont));
    const bool isThere = !family.isEmpty() && m_ui->cmbFont->findText(family, Qt::MatchFixedString) >= 0;
    // With any size that is not to be used: the box would take an equal one, which is not set, for the same.
    m_ui->cmbFont->setCurrentFont(QFont(isThere ? family : fixedFontFamily(), 1));
    m_consoleFontSize = new ConsoleFontSize(m_preferences, m_ui->cmbFont);
    m_reportViewer->setFont(m_ui->cmbFont->currentFont());
    // Connected last: what has just been read need not be stored.
    connect(m_ui->cmbFont, SIGNAL(currentFontChanged(const QFont&)), SLOT(fontChanged(const QFont&)));
}

void MainWindow::setUpActions()
{
    connect(m_ui->actionAbout, SIGNAL(triggered()), SLOT(onAbout()));
    connect(m_ui->actionFeedback, SIGNAL(triggered()), SLOT(onFeedback()));
    connect(m_ui->actionUsage, SIGNAL(triggered()), SLOT(onHelp()));
    connect(m_ui->actionPreferences, SIGNAL(triggered()), SLOT(onPreferences()));
    connect(m_ui->actionExit, SIGNAL(triggered()), SLOT(close()));
    connect(m_ui->actionNew_Profile, SIGNAL(triggered()), SLOT(newProfile()));
    connectFind();
    new FocusedWheel(m_ui->cmbProfile);
    new FocusedWheel(m_ui->cmbFont);
    connect(m_ui->cmbProfile, SIGNAL(currentIndexChanged(int)), SLOT(optionChanged()));
    connect(m_clientTabs, SIGNAL(tabCloseRequested(int)), SLOT(closeTab(int)));
}

void MainWindow::connectFind()
{
    const auto go = [this](Findable::Direction direction) {
        if (FindBar* bar = FindBar::inFront(this))
            bar->go(direction);
    };
    connect(m_ui->actionFind, &QAction::triggered, this, [this] {
        if (FindBar* bar = FindBar::inFront(this))
            bar->open();
    });
    connect(m_ui->actionFindNext, &QAction::triggered, this, [go] { go(Findable::Direction::Forward); });
    connect(m_ui->actionFindPrevious, &QAction::triggered, this, [go] { go(Findable::Direction::Backward); });
}

void MainWindow::setUpMenus()
{
    auto* run = new RunProgramActions(
        m_preferences, *m_currentProfile, m_ui->menuFile, m_ui->actionExit, m_ui->tabPrograms);
    connect(run, &RunProgramActions::statusMessage, this,
        [this](const QString& text) { statusBar()->showMessage(text, messageTime); });
    connect(run, &RunProgramActions::pageWanted, this,
        [this] { m_ui->mainTabWidget->setCurrentWidget(m_ui->tabPrograms); });

    // Behind "New Profile".
    auto* sources = new NewProfileActions(*m_clientTabs, m_ui->menuFile, m_ui->menuFile->actions().at(1));
    connect(sources, &NewProfileActions::statusMessage, this,
        [this](const QString& text) { statusBar()->showMessage(text, messageTime); });
    connect(sources, &NewProfileActions::made, this, [this](const ProfileData& profile) {
        m_ui->mainTabWidget->setCurrentWidget(m_ui->tabProfileProperties);
        m_profilePanel->showNew(profile);
    });

    setUpSessions();

    m_recentProfiles = new RecentProfilesMenu(m_preferences, *m_currentProfile, this);
    m_ui->menuFile->insertMenu(m_ui->actionExit, m_recentProfiles);
    m_ui->menuFile->insertSeparator(m_ui->actionExit);
    connect(m_recentProfiles, &RecentProfilesMenu::profileChosen, this,
        [this] { m_ui->mainTabWidget->setCurrentWidget(m_ui->tabProfileProperties); });

    auto* view = new ThemeMenu(m_preferences, tr("&View"), this);
    view->setObjectName(QStringLiteral("menuView"));
    m_consoleView = new ConsoleViewActions(m_preferences, view);
    m_notifier = new DesktopNotifier(m_preferences, *this);
    view->addMenu(m_notifier);
    m_ui->menubar->insertMenu(m_ui->menuHelp->menuAction(), view);

    // The titles of these menus name no key.
    for (QMenu* menu : {m_ui->menuEdit, m_ui->menuHelp}) {
        auto* key = new QShortcut(QKeySequence(QStringLiteral("Alt+") + menu->title().at(0)), this);
        connect(key, &QShortcut::activated, this,
            [this, menu] { m_ui->menubar->setActiveAction(menu->menuAction()); });
    }
}

void MainWindow::setUpSessions()
{
    m_sessionPages = new SessionPages(*m_clientTabs, m_ui->tabPrograms,
        [this](Client* client, const QString& session) { return addSessionPage(client, session); });
    m_sessionActions =
        new SessionActions(m_preferences, m_ui->menuFile, m_ui->actionExit, *m_clientTabs, *m_sessionPages);
    connect(m_sessionActions, &SessionActions::statusMessage, this,
        [this](const QString& text) { statusBar()->showMessage(text, messageTime); });
    connect(m_sessionActions, &SessionActions::pageWanted, this,
        [this] { m_ui->mainTabWidget->setCurrentWidget(m_ui->tabPrograms); });
    connect(m_sessionActions, &SessionActions::saved, this, &MainWindow::consoleSaved, Qt::QueuedConnection);
}

void MainWindow::setUpServer()
{
    m_server = new QLocalServer(this);
    connect(m_server, SIGNAL(newConnection()), SLOT(serverNewConnection()));
    m_listener = new LocalListener(m_server, QStringLiteral("Corvale"), this);
    connect(m_listener, &LocalListener::stateChanged, this,
        [this] { m_status->setListening(m_listener->path(), m_listener->problem()); });
    m_listener->start();
}

void MainWindow::restorePlace()
{
    m_windowState = new WindowState(*this, m_preferences);
}

void MainWindow::setInstanceProblem(const QString& problem)
{
    m_status->setInstanceProblem(problem);
}

void MainWindow::serverNewConnection()
{
    QLocalSocket* socket = m_server->nextPendingConnection();
    if (!socket)
        return;
    m_aboutBox->endStart();
    auto* client = new Client(this, socket);
    ClientInterface* page =
        m_clientTabs->addClient(client, m_ui->cmbFont->currentFont(), m_ui->chkAutoClose->isChecked());
    followClient(client, page);
    connect(client, SIGNAL(systemReportMessage(const ui::messages::Message&)), m_reportReceiver,
        SLOT(receive(const ui::messages::Message&)));
    m_sessionPages->record(*client, *page);
    countProblems(*page);
    m_clients.insert(client);
    showClientCount();
}

ClientInterface* MainWindow::addSessionPage(Client* client, const QString& session)
{
    m_aboutBox->endStart();
    ClientInterface* page = m_clientTabs->addSession(client, m_ui->cmbFont->currentFont(), session);
    followClient(client, page);
    connect(client, &Client::systemReportMessage, m_reportReceiver,
        [this, client](const ui::messages::Message& message) {
            m_reportReceiver->receiveRecorded(client->parent(), message);
        });
    return page;
}

/// Has a page show what its client sends, and follow the window.
void MainWindow::followClient(Client* client, ClientInterface* page)
{
    connect(client, SIGNAL(setPID(Client*, PID_TYPE)), SLOT(setClientPID(Client*, PID_TYPE)));
    connect(client, SIGNAL(setName(Client*, const QString&)), SLOT(setClientName(Client*, const QString&)));
    connect(client, SIGNAL(clientMessage(const ui::messages::Message&)), page,
        SLOT(receive(const ui::messages::Message&)));
    connect(client, SIGNAL(cleanDisconnect(Client*)), SLOT(clientCleanDisconnect(Client*)));
    connect(client, SIGNAL(ickyDisconnect(Client*)), SLOT(clientIckyDisconnect(Client*)));
    connect(m_ui->cmbFont, SIGNAL(currentFontChanged(const QFont&)), page, SLOT(fontChanged(const QFont&)));
    connect(&page->console(), &Console::statusMessage, this,
        [this](const QString& text) { statusBar()->showMessage(text, messageTime); });
    connect(&page->console(), &Console::zoomWanted, m_consoleFontSize, &ConsoleFontSize::change);
    // Its page is done with the save as well before the window closes.
    connect(&page->saver(), &ConsoleSaver::ended, this, &MainWindow::consoleSaved, Qt::QueuedConnection);
    connect(&page->rowExport(), &TableExport::ended, this, &MainWindow::consoleSaved, Qt::QueuedConnection);
    if (m_windowState)
        m_windowState->follow(*page);
    m_consoleView->follow(*page);
    page->setKeptFilters(m_keptFilters.get());
    page->setMutedErrors(m_mutedErrors);
    page->setLive();
}

void MainWindow::openSession(const QString& path)
{
    m_sessionPages->open(path);
}

void MainWindow::countProblems(ClientInterface& page)
{
    const ErrorListModel& model = page.errorListModel();
    connect(&model, &QAbstractItemModel::rowsInserted, m_status,
        [this, &model](const QModelIndex&, int first, int last) {
            for (int row = first; row <= last; ++row) {
                if (model.severity(row) == error_list::SeverityWarning)
                    m_status->addWarnings(1);
                else
                    m_status->addErrors(1);
            }
        });
    // Its first error is told of only once.
    auto* once = new QObject(&page);
    connect(&model, &QAbstractItemModel::rowsInserted, once,
        [this, &page, &model, once](const QModelIndex&, int first, int last) {
            for (int row = first; row <= last; ++row) {
                if (model.severity(row) == error_list::SeverityError) {
                    once->deleteLater();
                    disconnect(&model, nullptr, once, nullptr);
                    m_notifier->notify(DesktopNotifier::Event::FirstError, page.title());
                    return;
                }
            }
        });
}

void MainWindow::showClientCount()
{
    m_status->setClientCount(m_clients.size());
    m_clientTabs->setConnectedCount(m_clients.size());
}

void MainWindow::setClientPID(Client* client, PID_TYPE pid)
{
    m_clientTabs->setPid(client, pid);
}

void MainWindow::setClientName(Client* client, const QString& name)
{
    m_clientTabs->setName(client, name);
}

void MainWindow::clientCleanDisconnect(Client* client)
{
    clientDisconnected(client, tr("Client disconnected"), true);
}

void MainWindow::clientIckyDisconnect(Client* client)
{
    clientDisconnected(client, tr("Lost connection to client"), false);
}

void MainWindow::clientDisconnected(Client* client, const QString& text, bool isClean)
{
    // What is played from a session happened long ago.
    const ClientInterface* page = m_clientTabs->pageOf(client);
    if (page && page->session().isEmpty())
        m_notifier->notify(
            isClean ? DesktopNotifier::Event::End : DesktopNotifier::Event::Crash, page->title());
    const QString note = client->endNote();
    m_clientTabs->finish(client, note.isEmpty() ? text : tr("%1: %2").arg(text, note),
        isClean ? ClientTabWidget::Connection::Ended : ClientTabWidget::Connection::Lost);
    client->notifyServerStop();
    m_clients.erase(client);
    showClientCount();
}

void MainWindow::closeTab(const int index)
{
    m_clientTabs->closeTabAt(index);
}

bool MainWindow::end()
{
    m_asksBeforeClosing = false;
    close();
    return !m_closesOnceSaved;
}

void MainWindow::consoleSaved(bool saved)
{
    if (!m_closesOnceSaved)
        return;
    // The window stays to tell what has failed, and where the user has gone on to a dialog.
    const bool mayClose = saved && !QApplication::activeModalWidget();
    m_closesOnceSaved = mayClose || !m_asksBeforeClosing;
    if (m_closesOnceSaved && !m_clientTabs->isSaving() && !m_sessionActions->isSaving())
        close();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    m_closesOnceSaved = m_clientTabs->isSaving() || m_sessionActions->isSaving();
    if (m_closesOnceSaved) {
        statusBar()->showMessage(tr("The window closes as soon as everything is saved."));
        event->ignore();
        return;
    }
    if (m_asksBeforeClosing && !m_profilePanel->mayLeave()) {
        event->ignore();
        return;
    }
    if (m_windowState)
        m_windowState->save();
    // Telling a client may find that it is gone, which takes it out of the set.
    const std::set<Client*> clients = m_clients;
    for (Client* client : clients) {
        if (m_clients.contains(client))
            client->notifyServerStop();
    }
    // The event loop may end before the sockets find the time to send.
    for (QLocalSocket* socket : m_server->findChildren<QLocalSocket*>())
        socket->flush();
    QMainWindow::closeEvent(event);
}

void MainWindow::fontChanged(const QFont& font)
{
    // The list can be emptied by hand, which names no font.
    if (font.family().trimmed().isEmpty())
        return;
    m_preferences.set(settings::guiFont, font.family().toLatin1().toStdString());
}

void MainWindow::fatalError(Error error)
{
    Q_UNUSED(error)
    QMessageBox box(this);
    box.setIcon(QMessageBox::Critical);
    box.setWindowTitle(tr("Fatal error"));
    box.setText(tr("Failed to create a socket. Cannot listen for incoming connections."));
    box.exec();
    close();
}

void MainWindow::showSplash()
{
    m_aboutBox->keepClearOf(m_clientTabs->findChild<QLabel*>(QStringLiteral("lblNoContexts")));
    m_aboutBox->showAtStart();
}

void MainWindow::onAbout()
{
    m_aboutBox->showForced();
}

void MainWindow::onHelp()
{
    DocumentationOpener opener(m_preferences, QCoreApplication::applicationDirPath());
    const QString problem = opener.open(QStringLiteral("Corvale User Manual.html"), this);
    if (!problem.isEmpty())
        statusBar()->showMessage(problem, messageTime);
}

void MainWindow::onFeedback()
{
    const QString report = m_reportViewer->text();
    auto* dialog = new FeedbackDialog(this, product::nameAndVersion(),
        systemFacts(m_ui->cmbProfile->currentText()) + QLatin1Char('\n')
            + (report.isEmpty() ? tr("There is no system report.") : report),
        m_preferences);
    dialog->setTextFont(m_ui->cmbFont->currentFont());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void MainWindow::onPreferences()
{
    if (m_controller)
        m_controller->editPreferences();
}

void MainWindow::preferencesEdited(const QStringList& savedFiles)
{
    reloadProfiles();
    for (const QString& file : savedFiles)
        addRecentProfile(file);
    if (!savedFiles.isEmpty())
        statusBar()->showMessage(
            tr("The imported profile is saved in \"%1\".").arg(savedFiles.last()), messageTime);
}

/// The title has a place for the mark of unsaved changes only while there are some.
void MainWindow::markEdits(bool edited)
{
    const QString title = QStringLiteral("Corvale GUI");
    if (edited)
        setWindowTitle(title + QStringLiteral("[*]"));
    setWindowModified(edited);
    if (!edited)
        setWindowTitle(title);
}

void MainWindow::optionChanged()
{
    m_profileChooser->pick();
}

void MainWindow::setCatalogue(ProfileCatalogue& catalogue)
{
    m_currentProfile->setCatalogue(catalogue);
}

void MainWindow::reloadProfiles()
{
    m_currentProfile->reload();
}

void MainWindow::addRecentProfile(const QString& path)
{
    m_recentProfiles->addFile(path);
}

void MainWindow::newProfile()
{
    m_ui->mainTabWidget->setCurrentWidget(m_ui->tabProfileProperties);
    m_profilePanel->newProfile();
}
