#include "ClientInterface.h"
#include "ClientRecorder.h"
#include "CompareSessionsDialog.h"
#include "Console.h"
#include "DesktopNotifier.h"
#include "DialogAnswers.h"
#include "ErrorListModel.h"
#include "Resources.h"
#include "Session.h"
#include "SessionFolder.h"
#include "SessionReader.h"
#include "SessionWriter.h"
#include "UnseenErrors.h"

#include <QAction>
#include <QComboBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextDocumentFragment>
#include <QTreeWidget>

#include <thread>

using namespace records;

namespace {

/// All rows of an error list, column by column.
QStringList errorRows(const ClientInterface& page)
{
    const ErrorListModel& model = page.errorListModel();
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        for (int column = 0; column < model.columnCount(); ++column)
            rows.append(model.index(row, column).data().toString());
    }
    return rows;
}

QStringList contextTitles(const ClientInterface& page)
{
    const auto& pages = *page.findChild<QTabWidget*>(QStringLiteral("tabWidget_contexts"));
    QStringList titles;
    for (int i = 0; i < pages.count(); ++i)
        titles.append(pages.tabText(i));
    return titles;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

/// Writes a session of one client, a record each tenth of a second.
void writeSession(const QString& path, const std::string& name, const std::vector<Message>& messages,
    const std::string& device = {}, const std::string& end = {})
{
    sessions::SessionWriter writer;
    QVERIFY(writer.open(path.toStdString()));
    writer.beginClient(1, name, device, {});
    std::chrono::milliseconds time(0);
    for (const Message& message : messages) {
        const std::string_view payload(
            message.data() + offset::payload, ui::messages::recordSize - offset::payload);
        writer.add(0, {message.rawType(), message.frame(), payload}, time);
        time += std::chrono::milliseconds(100);
    }
    writer.endClient(0, sessions::ClientEnd::Clean, end, time);
    QVERIFY(writer.close());
}

std::string someRecords(int errors)
{
    std::string all = bytes(pid(77)) + bytes(text(Type::SetName, "demo & Co."));
    all += bytes(context(1)) + bytes(text(Type::Information, "Hello")) + bytes(make(Type::LineBreak));
    for (int i = 0; i < errors; ++i)
        all += bytes(glError(0x0502, "glDrawArrays", "call " + std::to_string(i), static_cast<quint32>(i)));
    return all + bytes(text(Type::Warning, "the last"));
}

} // namespace

/// Sessions, from the real socket into files and back into the window.
class TestSessionPages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerResources(); }

    void comesBackAsItWas();
    void keepsDeviceAndEnd();
    void savesAllClients();
    void showsWhatIsLeft_data();
    void showsWhatIsLeft();
    void playsAtItsPace();
    void recordsWhatConnects();
    void keepsTheNewestSessions();
    void comparesTwo();

private:
    /// Saves by way of the dialogs, which the caller may answer before.
    static void save(Session& session, const QString& path);
};

void TestSessionPages::save(Session& session, const QString& path)
{
    session.window.findChild<QAction*>(QStringLiteral("actionSaveSession"))->trigger();
    QFileDialog* dialog = nullptr;
    QTRY_VERIFY((dialog = session.window.findChild<QFileDialog*>()) != nullptr);
    QVERIFY(dialog->selectedFiles().first().endsWith(QStringLiteral(".corvale-session")));
    Q_EMIT dialog->fileSelected(path);
    dialog->close();
    QTRY_VERIFY(QFileInfo::exists(path));
}

