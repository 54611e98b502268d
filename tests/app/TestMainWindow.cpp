#include "AboutBox.h"
#include "Client.h"
#include "ClientInterface.h"
#include "ClientTabWidget.h"
#include "ConsoleSaver.h"
#include "DialogAnswers.h"
#include "ErrorListModel.h"
#include "FeedbackDialog.h"
#include "MainWindow.h"
#include "MetaObjects.h"
#include "PlistPreferences.h"
#include "PreferenceKeys.h"
#include "ProfileCatalogue.h"
#include "ProfileChooser.h"
#include "ProfileMetaTypes.h"
#include "RawClient.h"
#include "RecentFilesMenu.h"
#include "Resources.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontComboBox>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

#include <thread>

using namespace records;

namespace {

/// A window and the applications that are connected to it, through its real socket.
class Session {
public:
    Session()
        : preferences("Corvale", TSRPreferencesImpl::perUser)
        , window(nullptr, loaded(preferences))
    {
        window.resize(900, 600);
    }
    static PlistPreferences& loaded(PlistPreferences& store)
    {
        std::string error;
        store.load(error, true);
        return store;
    }

    /// Connects one more application and waits for its tab.
    RawClient& connectApplication()
    {
        const int before = clientCount();
        applications.push_back(std::make_unique<RawClient>(QStringLiteral("Corvale")));
        [this, before] {
            QTRY_COMPARE(clientCount(), before + 1);
        }();
        return *applications.back();
    }
    int clientCount() const { return static_cast<int>(window.findChildren<Client*>().size()); }
    ClientTabWidget& tabs() const
    {
        return *window.findChild<ClientTabWidget*>(QStringLiteral("clienttabs"));
    }
    QStringList titles() const
    {
        QStringList titles;
        for (int i = 0; i < tabs().count(); ++i)
            titles.append(tabs().tabText(i));
        return titles;
    }
    QString console(int index) const
    {
        return tabs().widget(index)->findChild<QTextEdit*>(QStringLiteral("txtConsole"))->toPlainText();
    }
    QString status(const char* label) const
    {
        return window.findChild<QLabel*>(QString::fromLatin1(label))->text();
    }
    QCheckBox& autoClose() const { return *window.findChild<QCheckBox*>(QStringLiteral("chkAutoClose")); }
    QWidget* closeButton(int index) const
    {
        for (const auto side : {QTabBar::LeftSide, QTabBar::RightSide}) {
            if (QWidget* button = tabs().tabBar()->tabButton(index, side))
                return button;
        }
        return nullptr;
    }

    PlistPreferences preferences;
    MainWindow window;
    std::vector<std::unique_ptr<RawClient>> applications;
};

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerResources(); }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin)")));
        QDir(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brindlewood")).removeRecursively();
    }

    void form();
    void titlesAndStates();
    void titleGoesToTheRecordedIndex();
    void autoCloseRemovesFinishedTabs();
    void placeholder();
    void closedTabLeavesItsClientAlone();
    void closingTheWindowTellsEveryClient();
    void destructionDuringAFlood();
    void savingTabIsCompleted();
    void statusCounts();
    void systemReport();
    void consoleFont();
    void unreadablePreferencesAreKept_data();
    void unreadablePreferencesAreKept();
    void profileChooser();
    void reloadDisturbsNobody();
    void recentProfiles();
    void fatalErrorClosesTheWindow();
};

