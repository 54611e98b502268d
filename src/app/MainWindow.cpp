#include "MainWindow.h"

#include "AboutBox.h"
#include "Client.h"
#include "ClientInterface.h"
#include "Console.h"
#include "ErrorListModel.h"
#include "FileErrors.h"
#include "LocalListener.h"
#include "MonitorStatus.h"
#include "PlistPreferences.h"
#include "PreferenceKeys.h"
#include "Product.h"
#include "ProfileCatalogue.h"
#include "ProfileChooser.h"
#include "SystemReportGUIReceiver.h"
#include "SystemReportViewer.h"
#include "ui_MainWindow.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMessageBox>
#include <QUrl>

namespace {

/// Milliseconds that a passing message stays in the status bar.
constexpr int messageTime = 10000;

QString manualPath()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath()
        + QStringLiteral("/../../Documentation/Corvale User Manual.html"));
}

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

MainWindow::MainWindow(Controller* controller, PlistPreferences& preferences)
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
    m_aboutBox =
        new AboutBox(QStringLiteral(":/CorvaleResources/SplashCorvale"), product::nameAndVersion(), this);
    setUpPages();
    setUpFonts();
    setUpActions();
    setUpServer();
}

MainWindow::~MainWindow()
{
    // Sockets announce their end while they are destroyed; nobody is left here to hear it.
    for (Client* client : findChildren<Client*>(QString(), Qt::FindDirectChildrenOnly))
        delete client;
}

void MainWindow::setUpPages()
{
    auto* viewer = new SystemReportViewer(m_ui->tabSystemReport);
    m_ui->systemReportTabLayout->addWidget(viewer);
    m_reportReceiver = new SystemReportGUIReceiver(this);
    connect(
        m_reportReceiver, SIGNAL(ready(const SystemReport&)), viewer, SLOT(setReport(const SystemReport&)));
    connect(m_ui->cmbFont, SIGNAL(currentFontChanged(const QFont&)), viewer, SLOT(setFont(const QFont&)));

    auto* noEditor =
        new QLabel(tr("This version lets you choose a hardware profile above, but not edit it yet."), this);
    noEditor->setAlignment(Qt::AlignCenter);
    m_ui->profilePropertiesTabLayout->addWidget(noEditor);
    m_profileChooser = new ProfileChooser(m_ui->cmbProfile);
    m_ui->actionNew_Profile->setEnabled(false);
}

void MainWindow::setUpFonts()
{
    const std::string otherwise = fixedFontFamily().toLatin1().toStdString();
    std::string family;
    m_preferences.getString(preferencekeys::prefixed(preferencekeys::guiFont), &family, &otherwise, true);
    m_ui->cmbFont->setCurrentFont(QFont(QString::fromLatin1(family)));
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
    connect(m_ui->cmbProfile, SIGNAL(currentIndexChanged(int)), SLOT(optionChanged()));
    connect(m_clientTabs, SIGNAL(tabCloseRequested(int)), SLOT(closeTab(int)));
    m_ui->actionFeedback->setEnabled(false);
    m_ui->actionPreferences->setEnabled(false);
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

void MainWindow::serverNewConnection()
{
    QLocalSocket* socket = m_server->nextPendingConnection();
    if (socket == nullptr)
        return;
    auto* client = new Client(this, socket);
    connect(client, SIGNAL(setPID(Client*, PID_TYPE)), SLOT(setClientPID(Client*, PID_TYPE)));
    connect(client, SIGNAL(setName(Client*, const QString&)), SLOT(setClientName(Client*, const QString&)));
    ClientInterface* page =
        m_clientTabs->addClient(client, m_ui->cmbFont->currentFont(), m_ui->chkAutoClose->isChecked());
    connect(client, SIGNAL(clientMessage(const ui::messages::Message&)), page,
        SLOT(receive(const ui::messages::Message&)));
    connect(client, SIGNAL(systemReportMessage(const ui::messages::Message&)), m_reportReceiver,
        SLOT(receive(const ui::messages::Message&)));
    connect(client, SIGNAL(cleanDisconnect(Client*)), SLOT(clientCleanDisconnect(Client*)));
    connect(client, SIGNAL(ickyDisconnect(Client*)), SLOT(clientIckyDisconnect(Client*)));
    connect(m_ui->cmbFont, SIGNAL(currentFontChanged(const QFont&)), page, SLOT(fontChanged(const QFont&)));
    connect(&page->console(), &Console::notice, this,
        [this](const QString& text) { statusBar()->showMessage(text, messageTime); });
    countProblems(*page);
    page->setLive();
    m_clients.insert(client);
    showClientCount();
}

void MainWindow::countProblems(const ClientInterface& page)
{
    const ErrorListModel& model = page.errorListModel();
    connect(&model, &QAbstractItemModel::rowsInserted, m_status,
        [this, &model](const QModelIndex&, int first, int last) {
            for (int row = first; row <= last; ++row) {
                if (model.severity(row) == errorList::SeverityWarning)
                    m_status->addWarnings(1);
                else
                    m_status->addErrors(1);
            }
        });
}

void MainWindow::showClientCount()
{
    m_status->setClientCount(m_clients.size());
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
    clientDisconnected(client, QStringLiteral("Client disconnected"));
}

void MainWindow::clientIckyDisconnect(Client* client)
{
    clientDisconnected(client, QStringLiteral("Lost connection to client"));
}

void MainWindow::clientDisconnected(Client* client, const QString& text)
{
    m_clientTabs->finish(client, text);
    client->notifyServerStop();
    m_clients.erase(client);
    showClientCount();
}

void MainWindow::closeTab(const int index)
{
    m_clientTabs->closeTabAt(index);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
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
    m_preferences.setString(
        preferencekeys::prefixed(preferencekeys::guiFont), font.family().toLatin1().toStdString());
    reportSave(m_preferences.save(false));
}

void MainWindow::reportSave(bool saved)
{
    if (!saved) {
        statusBar()->showMessage(tr("The preferences could not be saved: %1")
                                     .arg(QString::fromStdString(m_preferences.saveError())),
            messageTime);
        return;
    }
    const QString copy = QString::fromStdString(platform::readablePath(m_preferences.corruptCopy()));
    if (copy != m_toldCorruptCopy)
        statusBar()->showMessage(
            tr("The preferences file could not be read, so it was replaced. A copy of it is kept as \"%1\".")
                .arg(copy),
            3 * messageTime);
    m_toldCorruptCopy = copy;
}

void MainWindow::fatalError(Error error)
{
    Q_UNUSED(error)
    QMessageBox box(this);
    box.setIcon(QMessageBox::Critical);
    box.setWindowTitle(QStringLiteral("Fatal error"));
    box.setText(QStringLiteral("Failed to create a socket. Cannot listen for incoming connections."));
    box.exec();
    close();
}

void MainWindow::onAbout()
{
    m_aboutBox->open();
}

void MainWindow::onHelp()
{
    const QString path = manualPath();
    if (!QFileInfo::exists(path) || !QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        statusBar()->showMessage(tr("The manual could not be opened: \"%1\"").arg(path), messageTime);
}

void MainWindow::onFeedback()
{
}

void MainWindow::onPreferences()
{
}

void MainWindow::optionChanged()
{
    if (m_catalogue != nullptr)
        reportSave(m_catalogue->rememberCurrent(m_profileChooser->chosenKey()));
}

void MainWindow::setCatalogue(ProfileCatalogue& catalogue)
{
    m_catalogue = &catalogue;
    m_profileChooser->show(catalogue);
    m_status->setSkippedProfiles(catalogue.brokenFiles());
}

void MainWindow::newProfile()
{
}