void TestSessionPages::comesBackAsItWas()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("one.corvale-session"));
    auto session = std::make_unique<Session>();
    session->window.show();
    QVERIFY(!session->window.findChild<QAction*>(QStringLiteral("actionSaveSession"))->isEnabled());
    RawClient& application = session->connectApplication();
    // The window reads meanwhile.
    std::thread sender(
        [&application] { application.send(someRecords(20) + bytes(make(Type::CleanDisconnect))); });
    const ClientInterface& live = *session->tabs().pageAt(0);
    QTRY_COMPARE(live.state(), ClientInterface::State::Finished);
    sender.join();
    save(*session, path);

    QTRY_VERIFY(session->console(0).endsWith(QStringLiteral("Client disconnected")));
    const QString title = session->titles().at(0);
    const QStringList errors = errorRows(live);
    const QStringList contexts = contextTitles(live);
    const QString console = session->console(0);
    session.reset();

    // Whoever reads a session needs neither the application nor the window that has saved it.
    Session other;
    other.window.show();
    const QString count = other.status("lblErrorCount");
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&elsewhere));
    auto& notifier = *other.window.findChild<DesktopNotifier*>();
    notifier.actions().last()->trigger();
    const QSignalSpy notified(&notifier, &DesktopNotifier::notified);
    other.window.openSession(path);
    const ClientInterface& page = *other.tabs().pageAt(0);
    QTRY_COMPARE(page.state(), ClientInterface::State::Finished);
    QCOMPARE(other.titles(), QStringList(title));
    QCOMPARE(errorRows(page), errors);
    QCOMPARE(contextTitles(page), contexts);
    QTRY_COMPARE(other.console(0), console);
    QVERIFY(console.endsWith(QStringLiteral("Client disconnected")));
    QVERIFY(!page.findChild<QWidget*>(QStringLiteral("chkWireframe"))->isEnabled());
    QVERIFY(other.tabs().tabToolTip(0).contains(QStringLiteral("ended")));
    // What it says of errors is no news.
    QCOMPARE(other.status("lblErrorCount"), count);
    QCOMPARE(notified.count(), 0);
    for (const UnseenErrors* unseen : page.findChildren<UnseenErrors*>())
        QCOMPARE(unseen->errors() + unseen->warnings(), 0);
    // Whoever has it played wants to be told.
    other.window.findChild<QPushButton*>(QStringLiteral("btnPlaySession"))->click();
    QTRY_COMPARE(other.tabs().pageAt(0)->state(), ClientInterface::State::Finished);
    QCOMPARE(other.tabs().pageAt(0)->unseenErrors().errors(), 20);

    // What is shown does not need the file any more.
    const QString copy = folder.filePath(QStringLiteral("copy.corvale-session"));
    QVERIFY(QFile::remove(path));
    save(other, copy);
    sessions::SessionReader reader;
    QVERIFY(reader.open(copy.toStdString()));
    QCOMPARE(reader.recordCount(), 24U);
    QCOMPARE(reader.clients().at(0).name, std::string("demo & Co."));
    QCOMPARE(reader.clients().at(0).end, sessions::ClientEnd::Clean);
}

void TestSessionPages::keepsDeviceAndEnd()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("one.corvale-session"));
    const std::string end = "Killed by SIGSEGV (segmentation fault)";
    Session session;
    session.window.show();
    RawClient& application = session.connectApplication();
    application.send(bytes(text(Type::Error, "first")));
    ClientInterface& page = *session.tabs().pageAt(0);
    QTRY_COMPARE(page.errorListModel().rowCount(), 1);
    QTest::qWait(50);
    application.send(
        bytes(text(Type::Information,
            "The program sees the profile Tarn 7 (old) (OpenGL ES 2.0) in place of this machine."))
        + bytes(text(Type::Error, end)));
    const auto lines = [&session](int tab) {
        return QTextDocumentFragment::fromHtml(session.tabs().tabToolTip(tab))
            .toPlainText()
            .split(QLatin1Char('\n'));
    };
    QTRY_VERIFY(lines(0).contains(QStringLiteral("Device: Tarn 7 (old)")));
    application.close();
    QTRY_COMPARE(lines(0).last(), QString::fromStdString(end));
    save(session, path);
    sessions::SessionReader reader;
    QVERIFY(reader.open(path.toStdString()));
    QCOMPARE(reader.clients().at(0).device, std::string("Tarn 7 (old)"));
    QCOMPARE(reader.clients().at(0).endText, end);
    std::vector<sessions::SessionTime> times;
    QVERIFY(
        reader.read(0, [&times](const sessions::SessionRecord& record) { times.push_back(record.time); }));
    QVERIFY(times.size() >= 3 && times.at(1) - times.at(0) > std::chrono::milliseconds(40));
    ConsoleSpool::Reader console(page.console().spool());
    std::string_view entry;
    QVERIFY(console.next(entry));
    const std::int64_t first = console.stamp().time;
    QVERIFY(console.next(entry) && console.stamp().time > first + 40);

    session.window.openSession(path);
    QTRY_COMPARE(session.tabs().pageAt(1)->state(), ClientInterface::State::Finished);
    QCOMPARE(lines(1).mid(2), lines(0).mid(1));
    QTRY_COMPARE(session.console(1), session.console(0));

    // What the launcher has not told as a record is told at the end.
    const QString other = folder.filePath(QStringLiteral("other.corvale-session"));
    writeSession(other, "other", {text(Type::Error, end)}, "Tarn 10", "ends with status 3");
    session.window.openSession(other);
    QTRY_VERIFY(session.console(2).endsWith(QStringLiteral("Client disconnected: ends with status 3")));
    QCOMPARE(lines(2).mid(2), (QStringList{"Device: Tarn 10", "Ends with status 3"}));

    CompareSessionsDialog dialog({}, {path, other}, nullptr);
    dialog.show();
    const auto& device = *dialog.findChild<QTreeWidget*>(QStringLiteral("treeDevice"));
    QTRY_COMPARE(device.topLevelItemCount(), 1);
    QCOMPARE(device.topLevelItem(0)->text(3), QStringLiteral("Tarn 10"));
}