void TestMainWindow::form()
{
    QCOMPARE(ownMethods(MainWindow::staticMetaObject),
        QStringList({"onAbout()", "onFeedback()", "onHelp()", "onPreferences()", "optionChanged()",
            "clientCleanDisconnect(Client*)", "clientIckyDisconnect(Client*)",
            "setClientPID(Client*,PID_TYPE)", "setClientName(Client*,QString)", "closeTab(int)",
            "fontChanged(QFont)", "fatalError(Error)", "serverNewConnection()", "newProfile()"}));
    const Session session;
    const auto text = [&session](const char* action) {
        return session.window.findChild<QAction*>(QString::fromLatin1(action))->text();
    };
    QCOMPARE(text("actionExit"), QStringLiteral("&Exit"));
    QCOMPARE(text("actionUsage"), QStringLiteral("&Corvale Help"));
    QCOMPARE(text("actionAbout"), QStringLiteral("&About Corvale"));
    QCOMPARE(text("actionPreferences"), QStringLiteral("&Preferences..."));
    QCOMPARE(text("actionFeedback"), QStringLiteral("&Feedback..."));
    QCOMPARE(text("actionNew_Profile"), QStringLiteral("&New Profile"));
    QStringList menus;
    for (const char* name : {"menuFile", "menuEdit", "menuHelp"})
        menus.append(session.window.findChild<QMenu*>(QString::fromLatin1(name))->title());
    QCOMPARE(menus, QStringList({"Fi&le", "Edit", "Help"}));
    const auto& pages = *session.window.findChild<QTabWidget*>(QStringLiteral("mainTabWidget"));
    QCOMPARE(pages.widget(0)->objectName(), QStringLiteral("tabProfileProperties"));
    QCOMPARE(pages.tabText(0), QStringLiteral("Profile Properties"));
    QCOMPARE(pages.tabText(1), QStringLiteral("Programs"));
    QCOMPARE(pages.tabText(2), QStringLiteral("System Report"));
    QCOMPARE(session.window.windowTitle(), QStringLiteral("Corvale GUI"));
    QVERIFY(!session.window.windowIcon().isNull());
}

void TestMainWindow::titlesAndStates()
{
    Session session;
    RawClient& application = session.connectApplication();
    QCOMPARE(session.titles(), QStringList("<unknown>"));
    application.send(pid(42));
    QTRY_COMPARE(session.titles(), QStringList("PID: 42"));
    application.send(text(Type::SetName, "raven \"&\" run"));
    QTRY_COMPARE(session.titles(), QStringList("\"raven \"&&\" run\" PID: 42"));
    const QString toolTip = session.tabs().tabToolTip(0);
    QVERIFY2(Qt::mightBeRichText(toolTip), "else it would show as markup");
    QVERIFY2(toolTip.contains(QStringLiteral("&quot;raven &quot;&amp;&quot; run&quot; PID: 42")),
        qPrintable(toolTip));
    QCOMPARE(session.tabs().pageAt(0)->state(), ClientInterface::State::Live);

    application.send(bytes(text(Type::Error, "the last")) + bytes(make(Type::CleanDisconnect)));
    QTRY_COMPARE(session.tabs().pageAt(0)->state(), ClientInterface::State::Finished);
    QCOMPARE(session.console(0), QStringLiteral("\n\nError\nthe last\n\nClient disconnected"));
    QTRY_COMPARE(application.receivedTypes(), QList<quint32>({11}));

    RawClient& crashing = session.connectApplication();
    crashing.send(bytes(text(Type::Information, "about to crash")) + "piece of a record");
    crashing.close();
    QTRY_COMPARE(session.tabs().pageAt(1)->state(), ClientInterface::State::Finished);
    QCOMPARE(session.console(1), QStringLiteral("about to crash\nLost connection to client"));
}

void TestMainWindow::titleGoesToTheRecordedIndex()
{
    Session session;
    session.connectApplication();
    session.connectApplication();
    session.connectApplication();
    session.window.closeTab(0);
    session.applications[1]->send(pid(1)); // recorded index 1, now at 0
    QTRY_COMPARE(session.titles(), QStringList({"<unknown>", "PID: 1"}));
    QVERIFY(session.tabs().tabToolTip(0).contains(QStringLiteral("PID: 1")));
    session.applications[2]->send(pid(2)); // recorded index 2, which no tab has
    QTRY_VERIFY(session.tabs().tabToolTip(1).contains(QStringLiteral("PID: 2")));
    QCOMPARE(session.titles(), QStringList({"<unknown>", "PID: 1"}));
}

