#include "Client.h"
#include "ConsolePage.h"
#include "Resources.h"

#include <QPushButton>
#include <QSignalSpy>

using namespace console_page;
using namespace records;

/// What the reader of a console sees and has selected stays in place, whatever is written meanwhile.
class TestConsoleReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerResources(); }

    void readerStays();
    void newLayoutMovesNobody();
    void selectionOfTheFirstLineDoesNotGrow();
    void readerStopsFollowing();
    void wholeConsoleCanBeRead_data();
    void wholeConsoleCanBeRead();
    void entriesAreFoundAgain();
    void manyEntriesAreMissing();
};

void TestConsoleReader::readerStays()
{
    Page page;
    const QList<Message> lines = numbered(100'000);
    page.receive(lines, live);
    QScrollBar& bar = *page.view->verticalScrollBar();
    QVERIFY(QTest::qWaitFor(
        [&] { return !page.page.console().isFlooded() && bar.maximum() > 2 * bar.pageStep(); }, 60000));
    bar.triggerAction(QAbstractSlider::SliderPageStepSub);
    QVERIFY(!page.autoScroll->isChecked());
    const QString top = page.topLine();
    QVERIFY(!top.isEmpty());
    // Older entries are still being added before what is shown. Then enough comes to trim above the reader,
    // and at last more than the document can hold with what the reader sees.
    QVERIFY(!page.page.console().isComplete());
    for (const int more : {0, live / 2, 3 * live}) {
        page.receive(lines, more);
        QVERIFY(page.comesToRest());
        QCOMPARE(page.topLine(), top);
        QVERIFY(!page.isAtEnd());
    }
    const QStringList shown = page.document().toPlainText().split(QLatin1Char('\n'));
    QVERIFY(shown.last().endsWith(QStringLiteral("Auto-scroll\" to see them.")));
    for (int i = 1; i < shown.size() - 1; ++i)
        QCOMPARE(shown[i], QStringLiteral("line %1").arg(page.earlier() + i - 1));
    page.autoScroll->click();
    QVERIFY(page.comesToRest());
    QCOMPARE(page.whyWrong(), QString());
    QVERIFY(page.isAtEnd());

    page.page.console().setRebuildAfter(1);
    page.receive(lines, 1);
    page.view->selectAll();
    QVERIFY(!page.autoScroll->isChecked());
    const QString selected = page.view->textCursor().selectedText();
    QVERIFY(page.comesToRest());
    page.receive(lines, 2 * live);
    QVERIFY(page.comesToRest());
    QCOMPARE(page.view->textCursor().selectedText(), selected);

    // From the end upwards.
    page.page.console().setRebuildAfter(20 * static_cast<std::uint64_t>(live));
    page.autoScroll->click();
    QVERIFY(page.comesToRest());
    QTextCursor cursor(&page.document());
    cursor.movePosition(QTextCursor::End);
    cursor.movePosition(QTextCursor::Up, QTextCursor::KeepAnchor, 3);
    page.view->setTextCursor(cursor);
    const QString lastLines = cursor.selectedText();
    page.receive(lines, live / 2);
    QVERIFY(page.comesToRest());
    page.view->setPalette(QPalette(Qt::darkGray));
    const QTextCursor now = page.view->textCursor();
    QCOMPARE(now.selectedText(), lastLines);
    QVERIFY(now.position() < now.anchor());
}

void TestConsoleReader::newLayoutMovesNobody()
{
    Page page;
    const std::string words = " of many words that take more than one line of the view, in any width or font";
    for (int i = 0; i < 500; ++i)
        page.receive({text(Type::Information, std::to_string(i) + words)}, 1);
    QVERIFY(page.comesToRest());
    const auto layOutAnew = [&page](int width, int pointSize) {
        page.page.resize(width, 300 + width / 10);
        QFont font = page.view->font();
        font.setPointSize(pointSize);
        page.page.fontChanged(font);
        QTest::qWait(100);
    };
    layOutAnew(350, 9);
    QVERIFY(page.isAtEnd());
    layOutAnew(600, 16);
    QVERIFY(page.isAtEnd());

    for (int i = 0; i < 20; ++i)
        page.view->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepSub);
    const QString top = page.topLine();
    layOutAnew(700, 8);
    QCOMPARE(page.topLine(), top);
    page.page.resize(400, 500);
    QTest::qWait(100);
    QCOMPARE(page.topLine(), top);
    QFont font = page.view->font();
    font.setPointSize(17);
    page.page.fontChanged(font);
    QTest::qWait(100);
    QCOMPARE(page.topLine(), top);
    page.page.resize(500, 450);
    page.view->setPalette(QPalette(Qt::darkGray));
    QTest::qWait(100);
    QCOMPARE(page.topLine(), top);
}