void TestSessionPages::savesAllClients()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("all.corvale-session"));
    Session session;
    session.window.show();
    session.connectApplication().send(bytes(pid(1)) + bytes(text(Type::Error, "one")));
    session.connectApplication().send(bytes(pid(2)) + bytes(text(Type::Error, "two")));
    QTRY_COMPARE(session.tabs().pageAt(1)->errorListModel().rowCount(), 1);
    QTRY_COMPARE(session.tabs().pageAt(0)->errorListModel().rowCount(), 1);
    DialogAnswers answers;
    answers.next(QStringLiteral("Save Session"), [](QWidget& dialog) {
        dialog.findChild<QAbstractButton*>(QStringLiteral("radAllClients"))->click();
        static_cast<QDialog&>(dialog).accept();
    });
    answers.next(QStringLiteral("Save session"), [path](QWidget& dialog) {
        Q_EMIT static_cast<QFileDialog&>(dialog).fileSelected(path);
        dialog.close();
    });
    session.window.findChild<QAction*>(QStringLiteral("actionSaveSession"))->trigger();
    QTRY_VERIFY(QFileInfo::exists(path));
    QCOMPARE(answers.problems(), QStringList());

    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&session.window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&session.window, &drop);
    QCOMPARE(session.tabs().count(), 4);
    QTRY_COMPARE(session.tabs().pageAt(3)->state(), ClientInterface::State::Finished);
    QCOMPARE(errorRows(*session.tabs().pageAt(2)), errorRows(*session.tabs().pageAt(0)));
    QCOMPARE(errorRows(*session.tabs().pageAt(3)), errorRows(*session.tabs().pageAt(1)));
    QTRY_VERIFY(session.console(3).contains(QStringLiteral("Lost connection")));
    // A session is no connected application, and nobody has told those that are anything.
    QVERIFY(session.status("lblClients").contains(QLatin1Char('2')));
    QCOMPARE(session.applications.at(0)->receivedTypes(), QList<quint32>());
}

void TestSessionPages::showsWhatIsLeft_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("message");
    QTest::newRow("cut behind a block") << -10 << 8000 << "end of the session is missing";
    QTest::newRow("cut within the records") << -1000 << 1 << "end of the session is missing";
    QTest::newRow("no session") << 3 << -1 << "it is no session";
    QTest::newRow("no file") << 0 << -1 << "No such file or directory";
}

void TestSessionPages::showsWhatIsLeft()
{
    QFETCH(const int, length);
    QFETCH(const int, rows);
    QFETCH(const QString, message);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("one.corvale-session"));
    std::vector<Message> errors;
    for (int i = 0; i < 8000; ++i)
        errors.push_back(text(Type::Error, QString::number(i * 7919, 36).repeated(8).toStdString()));
    writeSession(path, "cut", errors);
    QByteArray content = contentOf(path);
    content.truncate(length < 0 ? content.size() + length : length);
    write(path, content);
    QVERIFY(length != 0 || QFile::remove(path));

    Session session;
    session.window.show();
    DialogAnswers answers;
    QString told;
    if (rows < 0)
        answers.next(QStringLiteral("Open session"), [&told](QWidget& box) {
            for (const QLabel* label : box.findChildren<QLabel*>())
                told += label->text();
            static_cast<QDialog&>(box).accept();
        });
    session.window.openSession(path);
    if (rows < 0) {
        QTRY_VERIFY2(told.contains(message) && told.contains(QStringLiteral("one.")), qPrintable(told));
        QCOMPARE(session.titles(), QStringList("Disconnected"));
        return;
    }
    QTRY_COMPARE(session.tabs().pageAt(0)->state(), ClientInterface::State::Finished);
    const int shown = session.tabs().pageAt(0)->errorListModel().rowCount();
    QVERIFY2(
        rows == 8000 ? shown == rows : shown >= rows && shown < 8000, qPrintable(QString::number(shown)));
    const auto& bar = *session.window.findChild<QLabel*>(QStringLiteral("sessionBarText"));
    QVERIFY2(bar.text().contains(message), qPrintable(bar.text()));
}