void TestMainWindow::autoCloseRemovesFinishedTabs()
{
    Session session;
    for (int i = 0; i < 4; ++i)
        session.connectApplication().send(pid(static_cast<std::uint32_t>(i)));
    QTRY_COMPARE(session.titles(), QStringList({"PID: 0", "PID: 1", "PID: 2", "PID: 3"}));
    for (const std::size_t ended : {0U, 1U, 3U})
        session.applications[ended]->close();
    QTRY_COMPARE(session.status("lblClients"), QStringLiteral("1 client connected"));
    session.connectApplication();
    QCOMPARE(session.tabs().count(), 5);
    session.autoClose().click();
    session.connectApplication();
    QCOMPARE(session.titles(), QStringList({"PID: 2", "<unknown>", "<unknown>"}));
    QCOMPARE(session.tabs().currentIndex(), 2);
}

void TestMainWindow::placeholder()
{
    Session session;
    session.window.show();
    QCOMPARE(session.titles(), QStringList("Disconnected"));
    QVERIFY(!session.tabs().widget(0)->isEnabled());
    QVERIFY(session.closeButton(0) == nullptr || session.closeButton(0)->size().isEmpty());
    const auto middleClick = [&session] {
        QTest::mouseClick(session.tabs().tabBar(), Qt::MiddleButton, Qt::NoModifier,
            session.tabs().tabBar()->tabRect(0).center());
    };
    middleClick();
    QCOMPARE(session.titles(), QStringList("Disconnected"));

    session.connectApplication();
    QCOMPARE(session.titles(), QStringList("<unknown>"));
    const QPointer<QWidget> page = session.tabs().widget(0);
    middleClick();
    QVERIFY(!page);
    QCOMPARE(session.titles(), QStringList("Disconnected"));
    session.connectApplication();
    QTest::mouseClick(session.closeButton(0), Qt::LeftButton);
    QCOMPARE(session.titles(), QStringList("Disconnected"));
    QTest::mouseClick(session.tabs().tabBar(), Qt::MiddleButton, Qt::NoModifier, QPoint(5000, 2));
    session.window.closeTab(7);
    QCOMPARE(session.titles(), QStringList("Disconnected"));
}

void TestMainWindow::closedTabLeavesItsClientAlone()
{
    Session session;
    RawClient& application = session.connectApplication();
    session.window.closeTab(0);
    application.send(
        bytes(pid(7)) + bytes(text(Type::SetName, "gone")) + bytes(text(Type::Error, "nowhere")));
    QTest::qWait(50);
    QCOMPARE(session.titles(), QStringList("Disconnected"));
    QCOMPARE(session.status("lblClients"), QStringLiteral("1 client connected"));
    QCOMPARE(application.receivedTypes(), QList<quint32>());
    application.close();
    QTRY_COMPARE(session.status("lblClients"), QStringLiteral("0 clients connected"));
}

void TestMainWindow::closingTheWindowTellsEveryClient()
{
    auto session = std::make_unique<Session>();
    session->connectApplication();
    session->connectApplication();
    session->window.closeTab(1);
    session->connectApplication().close(); // gone, but the window may not know yet
    const auto applications = std::move(session->applications);
    session->window.close();
    session.reset();
    QCOMPARE(applications[0]->receivedTypes(), QList<quint32>({11}));
    QCOMPARE(applications[1]->receivedTypes(), QList<quint32>({11}));
}

void TestMainWindow::destructionDuringAFlood()
{
    auto session = std::make_unique<Session>();
    RawClient& one = session->connectApplication();
    RawClient& other = session->connectApplication();
    std::thread flood([&one, &other] {
        const std::string record = bytes(glError(1280, "glEnable", "again"));
        while (one.send(record) && other.send(record)) { }
    });
    const QPointer<ClientInterface> page = session->tabs().pageAt(0);
    QTRY_VERIFY(page->errorListModel().rowCount() > 100);
    QTest::mousePress(page->findChild<QTextEdit*>(QStringLiteral("txtConsole"))->viewport(), Qt::LeftButton);
    page->receive(text(Type::Error, "in this very turn"));
    session->window.closeTab(0);
    QVERIFY(!page);
    QTest::qWait(50);
    QCOMPARE(session->status("lblClients"), QStringLiteral("2 clients connected"));
    const auto applications = std::move(session->applications);
    session.reset();
    flood.join();
}