void TestConsoleReader::selectionOfTheFirstLineDoesNotGrow()
{
    Page page;
    page.receive(numbered(5000), 5000);
    QVERIFY(QTest::qWaitFor([&page] { return !page.page.console().isFlooded(); }, 60000));
    QVERIFY(!page.page.console().isComplete());
    QTextCursor cursor(&page.document());
    cursor.setPosition(4, QTextCursor::KeepAnchor);
    page.view->setTextCursor(cursor);
    QVERIFY(page.comesToRest());
    QVERIFY(page.view->textCursor().selectedText().size() <= 4);
}

void TestConsoleReader::readerStopsFollowing()
{
    Page page;
    const QList<Message> lines = numbered(1000);
    page.receive(lines, 100);
    QVERIFY(page.comesToRest());
    QWidget* text = page.view->viewport();
    QWheelEvent wheel({9, 9}, text->mapToGlobal(QPoint(9, 9)), {}, {0, 120}, {}, {}, {}, false);
    QCoreApplication::sendEvent(text, &wheel);
    QVERIFY(!page.autoScroll->isChecked());
    page.autoScroll->click();
    for (const char* key : {"Ctrl+Home", "Up", "PgUp", "Shift+Space"}) {
        QVERIFY(page.autoScroll->isChecked() && page.isAtEnd());
        QTest::keySequence(page.view, QKeySequence(QLatin1String(key)));
        QTRY_VERIFY(!page.autoScroll->isChecked());
        page.autoScroll->click();
    }
    QTest::keyClick(page.view, Qt::Key_Control);
    QCoreApplication::processEvents();
    QVERIFY(page.autoScroll->isChecked());

    // Records that come between a press and the drag, too many to be appended, and after a click.
    QTest::mousePress(text, Qt::LeftButton, {}, {30, 100});
    const QTextCursor anchor = page.view->textCursor();
    const QString top = page.topLine();
    for (const int more : {5, live / 2, live, 3 * live}) {
        page.receive(lines, more);
        QVERIFY(page.comesToRest());
        QCOMPARE(page.view->textCursor(), anchor);
        QCOMPARE(page.topLine(), top);
    }
    QTest::mouseRelease(text, Qt::LeftButton, {}, {30, 100});
    QVERIFY(page.comesToRest());
    QVERIFY(page.autoScroll->isChecked() && page.isAtEnd());
    QCOMPARE(page.whyWrong(), QString());

    // Who asks for the end is no longer in the middle of a selection.
    QTest::mousePress(text, Qt::LeftButton, {}, {30, 100});
    page.autoScroll->click();
    page.autoScroll->click();
    page.receive(lines, 50);
    QVERIFY(page.comesToRest());
    QVERIFY(page.isAtEnd());
}

void TestConsoleReader::wholeConsoleCanBeRead_data()
{
    QTest::addColumn<QList<Message>>("between");
    QTest::newRow("lines") << QList<Message>{};
    QTest::newRow("errors") << QList<Message>{text(Type::Error, "an error\nof two lines")};
    QTest::newRow("in an open frame") << QList<Message>{identified("mark", 1), text(Type::Warning, "w")};
}