void TestSessionPages::playsAtItsPace()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("one.corvale-session"));
    {
        sessions::SessionWriter writer;
        QVERIFY(writer.open(path.toStdString()));
        writer.beginClient(5, "slow", {}, {});
        for (int i = 0; i < 4; ++i) {
            const std::string payload = "error " + std::to_string(i);
            writer.add(0, {static_cast<quint32>(Type::Error), 1, payload},
                std::chrono::milliseconds(100) * (i < 2 ? i : 36'000 + i));
        }
    }

    Session session;
    session.window.show();
    session.window.openSession(path);
    QTRY_COMPARE(session.tabs().pageAt(0)->state(), ClientInterface::State::Finished);
    QCOMPARE(session.tabs().pageAt(0)->errorListModel().rowCount(), 4);
    const auto button = [&session](const char* name) {
        return session.window.findChild<QPushButton*>(QString::fromLatin1(name));
    };
    button("btnPlaySession")->click();
    QCOMPARE(session.tabs().count(), 1);
    const ClientInterface& page = *session.tabs().pageAt(0);
    QElapsedTimer time;
    time.start();
    QTRY_COMPARE(page.errorListModel().rowCount(), 2);
    QVERIFY(time.elapsed() >= 90);
    // The next one comes in an hour.
    QTest::qWait(150);
    QCOMPARE(page.errorListModel().rowCount(), 2);
    QVERIFY(!button("btnStepSession")->isEnabled());
    button("btnPauseSession")->click();
    button("btnStepSession")->click();
    QCOMPARE(page.errorListModel().rowCount(), 3);
    button("btnShowSession")->click();
    QTRY_COMPARE(page.state(), ClientInterface::State::Finished);
    QCOMPARE(page.errorListModel().rowCount(), 4);

    // Half a session can be closed, and its tab's place is taken.
    button("btnPlaySession")->click();
    session.window.closeTab(0);
    QTRY_VERIFY(!session.window.findChild<QLabel*>(QStringLiteral("sessionBarText"))->isVisible());
}

void TestSessionPages::recordsWhatConnects()
{
    const QString path = SessionFolder::usualPath();
    QDir(path).removeRecursively();
    Session session;
    session.window.show();
    session.connectApplication().send(pid(1));
    session.window.findChild<QAction*>(QStringLiteral("actionRecordSessions"))->trigger();
    QVERIFY(session.preferences.get(settings::recordSessions));
    session.connectApplication().send(bytes(pid(2)) + bytes(text(Type::Error, "kept")));
    const auto files = [path] {
        return QDir(path).entryList({QStringLiteral("*.corvale-session")});
    };
    QTRY_COMPARE(files().size(), 1);
    // Its tab is not needed, and neither is an end: the window might be killed.
    session.window.closeTab(1);
    session.applications.at(1)->send(text(Type::Error, "kept as well"));
    const std::string file = (path + QLatin1Char('/') + files().first()).toStdString();
    sessions::SessionReader reader;
    QTRY_VERIFY(reader.open(file) && reader.recordCount() == 2);
    QCOMPARE(reader.clients().at(0).pid, 2U);
    QCOMPARE(reader.damage(), std::string());
    session.applications.at(1)->close();
    QTRY_VERIFY(reader.open(file) && reader.clients().at(0).end == sessions::ClientEnd::Lost);
    // Nothing keeps a file open whose client and tab are gone, whichever went first.
    const auto recorders = [&session] {
        return session.window.findChildren<ClientRecorder*>().size();
    };
    QTRY_COMPARE(recorders(), 1);
    session.connectApplication().send(bytes(pid(4)) + bytes(make(Type::CleanDisconnect)));
    QTRY_COMPARE(session.tabs().pageAt(1)->state(), ClientInterface::State::Finished);
    QCOMPARE(recorders(), 2);
    session.window.closeTab(1);
    QTRY_COMPARE(recorders(), 1);
    session.window.findChild<QAction*>(QStringLiteral("actionRecordSessions"))->trigger();
    session.connectApplication().send(bytes(pid(3)) + bytes(text(Type::Error, "not kept")));
    QTRY_COMPARE(session.tabs().pageAt(1)->errorListModel().rowCount(), 1);
    QCOMPARE(files().size(), 2);
}

void TestSessionPages::keepsTheNewestSessions()
{
    const QTemporaryDir room;
    SessionFolder folder(room.filePath(QStringLiteral("sessions")), {3, 1000});
    const QByteArray session = QByteArray("CORVALES").leftJustified(100, '\0');
    QStringList files;
    const auto add = [&](qsizetype size) {
        files.append(folder.addFile());
        write(files.last(), session.leftJustified(size, '\0'));
        QFile file(files.last());
        QVERIFY(file.open(QIODevice::ReadWrite));
        file.setFileTime(
            QDateTime::currentDateTime().addSecs(files.size() - 100), QFileDevice::FileModificationTime);
    };
    const auto left = [&] {
        QList<int> numbers;
        for (int i = 0; i < files.size(); ++i) {
            // The name of one that went may be taken by the next.
            if (QFileInfo::exists(files.at(i)) && files.lastIndexOf(files.at(i)) == i)
                numbers.append(i);
        }
        return numbers;
    };
    add(100);
    // What others have put there stays, whatever it looks like.
    const QString foreign =
        room.filePath(QStringLiteral("sessions/recorded-20260101-101010.corvale-session"));
    write(foreign, "something else");
    const QString renamed = room.filePath(QStringLiteral("sessions/kept.corvale-session"));
    write(renamed, session);
    for (int i = 1; i < 5; ++i)
        add(100);
    // Those that are being written stay, however many.
    QCOMPARE(left(), (QList<int>{0, 1, 2, 3, 4}));
    for (const QString& file : QStringList(files))
        folder.closeFile(file);
    QCOMPARE(left(), (QList<int>{2, 3, 4}));
    add(850);
    QVERIFY(folder.makeRoom());
    QCOMPARE(left(), (QList<int>{4, 5}));
    write(files.last(), session.leftJustified(1001, '\0'));
    QVERIFY(!folder.makeRoom());
    QCOMPARE(left(), (QList<int>{5}));
    QVERIFY(QFileInfo::exists(foreign) && QFileInfo::exists(renamed));
}

void TestSessionPages::comparesTwo()
{
    const QTemporaryDir folder;
    const auto make = [&folder](const char* name, const std::vector<Message>& messages) {
        const QString path = folder.filePath(QString::fromLatin1(name));
        writeSession(path, name, messages);
        return path;
    };
    const QString before = make("before", {text(Type::Error, "gone"), text(Type::Warning, "same 1")});
    const QString after =
        make("after", {text(Type::Warning, "same 2"), text(Type::Error, "new"), context(1)});
    CompareSessionsDialog dialog({}, {before}, nullptr);
    dialog.show();
    const auto& state = *dialog.findChild<QLabel*>(QStringLiteral("lblComparison"));
    QVERIFY(state.text().startsWith(QStringLiteral("Choose")));
    dialog.findChild<QComboBox*>(QStringLiteral("cmbBefore"))->setCurrentIndex(0);
    dialog.chooseFile(true, after);
    QTRY_VERIFY2(state.text().contains(QStringLiteral("1 new, 1 gone")), qPrintable(state.text()));
    const auto& findings = *dialog.findChild<QTreeWidget*>(QStringLiteral("treeFindings"));
    QCOMPARE(findings.topLevelItemCount(), 2);
    QCOMPARE(findings.topLevelItem(0)->text(6), QStringLiteral("new"));
    const auto& contexts = *dialog.findChild<QTreeWidget*>(QStringLiteral("treeContexts"));
    QCOMPARE(contexts.topLevelItemCount(), 6);

    QFile::remove(before);
    dialog.findChild<QComboBox*>(QStringLiteral("cmbAfter"))->setCurrentIndex(0);
    QTRY_VERIFY2(state.text().contains(QStringLiteral("cannot be read: No such")), qPrintable(state.text()));
    QCOMPARE(findings.topLevelItemCount(), 0);
}

QTEST_MAIN(TestSessionPages)
#include "TestSessionPages.moc"