void TestMainWindow::savingTabIsCompleted()
{
    Session session;
    RawClient& application = session.connectApplication();
    const QPointer<ClientInterface> page = session.tabs().pageAt(0);
    constexpr int count = 50'000;
    for (int i = 0; i < count; ++i)
        page->receive(text(Type::Information, "line"));
    const QString path = QDir::tempPath() + QStringLiteral("/console.txt");
    page->findChild<ConsoleSaver*>()->save(path);
    session.tabs().finish(page->client(), QStringLiteral("end"));
    session.tabs().addClient(nullptr, QFont(), true);
    QCOMPARE(session.tabs().count(), 2);
    session.window.closeTab(0);
    QVERIFY(page && page->isSaving());
    QSignalSpy rows(&page->errorListModel(), &QAbstractItemModel::rowsInserted);
    application.send(text(Type::Error, "shown nowhere"));
    QTRY_VERIFY(!page);
    QCOMPARE(QFileInfo(path).size(), count * qint64(sizeof "line"));
    QVERIFY(session.window.statusBar()->currentMessage().contains(QStringLiteral("was saved to")));
    QCOMPARE(rows.count(), 0);
}

void TestMainWindow::statusCounts()
{
    Session session;
    QCOMPARE(session.status("lblListening"), QStringLiteral("Listening for applications"));
    QCOMPARE(session.status("lblClients"), QStringLiteral("0 clients connected"));
    session.connectApplication().send(bytes(text(Type::Error, "a")) + bytes(glError(1280, "f", "b"))
        + bytes(text(Type::Warning, "c")) + bytes(text(Type::Information, "d")));
    QTRY_COMPARE(session.status("lblErrorCount"), QStringLiteral("2 errors"));
    QCOMPARE(session.status("lblWarningCount"), QStringLiteral("1 warning"));
}

void TestMainWindow::systemReport()
{
    Session session;
    session.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&session.window));
    session.window.showSplash();
    const auto& splash = *session.window.findChild<AboutBox*>();
    QVERIFY(splash.isVisible());
    const auto& viewer =
        *session.window.findChild<QWidget*>(QStringLiteral("tabSystemReport"))->findChild<QPlainTextEdit*>();
    QCOMPARE(viewer.toPlainText(),
        QStringLiteral(
            "To generate a system report, run an application which loads the Corvale libraries and calls "
            "eglInitialize()."));
    Message entry = make(Type::ReportKeyedText);
    entry.setU32(offset::reportKey, 3);
    entry.setText(offset::reportKeyedText, "Brindlewood B300");
    session.connectApplication().send(
        bytes(entry) + bytes(make(Type::ReportComplete)) + bytes(make(Type::ReportComplete)));
    QTRY_VERIFY(viewer.toPlainText().contains(QStringLiteral("Brindlewood B300")));
    QVERIFY2(!splash.isVisible(), "an application has come");
    QCOMPARE(viewer.font().family(), session.window.findChild<QFontComboBox*>()->currentFont().family());
    session.window.onFeedback();
    const auto& feedback = *session.window.findChild<FeedbackDialog*>();
    QVERIFY(feedback.findChild<QPlainTextEdit*>()->toPlainText().endsWith(viewer.toPlainText()));
}

void TestMainWindow::consoleFont()
{
    Session session;
    session.connectApplication();
    auto& combo = *session.window.findChild<QFontComboBox*>(QStringLiteral("cmbFont"));
    const auto consoleFamily = [&session](int index) {
        return session.tabs()
            .widget(index)
            ->findChild<QTextEdit*>(QStringLiteral("txtConsole"))
            ->font()
            .family();
    };
    QCOMPARE(consoleFamily(0), combo.currentFont().family());
    const QString other = combo.itemText(combo.currentIndex() == 0 ? 1 : 0);
    combo.setCurrentFont(QFont(other));
    QCOMPARE(consoleFamily(0), other);
    session.connectApplication();
    QCOMPARE(consoleFamily(1), other);

    const Session next;
    QCOMPARE(next.window.findChild<QFontComboBox*>(QStringLiteral("cmbFont"))->currentFont().family(), other);
}

void TestMainWindow::unreadablePreferencesAreKept_data()
{
    QTest::addColumn<bool>("chooseProfile");
    QTest::newRow("the font is saved first") << false;
    QTest::newRow("the profile is saved first") << true;
}