/// Scrolls through more than the document can hold, up to the first line and down again, while more arrives.
void TestConsoleReader::wholeConsoleCanBeRead()
{
    QFETCH(const QList<Message>, between);
    constexpr int count = 5000;
    Page page;
    for (int i = 0; i < count; ++i) {
        page.receive({text(Type::Information, "line " + std::to_string(i))}, 1);
        if (i % 50 == 0)
            page.receive(between, static_cast<int>(between.size()));
    }
    QVERIFY(page.comesToRest());
    QScrollBar& bar = *page.view->verticalScrollBar();
    const auto number = [](const QString& line) {
        return line.startsWith(QLatin1String("line ")) ? line.mid(5).toInt() : -1;
    };
    int last = count;
    const auto read = [&](QAbstractSlider::SliderAction action, int direction) {
        bar.triggerAction(action);
        QCoreApplication::processEvents();
        // No line between two looks at the view is left out.
        QTextBlock block = page.view->cursorForPosition(page.view->viewport()->rect().center()).block();
        while (block.next().isValid() && number(block.text()) < 0)
            block = block.next();
        const int line = number(block.text());
        const int step = direction * (line - last);
        last = line < 0 ? last : line;
        return line < 0 || (step >= 0 && step < 150);
    };
    int steps = 0;
    for (; last > 20 && steps < 2000; ++steps)
        QVERIFY2(read(QAbstractSlider::SliderPageStepSub, -1), qPrintable(QString::number(last)));
    QVERIFY2(last <= 20, qPrintable(QString::number(last)));
    page.receive({text(Type::Information, "new")}, 3000);
    QVERIFY(page.comesToRest());
    bar.setValue(0);
    QCOMPARE(number(page.topLine()), 0);
    for (steps = 0; last < count - 50 && steps < 2000; ++steps)
        QVERIFY2(read(QAbstractSlider::SliderPageStepAdd, 1), qPrintable(QString::number(last)));
    QVERIFY(last > count - 100);
    page.autoScroll->click();
    QVERIFY(page.comesToRest());
    QVERIFY(page.isAtEnd());
    QCOMPARE(page.whyWrong(), QString());
    // The keys go to the ends of everything.
    QTest::keySequence(page.view, QKeySequence::MoveToStartOfDocument);
    QCOMPARE(number(page.topLine()), 0);
    QTest::keySequence(page.view, QKeySequence::MoveToEndOfDocument);
    QVERIFY(page.autoScroll->isChecked());
    QVERIFY(page.comesToRest());
    QVERIFY(page.isAtEnd());
    // The line that counts the earlier entries leads to them.
    page.autoScroll->click();
    bar.setValue(0);
    const int earlier = page.earlier();
    QTest::mouseClick(page.view->viewport(), Qt::LeftButton, {}, {40, 8});
    QVERIFY(earlier > 0 && page.earlier() < earlier);
}

void TestConsoleReader::entriesAreFoundAgain()
{
    Page page;
    Console& console = page.page.console();
    const QList<Message> lines = numbered(100'000);
    page.receive(lines, 100);
    console.clear();
    QCOMPARE(console.entryCount(), 100U);
    page.receive(lines, 6000);
    QVERIFY2(!console.showEntry(99) && !console.showEntry(6100), "cleared, and not yet there");
    QVERIFY(page.autoScroll->isChecked());
    for (const int entry : {100, 3000, 3001, 2000, 6099, 101}) {
        QVERIFY(console.showEntry(static_cast<std::uint64_t>(entry)));
        QCOMPARE(page.view->textCursor().selectedText(), QStringLiteral("line %1").arg(entry));
        QVERIFY(page.view->viewport()->rect().contains(page.view->cursorRect()));
        QVERIFY(!page.autoScroll->isChecked());
        page.receive(lines, 10);
    }
    // What was selected stays so as long as it is near.
    console.showEntry(3000);
    page.view->setPalette(QPalette(Qt::darkGray));
    QVERIFY(page.comesToRest());
    QCOMPARE(page.view->textCursor().selectedText(), QStringLiteral("line 3000"));
    console.clear();
    page.receive(lines, 1);
    QVERIFY(page.comesToRest());
    QVERIFY(page.document().toPlainText().endsWith(QStringLiteral("line 6160")));
}

/// The disk has no room for so many entries that they would be too many to be read at once.
void TestConsoleReader::manyEntriesAreMissing()
{
    Page page;
    Console& console = page.page.console();
    const QByteArray folder = qgetenv("TMPDIR");
    const QList<Message> lines = numbered(70'000);
    qputenv("TMPDIR", folder + "/missing");
    page.receive(lines, 60'000);
    qputenv("TMPDIR", folder);
    page.receive(lines, 10'000);
    QVERIFY(page.comesToRest());
    for (const std::uint64_t entry : {0U, 5'000U}) {
        QVERIFY(console.showEntry(entry));
        const QString shown = page.document().toPlainText();
        QVERIFY2(shown.contains(QStringLiteral(" entries are missing here")), qPrintable(shown.left(200)));
        QVERIFY2(shown.count(QLatin1Char('\n')) >= 200, "with entries behind them");
        page.view->verticalScrollBar()->setValue(0);
        QCoreApplication::processEvents();
        QCOMPARE(page.earlier(), 0);
    }
    QVERIFY(console.showEntry(69'000));
    QCOMPARE(page.view->textCursor().selectedText(), QStringLiteral("line 69000"));
    page.autoScroll->click();
    QVERIFY(page.comesToRest());
    QVERIFY(page.document().toPlainText().endsWith(QStringLiteral("line 69999")));
}

QTEST_MAIN(TestConsoleReader)
#include "TestConsoleReader.moc"
