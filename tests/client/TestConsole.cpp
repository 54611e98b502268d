#include "Client.h"
#include "ClientInterface.h"
#include "ConsolePage.h"
#include "ConsoleSaver.h"
#include "FileReplacement.h"
#include "Records.h"
#include "Resources.h"

#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFontDatabase>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextFrame>

#include <csignal>

#include <sys/resource.h>

using namespace console_page;
using namespace records;

class TestConsole : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerResources(); }

    void shownIsTheEndOfAll_data();
    void shownIsTheEndOfAll();
    void firstRecordsOfAnIterationAreShownAtOnce();
    void paceOfWriting();
    void oneViewRefreshesAtATime();
    void heavyFrameHoldsNothingUp();
    void heavyEntriesDoNotPileUp();
    void steadyStreamWearsNothingOut_data();
    void steadyStreamWearsNothingOut();
    void coloursFollowThePalette();
    void savesWhatWasTrimmed();
    void fullDiskHarmsNothing();
};

void TestConsole::shownIsTheEndOfAll_data()
{
    QTest::addColumn<QList<Message>>("pattern");
    const Message info = text(Type::Information, "infoA");
    const Message lineBreak = make(Type::LineBreak);
    const Message error = text(Type::Error, "brokn");
    const Message debugRecord = debug(0x824C, 1, 0x9146, "debug");
    const Message mark = identified("mark", 7);
    QTest::newRow("errors") << QList<Message>{error};
    QTest::newRow("lines") << QList<Message>{info};
    QTest::newRow("lines with a carriage return") << QList<Message>{text(Type::Information, "infoA\r")};
    QTest::newRow("all kinds") << QList<Message>{error, debugRecord, info, error, info, info, mark, info,
        lineBreak, text(Type::Warning, "two\nlines"), lineBreak};
    QTest::newRow("in an open frame") << (QList<Message>{mark} + QList<Message>(6000, info));
    QTest::newRow("frames without end") << QList<Message>{mark, info, error};
}

void TestConsole::shownIsTheEndOfAll()
{
    QFETCH(const QList<Message>, pattern);
    Page page;
    page.receive(pattern, 40);
    QCOMPARE(page.whyWrong(), QString());
    const QStringList looks = page.looks();

    page.receive(pattern, live / 2);
    QVERIFY(page.comesToRest());
    QCOMPARE(page.whyWrong(), QString());
    QCOMPARE(page.earlier(), 0);
    page.receive(pattern, 2 * live);
    QVERIFY(page.comesToRest());
    QCOMPARE(page.whyWrong(), QString());
    const int kept = page.received - page.earlier();
    QVERIFY2(kept > live / 2 && kept < live * 5 / 4, qPrintable(QString::number(kept)));
    QCOMPARE(page.looks(), looks);

    // Slowly, so that the oldest are taken out step by step.
    for (int i = 0; i < 30; ++i) {
        page.receive(pattern, 20);
        QCoreApplication::processEvents();
    }
    QVERIFY(page.comesToRest());
    QCOMPARE(page.whyWrong(), QString());
    QVERIFY(page.received - page.earlier() < live * 5 / 4);
    QCOMPARE(page.looks(), looks);
    QVERIFY(page.isAtEnd());
}

void TestConsole::firstRecordsOfAnIterationAreShownAtOnce()
{
    Page page;
    for (int iteration = 0; iteration < 3; ++iteration) {
        page.receive(numbered(1000), 200);
        QCOMPARE(page.whyWrong(), QString());
        QCoreApplication::processEvents();
    }
    // But not all the time.
    const QList<Message> heavy{text(Type::Error, std::string(200, '\n'))};
    QVERIFY(QTest::qWaitFor([&] { return page.receive(heavy, 20), page.page.console().isFlooded(); }, 20000));
}

