#include "AboutBox.h"
#include "ClientInterface.h"
#include "ClientTabWidget.h"
#include "Console.h"
#include "ConsoleSaver.h"
#include "DesktopNotifier.h"
#include "DialogAnswers.h"
#include "ErrorListModel.h"
#include "ErrorListTable.h"
#include "FeedbackDialog.h"
#include "MetaObjects.h"
#include "Resources.h"
#include "Session.h"
#include "TableExport.h"

#include <QFileDialog>
#include <QFontComboBox>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStatusBar>
#include <QThread>

#include <thread>

using namespace records;

namespace {

/// Fills a console with so much that it is saved in many steps, and begins to. Returns the file's size in
/// bytes.
qint64 beginLongSave(ClientInterface& page, const QString& path)
{
    constexpr int lines = 40'000;
    const std::string line(1000, 'x');
    page.console().clear();
    for (int i = 0; i < lines; ++i)
        page.receive(text(Type::Information, line));
    page.findChild<ConsoleSaver*>()->save(path);
    return lines * static_cast<qint64>(line.size() + 1);
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
    void questionForAFileKeepsItsTab();
    void closingWaitsForASave();
    void rowsOfAClosedTabAreExported();
    void destructionDuringAFlood();
    void savingTabIsCompleted();
    void statusCounts();
    void desktopTellsWhatTheUserWants();
    void systemReport();
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
    QVERIFY(!session.closeButton(0) || session.closeButton(0)->size().isEmpty());
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
    const auto hint = [&session] {
        return session.tabs().widget(0)->findChild<QLabel*>(QStringLiteral("lblNoContexts"))->text();
    };
    QVERIFY(hint().startsWith(QStringLiteral("An application is still connected")));
    QCOMPARE(application.receivedTypes(), QList<quint32>());
    application.close();
    QTRY_COMPARE(session.status("lblClients"), QStringLiteral("0 clients connected"));
    QVERIFY(hint().startsWith(QStringLiteral("No application is connected")));
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

void TestMainWindow::questionForAFileKeepsItsTab()
{
    Session session;
    session.window.show();
    session.window.findChild<QCheckBox*>(QStringLiteral("chkAutoClose"))->setChecked(true);
    session.connectApplication().close();
    const QPointer<QWidget> page = session.tabs().widget(0);
    QTRY_COMPARE(session.console(0), QStringLiteral("Lost connection to client"));
    auto& save = *page->findChild<QPushButton*>(QStringLiteral("btnSaveConsole"));
    save.click();
    QPointer<QFileDialog> question = page->findChild<QFileDialog*>();
    QVERIFY(question);
    session.connectApplication();
    QCOMPARE(session.tabs().count(), 2);
    QVERIFY(question && question->isVisible() && !save.isEnabled());
    question->reject();
    QTRY_VERIFY(save.isEnabled());

    save.click();
    question = page->findChild<QFileDialog*>();
    const QString path = QDir::tempPath() + QStringLiteral("/small.txt");
    Q_EMIT question->fileSelected(path);
    static_cast<QDialog&>(*question).done(QDialog::Accepted);
    QTRY_VERIFY(save.isEnabled());
    QVERIFY(QFile::exists(path));

    save.click();
    session.window.closeTab(0);
    page->findChild<QFileDialog*>()->reject();
    QTRY_VERIFY(!page);
}

void TestMainWindow::closingWaitsForASave()
{
    Session session;
    session.window.show();
    RawClient& application = session.connectApplication();
    ClientInterface& page = *session.tabs().pageAt(0);
    QDir folder(QDir::tempPath() + QStringLiteral("/saved"));
    const QString path = folder.filePath(QStringLiteral("console.txt"));
    const auto beginSaveAndClose = [&session, &page, &folder, &path] {
        folder.mkpath(QStringLiteral("."));
        const qint64 size = beginLongSave(page, path);
        session.window.close();
        return size;
    };
    beginSaveAndClose();
    QVERIFY(folder.removeRecursively());
    QTRY_VERIFY(!page.saver().isBusy());
    QTest::qWait(50);
    QVERIFY2(session.window.isVisible(), "the reason is to be read");

    {
        beginSaveAndClose();
        QDialog dialog(&session.window);
        dialog.open();
        QTRY_VERIFY(!page.saver().isBusy());
        QTest::qWait(50);
        QVERIFY2(session.window.isVisible() && dialog.isVisible(), "what is entered there is not to be lost");
    }
    const qint64 size = beginSaveAndClose();
    QVERIFY(!session.window.end());
    session.window.closeTab(0);
    QVERIFY(session.window.isVisible());
    QCOMPARE(application.receivedTypes(), QList<quint32>());
    QTRY_VERIFY(!session.window.isVisible());
    QCOMPARE(QFileInfo(path).size(), size);
    QVERIFY(session.window.end());
    QCOMPARE(application.receivedTypes(), QList<quint32>({11}));
}

void TestMainWindow::rowsOfAClosedTabAreExported()
{
    Session session;
    session.window.show();
    session.connectApplication();
    const QPointer<ClientInterface> page = session.tabs().pageAt(0);
    constexpr int count = 100;
    for (int i = 0; i < count; ++i)
        page->receive(text(Type::Error, "x"));
    // Takes more than one step on any machine.
    TextTable table = error_list::wholeTable(page->errorListModel());
    table.cells = [cells = table.cells](int row) {
        QThread::msleep(1);
        return cells(row);
    };
    QFile file(QDir::tempPath() + QStringLiteral("/rows.csv"));
    auto& rows = *page->findChild<TableExport*>();
    rows.save(file.fileName(), table);
    QVERIFY(rows.isSaving());
    session.window.closeTab(0);
    session.window.close();
    QVERIFY(page && session.window.isVisible());
    QTRY_VERIFY(!session.window.isVisible());
    QVERIFY(!page);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll().count('\n'), count + 1);
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
    const QString path = QDir::tempPath() + QStringLiteral("/console.txt");
    const qint64 size = beginLongSave(*page, path);
    session.tabs().finish(page->client(), QStringLiteral("end"), ClientTabWidget::Connection::Ended);
    session.tabs().addClient(nullptr, QFont(), true);
    QCOMPARE(session.tabs().count(), 2);
    session.window.closeTab(0);
    QVERIFY(page && page->saver().isBusy());
    page->console().clear();
    QSignalSpy rows(&page->errorListModel(), &QAbstractItemModel::rowsInserted);
    application.send(text(Type::Error, "shown nowhere"));
    QTRY_VERIFY(!page);
    QCOMPARE(QFileInfo(path).size(), size);
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
    // Also while errors arrive without a pause.
    QVERIFY(QTest::qWaitFor([&session] {
        session.applications.front()->send(text(Type::Error, "e"));
        return session.status("lblErrorCount") != QStringLiteral("2 errors");
    }));
}

void TestMainWindow::desktopTellsWhatTheUserWants()
{
    const auto choose = [](const Session& session, int choice) {
        session.window.findChild<QMenu*>(QStringLiteral("menuNotifications"))
            ->actions()
            .at(choice)
            ->trigger();
    };
    // Nobody looks at the window. An application with two errors crashes, another one says good-bye.
    for (const auto& [choice, name, told] :
        {std::tuple(0, "off", 0), std::tuple(1, "crashes", 1), std::tuple(2, "errors", 3)}) {
        Session session;
        QSignalSpy notified(session.window.findChild<DesktopNotifier*>(), &DesktopNotifier::notified);
        choose(session, choice);
        session.connectApplication().send(bytes(text(Type::Error, "a")) + bytes(text(Type::Error, "b")));
        QTRY_COMPARE(session.status("lblErrorCount"), QStringLiteral("2 errors"));
        session.applications.front()->close();
        session.connectApplication().send(bytes(make(Type::CleanDisconnect)));
        QTRY_COMPARE(session.status("lblClients"), QStringLiteral("0 clients connected"));
        QCOMPARE(notified.count(), told);
        QCOMPARE(session.preferences.get(settings::notifications), std::string(name));
    }
}

void TestMainWindow::systemReport()
{
    Session session;
    session.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&session.window));
    session.window.showSplash();
    const auto& splash = *session.window.findChild<AboutBox*>();
    QVERIFY(splash.isVisible());
    const auto& hint = *session.window.findChild<QLabel*>(QStringLiteral("lblNoContexts"));
    const QRect room(hint.mapToGlobal(QPoint()), hint.size());
    const QRect text = hint.fontMetrics().boundingRect(room, Qt::AlignCenter | Qt::TextWordWrap, hint.text());
    QVERIFY(hint.isVisible());
    QVERIFY2(!splash.geometry().intersects(text), "the newcomer's hint is covered");
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
    session.window.findChild<QPushButton*>(QStringLiteral("btnCopy"))->click();
    QVERIFY(session.window.statusBar()->currentMessage().contains(QStringLiteral("copied")));
    session.window.onFeedback();
    const auto& feedback = *session.window.findChild<FeedbackDialog*>();
    QVERIFY(feedback.findChild<QPlainTextEdit*>()->toPlainText().endsWith(viewer.toPlainText()));
}

void TestMainWindow::fatalErrorClosesTheWindow()
{
    Session session;
    session.window.show();
    DialogAnswers answers;
    answers.next(QStringLiteral("Fatal error"), [](QWidget& widget) {
        auto& box = static_cast<QMessageBox&>(widget);
        QCOMPARE(box.icon(), QMessageBox::Critical);
        QCOMPARE(
            box.text(), QStringLiteral("Failed to create a socket. Cannot listen for incoming connections."));
        box.accept();
    });
    QVERIFY(QMetaObject::invokeMethod(&session.window, "fatalError", Q_ARG(Error, Error::SocketNotCreated)));
    QCOMPARE(answers.problems(), QStringList());
    QVERIFY(!session.window.isVisible());
}

QTEST_MAIN(TestMainWindow)
#include "TestMainWindow.moc"