void TestMainWindow::unreadablePreferencesAreKept()
{
    QFETCH(const bool, chooseProfile);
    QFile file(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brindlewood/Corvale.plist"));
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("my notes, no property list");
    file.close();
    Session session;
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("my notes, no property list"));
    ProfileCatalogue catalogue(session.preferences);
    session.window.setCatalogue(catalogue);
    auto& combo =
        *session.window.findChild<QComboBox*>(QLatin1String(chooseProfile ? "cmbProfile" : "cmbFont"));
    combo.setCurrentIndex(combo.currentIndex() == 0 ? 1 : 0);
    const QString message = session.window.statusBar()->currentMessage();
    QVERIFY2(message.contains(QStringLiteral("Corvale.plist.corrupt")), qPrintable(message));
    QFile copy(file.fileName() + QStringLiteral(".corrupt"));
    QVERIFY(copy.open(QIODevice::ReadOnly));
    QCOMPARE(copy.readAll(), QByteArray("my notes, no property list"));
}

void TestMainWindow::profileChooser()
{
    const QTemporaryDir folder;
    const auto write = [&folder](const char* name, const QByteArray& content) {
        writeFile(folder.filePath(QString::fromLatin1(name)), content);
    };
    write("b.xml", "<profile><device>Board</device></profile>");
    write("a.xml", "<profile><device>Board</device></profile>");
    write("broken.xml", "<profile>");
    qputenv("CORVALE_PROFILE_PATH", QFile::encodeName(folder.path()));

    Session session;
    ProfileCatalogue catalogue(session.preferences);
    session.window.setCatalogue(catalogue);
    auto& box = *session.window.findChild<QComboBox*>(QStringLiteral("cmbProfile"));
    QStringList texts;
    for (int i = 0; i < box.count(); ++i)
        texts.append(box.itemText(i));
    const auto builtins = static_cast<qsizetype>(catalogue.builtinProfiles().size());
    QCOMPARE(texts.first(), QStringLiteral("Host"));
    QCOMPARE(texts.mid(builtins + 1), QStringList({"Board (a.xml)", "Board (b.xml)"}));
    QCOMPARE(box.currentIndex(), 0);
    QCOMPARE(box.itemData(1).value<WeakProfile>().lock(), catalogue.builtinProfiles().front());
    const QString skipped = session.status("lblSkippedProfiles");
    QVERIFY2(skipped.startsWith(QStringLiteral("Skipped profile broken.xml: ")), qPrintable(skipped));

    const auto stored = [] {
        PlistPreferences onDisk("Corvale", TSRPreferencesImpl::perUser);
        std::string key = "nothing";
        Session::loaded(onDisk).getString(
            preferencekeys::prefixed(preferencekeys::currentProfile), &key, nullptr, false);
        return QString::fromStdString(key);
    };
    QCOMPARE(stored(), QStringLiteral("nothing"));
    box.setCurrentIndex(1);
    QCOMPARE(stored(), texts.at(1));
    box.setCurrentIndex(box.count() - 1);
    QCOMPARE(stored(), QStringLiteral("b.xml"));
    session.window.setCatalogue(catalogue);
    QCOMPARE(box.currentText(), QStringLiteral("Board (b.xml)"));
    box.setCurrentIndex(0);
    QCOMPARE(stored(), QString());
}