void TestConsole::paceOfWriting()
{
    using Reading = ConsolePace::Reading;
    QCoreApplication::processEvents();
    ConsolePace one;
    QVERIFY(one.mayWriteAtOnce(Reading::CaughtUp, false));
    QVERIFY2(!one.mayWriteAtOnce(Reading::CaughtUp, true), "the document is closed");
    QVERIFY(!one.isFlooded() && !one.isRefreshPending());
    one.addWritingTime(20'000'000);
    QVERIFY(one.mayWriteAtOnce(Reading::CaughtUp, false));
    ConsolePace other;
    QVERIFY(other.mayWriteAtOnce(Reading::NoConnection, false));
    QVERIFY2(!other.mayWriteAtOnce(Reading::CaughtUp, false), "the first has taken the time");
    QVERIFY(!one.mayWriteAtOnce(Reading::Behind, false));
    for (ConsolePace* pace : {&one, &other})
        QVERIFY(pace->isFlooded() && pace->isRefreshPending());

    QVERIFY2(!one.beginRefresh(false), "the flood goes on, and nobody looks");
    QVERIFY(!one.mayWriteAtOnce(Reading::Behind, false));
    QVERIFY(one.beginRefresh(true));
    QVERIFY2(!other.beginRefresh(true) && other.isRefreshPending(), "another one refreshes");
    one.endRefresh(false, false);
    QVERIFY(one.isFlooded());
    QSignalSpy due(&one, &ConsolePace::refreshDue);
    QVERIFY(due.wait());
    QVERIFY(one.beginRefresh(true));
    one.endRefresh(true, false);
    QVERIFY2(one.isFlooded() && one.isRefreshPending(), "entries wait");
    QVERIFY(due.wait());
    QVERIFY(one.beginRefresh(false));
    one.endRefresh(false, false);
    QVERIFY(!one.isFlooded() && !one.isRefreshPending());
    QVERIFY(one.mayWriteAtOnce(Reading::CaughtUp, false));

    // A sender that leaves no time for anything else is a flood, though all it sends can be read in time.
    const auto writesOn = [&](int milliseconds) {
        const bool mayWrite = one.mayWriteAtOnce(Reading::CaughtUp, false);
        if (mayWrite)
            one.addWritingTime(milliseconds * 1'000'000LL);
        QCoreApplication::processEvents();
        return mayWrite;
    };
    QCoreApplication::processEvents();
    QVERIFY(writesOn(9) && writesOn(9));
    QTest::qSleep(50);
    QVERIFY2(writesOn(9) && writesOn(9) && writesOn(9), "there was a pause");
    QVERIFY2(one.mayWriteAtOnce(Reading::NoConnection, false), "the window's own text");
    QVERIFY(!writesOn(9) && one.isFlooded());
    QVERIFY(one.beginRefresh(true));
    one.endRefresh(false, false);
    QVERIFY(due.wait() && one.beginRefresh(true));
    one.endRefresh(false, false);
    QVERIFY(!one.isFlooded() && !one.isRefreshPending());
    QCoreApplication::processEvents();

    int atOnce = 0;
    for (int i = 0; i < 1000; ++i)
        atOnce += one.mayWriteAtOnce(Reading::CaughtUp, false) ? 1 : 0;
    QVERIFY2(atOnce > 100 && atOnce < 500, "the rest of an iteration's entries wait");
    QVERIFY(due.wait());
    QVERIFY(!one.beginRefresh(false));
    QVERIFY(one.beginRefresh(true));
    one.endRefresh(false, false);

    // Once what may be taken in advance is used up, each iteration of the event loop has to wait.
    for (int second = 0; second < 60; ++second)
        one.addWritingTime(1'000'000'000);
    QCoreApplication::processEvents();
    QVERIFY(!one.mayWriteAtOnce(Reading::CaughtUp, false));
}

void TestConsole::oneViewRefreshesAtATime()
{
    Page one;
    Page other;
    one.receive(numbered(1000), live);
    other.receive(numbered(1000), live);
    int drawn = 0;
    for (const int before[] = {one.document().revision(), other.document().revision()}; drawn == 0;) {
        QCoreApplication::processEvents();
        drawn = int(one.document().revision() != before[0]) + int(other.document().revision() != before[1]);
    }
    QCOMPARE(drawn, 1);
    QVERIFY(one.comesToRest() && other.comesToRest());
    // Nothing is drawn in a flood for nobody.
    one.page.hide();
    one.receive(numbered(1000), live);
    const int before = one.document().revision();
    for (int i = 0; i < 30; ++i) {
        one.receive({text(Type::Information, "hidden")}, 5);
        QTest::qWait(10);
    }
    QCOMPARE(one.document().revision(), before);
    QVERIFY(one.comesToRest());
    QCOMPARE(one.whyWrong(), QString());
}

void TestConsole::heavyFrameHoldsNothingUp()
{
    Page page;
    std::string lines;
    for (int i = 0; i < 20; ++i)
        lines += "line\n";
    const QList<Message> pattern =
        QList<Message>{identified("mark", 7)} + QList<Message>(9999, text(Type::Information, lines));
    page.receive(pattern, live + live / 20);
    qint64 longest = 0;
    const auto comesToRest = [&] {
        QElapsedTimer time;
        time.start();
        for (qint64 end = 0; !page.page.console().isComplete() && end < 60000;) {
            const qint64 start = time.elapsed();
            QCoreApplication::processEvents();
            end = time.elapsed();
            longest = std::max(longest, end - start);
        }
        return page.whyWrong();
    };
    QCOMPARE(comesToRest(), QString());
    QVERIFY(page.received - page.earlier() > 40);
    for (int i = 0; i < 10; ++i) {
        page.receive(pattern, 1);
        QCOMPARE(comesToRest(), QString());
    }
    QVERIFY2(longest < 1000, qPrintable(QString::number(longest)));

    // What has to be written anew to show more is left as it is for a reader.
    page.receive(pattern, live);
    while (page.page.console().isFlooded())
        QCoreApplication::processEvents();
    QVERIFY(!page.page.console().isComplete());
    page.autoScroll->click();
    const int earlier = page.earlier();
    QCOMPARE(comesToRest(), QString());
    QCOMPARE(page.earlier(), earlier);
}

void TestConsole::heavyEntriesDoNotPileUp()
{
    QTextDocument text;
    ConsoleDocument document(&text);
    const std::string entry = console_entry::pack(records::text(Type::Information, std::string(8000, 'x')));
    for (int i = 0; i < live; ++i)
        document.enqueue({entry, 0, {}});
    QVERIFY(document.waiting() * entry.size() < 2'000'000);
    document.restart(1);
    QCOMPARE(console_oracle::earlierEntries(text), live - 1);

    // What is trimmed weighs nothing any more.
    document.clear();
    while (!document.isOverfull())
        document.append({entry, 0, {}});
    QVERIFY(document.trim(text.characterCount()));
    document.append({entry, 0, {}});
    QVERIFY(!document.isOverfull());
}

void TestConsole::steadyStreamWearsNothingOut_data()
{
    QTest::addColumn<bool>("flooded");
    QTest::newRow("heavy entries") << false;
    QTest::newRow("a flood that never ends") << true;
}

void TestConsole::steadyStreamWearsNothingOut()
{
    QFETCH(const bool, flooded);
    Page page;
    page.page.console().setRebuildAfter(100);
    const QList<Message> pattern{text(Type::Error, std::string(flooded ? 1 : 200, '\n'))};
    page.receive(pattern, flooded ? live : 0);
    qsizetype most = 0; // of which an entry leaves two behind
    for (int i = 0; i < 30; ++i) {
        const int before = page.document().revision();
        page.receive(pattern, flooded ? 5 : 10);
        QVERIFY(flooded ? QTest::qWaitFor([&] { return page.document().revision() != before; })
                        : page.comesToRest());
        QCOMPARE(page.page.console().isFlooded(), flooded);
        QVERIFY(page.document().blockCount() < 8 * live);
        most = std::max(most, page.document().allFormats().size());
    }
    QVERIFY2(most < 260, qPrintable(QString::number(most)));
    page.page.console().setRebuildAfter(100'000); // else filling up would wear it out again
    QVERIFY(page.comesToRest());
    QCOMPARE(page.whyWrong(), QString());
}

void TestConsole::coloursFollowThePalette()
{
    Page page;
    page.receive({debug(0x824C, 1, 0x9146, "debug"), identified("mark", 7), make(Type::LineBreak)}, 60);
    for (const bool following : {true, false}) {
        page.autoScroll->setChecked(following);
        QPalette palette = page.view->palette();
        palette.setColor(QPalette::Base, following ? QColor(9, 9, 9) : QColor(250, 250, 250));
        palette.setColor(QPalette::Text, following ? QColor(240, 240, 240) : QColor(4, 4, 4));
        page.view->setPalette(palette);
        QVERIFY(page.comesToRest());
        QVERIFY(
            page.looks().contains(following ? "GL_DE #f0f0f0#090909#808080" : "GL_DE #040404#fafafa#808080"));
        QCOMPARE(page.whyWrong(), QString());
    }
    page.receive({text(Type::Warning, "late")}, 4 * live);
    QVERIFY(page.comesToRest());
    const QString shown = page.document().toPlainText();
    QVERIFY(shown.endsWith(QStringLiteral("Auto-scroll\" to see them.")));
    QPalette palette = page.view->palette();
    palette.setColor(QPalette::Base, QColor(9, 9, 9));
    QScrollBar& bar = *page.view->verticalScrollBar();
    bar.setValue(bar.maximum() - 100);
    const int place = bar.value();
    page.view->setPalette(palette);
    QVERIFY(page.comesToRest());
    QCOMPARE(bar.value(), place);
    QVERIFY(page.looks().contains("GL_DE #040404#090909#808080"));
    QCOMPARE(page.document().toPlainText(), shown);
}

void TestConsole::savesWhatWasTrimmed()
{
    Page page;
    page.receive({text(Type::Error, "a < b & c"), text(Type::Information, "gr\xC3\xBC\xC3\x9F")}, 3 * live);
    const auto saved = [&page](const QString& name, bool savesStamps = false) {
        const QString path = QDir::tempPath() + QLatin1Char('/') + name;
        ConsoleSaver saver(&page.page.console(), &page.page);
        saver.setSavesStamps(savesStamps);
        saver.save(path);
        if (!QTest::qWaitFor([&saver] { return !saver.isSaving(); }, 60000))
            return QString();
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    };
    const QString plain = saved(QStringLiteral("console.txt"));
    QVERIFY(plain.startsWith(QStringLiteral("\n\nError\na < b & c\n\ngrüß\n\nError\n")));
    QCOMPARE(plain.count(QStringLiteral("grüß\n")), 3 * live / 2);
    const QString html = saved(QStringLiteral("console.html"));
    QCOMPARE(html.count(QStringLiteral(
                 "<div class=\"frame error\">a &lt; b &amp; c</div>\n<div class=\"line\">grüß")),
        3 * live / 2);
    QSignalSpy messages(&page.page.console(), &Console::statusMessage);
    QCOMPARE(saved(QStringLiteral("missing/console.txt")), QString());
    QCOMPARE(messages.count(), 1);
    QVERIFY(messages.at(0).at(0).toString().contains(QStringLiteral("not saved")));

    // Without waiting for a file that is being written.
    const platform::FileReplacement other(
        QFile::encodeName(QDir::tempPath() + QStringLiteral("/busy.txt")).toStdString());
    QElapsedTimer time;
    time.start();
    QCOMPARE(saved(QStringLiteral("busy.txt")), QString());
    QVERIFY(time.elapsed() < 2000);
    QVERIFY(messages.at(1).at(0).toString().endsWith(QStringLiteral("it is being written already")));

    page.page.findChild<QPushButton*>(QStringLiteral("btnClear"))->click();
    page.receive({text(Type::Information, "after")}, 1);
    QCOMPARE(saved(QStringLiteral("console.txt")), QStringLiteral("after\n"));
    page.page.receive(text(Type::Error, "two\nlines", 42));
    page.page.receive(text(Type::Information, "no frame", 0xFFFFFFFF));
    const QString stamped = saved(QStringLiteral("console.txt"), true);
    const QString when = QStringLiteral("\\d\\d:\\d\\d:\\d\\d\\.\\d{3} ");
    const QRegularExpression wanted(
        QStringLiteral("^%1      1  after\n\n%1     42  Error\ntwo\nlines\n\n%1      -  no frame\n$")
            .arg(when));
    QVERIFY2(wanted.match(stamped).hasMatch(), qPrintable(stamped));
    page.page.setName(QStringLiteral("a/b c"));
    page.page.setPid(4711);
    page.page.findChild<QPushButton*>(QStringLiteral("btnSaveConsole"))->click();
    const QString proposed =
        QFileInfo(page.page.findChild<QFileDialog*>()->selectedFiles().value(0)).fileName();
    QVERIFY2(
        QRegularExpression(QStringLiteral("^a-b-c-4711-\\d{8}-\\d{6}\\.txt$")).match(proposed).hasMatch(),
        qPrintable(proposed));
    QVERIFY2(qobject_cast<QTextEdit*>(page.page.focusWidget()), "and not \"Clear\"");
}

void TestConsole::fullDiskHarmsNothing()
{
    const QByteArray folder = qgetenv("TMPDIR");
    Page page;
    QSignalSpy messages(&page.page.console(), &Console::statusMessage);
    const auto kept = [&page] {
        ConsoleText text;
        ConsoleSpool::Reader reader(page.page.console().spool());
        for (std::string_view entry; reader.next(entry);)
            console_entry::write(entry, text);
        return text.take();
    };
    QList<Message> lines;
    for (int i = 0; i < 1000; ++i)
        lines.append(text(Type::Information, std::to_string(i) + std::string(1000, 'x')));
    // The number of the line behind those that are kept or said to be missing, all in order.
    const auto nextLine = [&kept] {
        qsizetype next = 0;
        for (const QString& line : kept().split(QLatin1Char('\n'))) {
            const qsizetype number = line.left(line.indexOf(QRegularExpression("\\D"))).toInt();
            if (line.endsWith(QStringLiteral(" entries are missing here: there was no room on the disk.")))
                next += number;
            else if (number != next++ || !line.endsWith(QStringLiteral("xxx")))
                return -1 - next;
        }
        return next;
    };
    std::signal(SIGXFSZ, SIG_IGN);
    // A write beyond the limit is cut short, and the next one fails, as on a disk that fills up.
    const auto fillDisk = [&page, &lines] {
        rlimit former{};
        getrlimit(RLIMIT_FSIZE, &former);
        const rlimit full{400'000, former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
        page.receive(lines, 300);
        setrlimit(RLIMIT_FSIZE, &former);
    };
    page.receive(lines, 200);
    fillDisk();
    page.receive(lines, 100);
    QCOMPARE(nextLine(), 600);
    fillDisk();
    QCOMPARE(nextLine(), 900);
    QCOMPARE(kept().count(QStringLiteral("are missing here")), 2);
    page.receive(lines, 100);
    QCOMPARE(nextLine(), lines.size());
    QVERIFY(page.comesToRest());
    QCOMPARE(messages.count(), 2);
    const QStringList shown = page.document().toPlainText().split(QLatin1Char('\n'));
    QCOMPARE(shown.size(), lines.size());
    QVERIFY(shown.last().startsWith(QStringLiteral("999xxx")));

    // Right after what was collected could not be written either.
    qputenv("TMPDIR", folder + "/missing");
    page.page.console().clear();
    for (int i = 0; i < 1000 && !kept().endsWith(QStringLiteral("on the disk.")); ++i)
        page.receive({text(Type::Error, std::string(1000, 'x'))}, 1);
    qputenv("TMPDIR", folder);
    QVERIFY(kept().endsWith(QStringLiteral("on the disk.")));
}

QTEST_MAIN(TestConsole)
#include "TestConsole.moc"