void TestMainWindow::reloadDisturbsNobody()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.xml"));
    writeFile(path, "<profile><device>A</device></profile>");
    qputenv("CORVALE_PROFILE_PATH", QFile::encodeName(folder.path()));
    Session session;
    ProfileCatalogue catalogue(session.preferences);
    session.window.setCatalogue(catalogue);
    auto& box = *session.window.findChild<QComboBox*>(QStringLiteral("cmbProfile"));
    auto& chooser = *session.window.findChild<ProfileChooser*>();
    QStringList announced;
    connect(&chooser, &ProfileChooser::chosenChanged, this, [&](const WeakProfile& profile) {
        announced.append(profile.expired() ? QString() : QString::fromStdString(profile.lock()->key()));
    });
    box.setCurrentIndex(box.count() - 1);
    QCOMPARE(announced, QStringList("a.xml"));
    const WeakProfile before = chooser.chosen();
    writeFile(folder.filePath(QStringLiteral("0.xml")), "<profile><device>0</device></profile>");
    session.window.reloadProfiles();
    QCOMPARE(chooser.chosen(), before.lock());
    QCOMPARE(announced.size(), 1);

    // A profile without a file has no key to be found by.
    const WeakProfile unsaved = catalogue.newProfile();
    session.window.setCatalogue(catalogue);
    chooser.choose(unsaved.lock());
    session.window.reloadProfiles();
    QCOMPARE(chooser.chosen(), unsaved.lock());
    QCOMPARE(announced, QStringList({"a.xml", ""}));

    chooser.choose(before.lock());
    writeFile(path, "<profile><device>B</device></profile>");
    session.window.reloadProfiles();
    QVERIFY(before.expired());
    QCOMPARE(box.currentText(), QStringLiteral("B (a.xml)"));
    QVERIFY(QFile::remove(path));
    session.window.reloadProfiles();
    QCOMPARE(box.currentText(), QStringLiteral("Host"));
    QCOMPARE(announced, QStringList({"a.xml", "", "a.xml", "a.xml", ""}));
}

void TestMainWindow::recentProfiles()
{
    const QTemporaryDir folder;
    const QTemporaryDir elsewhere;
    for (const QString& path :
        {folder.filePath("a.xml"), elsewhere.filePath("a.xml"), elsewhere.filePath("gone.xml")})
        writeFile(path, "<profile><device>A</device></profile>");
    writeFile(elsewhere.filePath("broken.xml"), "<profile>");
    qputenv("CORVALE_PROFILE_PATH", QFile::encodeName(folder.path()));
    Session session;
    ProfileCatalogue catalogue(session.preferences);
    session.window.setCatalogue(catalogue);
    auto& menu = *session.window.findChild<RecentFilesMenu*>();
    const QStringList added{elsewhere.filePath("broken.xml"), elsewhere.filePath("gone.xml"),
        elsewhere.filePath("a.xml"), folder.filePath("a.xml")};
    session.window.preferencesEdited(added, false);
    const auto choose = [&menu](int index) {
        Q_EMIT menu.aboutToShow();
        menu.actions().at(index)->trigger();
    };
    const auto& box = *session.window.findChild<QComboBox*>(QStringLiteral("cmbProfile"));
    choose(0);
    QCOMPARE(box.currentText(), QStringLiteral("A (a.xml)"));

    DialogAnswers answers;
    answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("Cancel"));
    choose(1);
    QCOMPARE(box.count(), 2 + static_cast<int>(catalogue.builtinProfiles().size()));
    answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("Copy and Choose"));
    choose(1);
    QCOMPARE(box.currentText(), QStringLiteral("A (a (2).xml)"));

    QVERIFY(QFile::remove(elsewhere.filePath("gone.xml")));
    answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("OK"));
    choose(3);
    answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("OK"));
    choose(3);
    QCOMPARE(answers.problems(), QStringList());
    QCOMPARE(menu.files(),
        QStringList({folder.filePath("a (2).xml"), folder.filePath("a.xml"), elsewhere.filePath("a.xml"),
            elsewhere.filePath("broken.xml")}));
    QCOMPARE(box.currentText(), QStringLiteral("A (a (2).xml)"));
}

void TestMainWindow::fatalErrorClosesTheWindow()
{
    Session session;
    session.window.show();
    QTimer::singleShot(0, &session.window, [] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(box != nullptr);
        QCOMPARE(box->icon(), QMessageBox::Critical);
        QCOMPARE(box->windowTitle(), QStringLiteral("Fatal error"));
        QCOMPARE(box->text(),
            QStringLiteral("Failed to create a socket. Cannot listen for incoming connections."));
        box->accept();
    });
    QVERIFY(QMetaObject::invokeMethod(&session.window, "fatalError", Q_ARG(Error, Error::SocketNotCreated)));
    QVERIFY(!session.window.isVisible());
}

QTEST_MAIN(TestMainWindow)
#include "TestMainWindow.moc"
