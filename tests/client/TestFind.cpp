#include "Client.h"
#include "ConsolePage.h"
#include "FindBar.h"
#include "ItemFind.h"
#include "Resources.h"
#include "ScrollBarMarks.h"
#include "TextFind.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStandardItemModel>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeView>

using namespace console_page;
using namespace records;

Q_DECLARE_METATYPE(FindQuery)

class TestFind : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerResources(); }

    void patterns_data();
    void patterns();
    void brokenAndHardExpressions();
    void linesAreThoseThatAreShown();
    void wholeConsoleIsSearched();
    void matchesAreCountedInOrder();
    void consoleMayChangeMeanwhile();
    void cellsAreFound();
    void plainTextIsFound();
    void consoleIsSearchedFromTheReader();
    void viewsAreSearchedFromTheReader();
    void firstMatchIsInSight();
    void barIsOnlyALine();

private:
    struct Bar {
        explicit Bar(QWidget* page)
            : bar(page->findChild<FindBar*>(QStringLiteral("findBar"), Qt::FindDirectChildrenOnly))
        {
        }
        QString count() const { return bar->findChild<QLabel*>(QStringLiteral("lblFindCount"))->text(); }
        void type(const QString& text) const
        {
            bar->open();
            edit()->setText(text);
        }
        void press(const char* button) const { bar->findChild<QToolButton*>(QLatin1String(button))->click(); }
        QLineEdit* edit() const { return bar->findChild<QLineEdit*>(QStringLiteral("editFind")); }

        FindBar* bar;
    };
    static QWidget* consoleTab(Page& page)
    {
        return page.page.findChild<QWidget*>(QStringLiteral("tab_console"));
    }
};

void TestFind::patterns_data()
{
    QTest::addColumn<FindQuery>("query");
    QTest::addColumn<QString>("lines");
    QTest::addColumn<int>("matches");
    QTest::addColumn<int>("start");
    const auto row = [](const char* name, const FindQuery& query, const QString& lines, int matches,
                         int start) {
        QTest::newRow(name) << query << lines << matches << start;
    };
    const QString word = QStringLiteral("glTex");
    row("any case", {word}, QStringLiteral("a gltex and GLTEX\nglTex"), 3, 2);
    row("case", {word, true}, QStringLiteral("a gltex and glTex"), 1, 12);
    row("whole words", {word, false, true}, QStringLiteral("glTexture glTex _glTex glTex"), 2, 10);
    row("whole words beyond ASCII", {word, false, true}, QStringLiteral("äglTex glTexö glTex"), 1, 14);
    row("no overlaps", {QStringLiteral("aa")}, QStringLiteral("aaaaa"), 2, 0);
    row("beyond ASCII", {QStringLiteral("GRÖSSE")}, QStringLiteral("die größe, die Grösse"), 1, 15);
    row("beyond ASCII in plain text", {QStringLiteral("ö")}, QStringLiteral("plain"), 0, -1);
    row("other case is ASCII", {QString(QChar(0x212A))}, QStringLiteral("a k"), 1, 2);
    row("expression", {QStringLiteral("gl\\w+\\b"), false, false, true}, QStringLiteral("glA glB\nglC x"), 3,
        0);
    row("expression of a word", {QStringLiteral("a|b"), true, true, true}, QStringLiteral("ab a b A"), 2, 3);
    row("empty matches do not count", {QStringLiteral("x*"), false, false, true}, QStringLiteral("axxbx"), 2,
        1);
    row("no match beyond a line", {QStringLiteral("a\\sb"), false, false, true}, QStringLiteral("a\nb"), 0,
        -1);
    row("nothing", {}, QStringLiteral("a"), 0, -1);
}

void TestFind::patterns()
{
    QFETCH(const FindQuery, query);
    QFETCH(const QString, lines);
    QFETCH(const int, matches);
    QFETCH(const int, start);
    const FindPattern pattern(query);
    QCOMPARE(static_cast<int>(pattern.count(lines.toStdString())), matches);
    if (!lines.contains(QLatin1Char('\n')))
        QCOMPARE(static_cast<int>(pattern.find(lines).start), start);
}

void TestFind::brokenAndHardExpressions()
{
    const FindPattern broken({QStringLiteral("gl(Tex"), false, false, true});
    QVERIFY(broken.isEmpty() && !broken.error().isEmpty());
    QCOMPARE(static_cast<int>(broken.errorPlace()), 6);
    const FindPattern hard({QStringLiteral("(a+)+$"), false, false, true});
    QElapsedTimer time;
    time.start();
    QCOMPARE(static_cast<int>(hard.count(std::string(30, 'a') + "b")), 0);
    QVERIFY(hard.hasGivenUp());
    QVERIFY(time.elapsed() < 1000);
}

/// What is searched in the bytes of an entry is what the console shows of it.
void TestFind::linesAreThoseThatAreShown()
{
    const QList<Message> all{text(Type::Information, "line\twith tab\nand more"), make(Type::LineBreak),
        text(Type::Warning, "50 % of it"), text(Type::Error, "caf\xC3\xA9\r\nend \x01"),
        identified("name %1\nof two lines", 0x80000000U), debug(0x824C, 7, 0x9146, "a message"),
        debug(1, 2, 3, "umlaut \xC3\xBC"), glError(0x0500, "glEnable", "of \x7f"), glError(7, "f\tg", "why"),
        glError(0x0502, "glDraw", "no program"), text(Type::Information, "")};
    for (const Message& record : all) {
        const std::string entry = console_entry::pack(record);
        std::string lines;
        console_entry::appendLines(entry, lines);
        ConsoleText shown;
        console_entry::write(entry, shown);
        QCOMPARE(QString::fromStdString(lines).split(QLatin1Char('\n'), Qt::SkipEmptyParts),
            shown.take().split(QLatin1Char('\n'), Qt::SkipEmptyParts));
    }
}

void TestFind::wholeConsoleIsSearched()
{
    Page page;
    page.receive(numbered(9000), 9000);
    QVERIFY(page.comesToRest());
    const Bar bar(consoleTab(page));
    // From the reader's place, which is the end, on.
    bar.type(QStringLiteral("line 4242"));
    QTRY_COMPARE(bar.count(), QStringLiteral("1 of 1 \u2013 continued from the start"));
    QCOMPARE(page.view->textCursor().selectedText(), QStringLiteral("line 4242"));
    const int line = page.view->fontMetrics().lineSpacing();
    QVERIFY2(page.view->viewport()->rect().adjusted(0, line, 0, -line).contains(page.view->cursorRect()),
        "with the lines around it");
    QTRY_VERIFY(!page.view->extraSelections().isEmpty());
    bar.type(QStringLiteral("7777"));
    QTRY_COMPARE(page.view->textCursor().block().text(), QStringLiteral("line 7777"));
    bar.type(QStringLiteral("nowhere"));
    QTRY_COMPARE(bar.count(), QStringLiteral("No matches"));
    bar.press("btnFindExpression");
    bar.type(QStringLiteral("line 1(23|24)5$"));
    QTRY_COMPARE(bar.count(), QStringLiteral("1 of 2 \u2013 continued from the start"));
    bar.type(QStringLiteral("line ("));
    QVERIFY2(bar.count().startsWith(QStringLiteral("Character 7: ")), qPrintable(bar.count()));
    bar.bar->close();
    QVERIFY(page.view->extraSelections().isEmpty());
}

void TestFind::matchesAreCountedInOrder()
{
    Page page;
    for (int i = 0; i < 3000; ++i) {
        const bool matches = i % 1000 == 0;
        page.receive({text(Type::Error, matches ? "needle and\nneedle" : "hay")}, 1);
    }
    QVERIFY(page.comesToRest());
    page.page.console().showEntry(0);
    QTextCursor cursor = page.view->textCursor();
    cursor.clearSelection();
    page.view->setTextCursor(cursor);
    const Bar bar(consoleTab(page));
    bar.type(QStringLiteral("needle"));
    QTRY_COMPARE(bar.count(), QStringLiteral("1 of 6"));
    for (const char* count :
        {"2 of 6", "3 of 6", "4 of 6", "5 of 6", "6 of 6", "1 of 6 \u2013 continued from the start"}) {
        QTest::keyClick(bar.edit(), Qt::Key_Return);
        QTRY_COMPARE(bar.count(), QString::fromUtf8(count));
        QCOMPARE(page.view->textCursor().selectedText(), QStringLiteral("needle"));
    }
    QTest::keyClick(bar.edit(), Qt::Key_Return, Qt::ShiftModifier);
    QTRY_COMPARE(bar.count(), QStringLiteral("6 of 6 \u2013 continued from the end"));
    QCOMPARE(page.view->textCursor().block().text(), QStringLiteral("needle"));
    bar.press("btnFindPrevious");
    QCOMPARE(bar.count(), QStringLiteral("5 of 6"));
    QCOMPARE(page.view->textCursor().block().text(), QStringLiteral("needle and"));
    auto* marks = page.view->verticalScrollBar()->findChild<ScrollBarMarks*>();
    QTRY_VERIFY(marks->count() > 0);
    QTest::keyClick(bar.edit(), Qt::Key_Escape);
    QVERIFY(bar.bar->isHidden() && marks->count() == 0);
}

void TestFind::consoleMayChangeMeanwhile()
{
    Page page;
    page.receive({text(Type::Information, "one needle")}, 3000);
    const Bar bar(consoleTab(page));
    bar.type(QStringLiteral("needle"));
    QTRY_VERIFY(bar.count().endsWith(QStringLiteral("of 3,000")));
    page.receive({text(Type::Information, "one needle")}, 500);
    QTRY_VERIFY(bar.count().endsWith(QStringLiteral("of 3,500")));
    page.page.console().clear();
    QTRY_COMPARE(bar.count(), QStringLiteral("No matches"));
    page.receive({text(Type::Information, "one needle")}, 1);
    QTRY_VERIFY(bar.count().startsWith(QStringLiteral("1 ")));
    // A selection becomes the text.
    page.view->selectAll();
    bar.bar->open();
    QCOMPARE(bar.edit()->text(), QStringLiteral("one needle"));
}

void TestFind::cellsAreFound()
{
    QStandardItemModel model(0, 2);
    for (int i = 0; i < 300; ++i) {
        auto* item = new QStandardItem(QStringLiteral("row %1").arg(i));
        item->appendRow(
            {new QStandardItem(QStringLiteral("key")), new QStandardItem(QStringLiteral("value %1").arg(i))});
        model.appendRow(item);
    }
    QWidget page;
    QTreeView view(&page);
    view.setModel(&model);
    view.resize(300, 300);
    ItemFind find(&page);
    find.setViews({&view});
    const Bar bar(new FindBar(&find, &page) ? &page : nullptr);
    page.show();
    bar.type(QStringLiteral("Value 29"));
    QTRY_COMPARE(bar.count(), QStringLiteral("1 of 11"));
    QCOMPARE(view.currentIndex().data().toString(), QStringLiteral("value 29"));
    QVERIFY(view.viewport()->rect().intersects(view.visualRect(view.currentIndex())));
    bar.bar->go(Findable::Direction::Backward);
    QCOMPARE(bar.count(), QStringLiteral("11 of 11 \u2013 continued from the end"));
    model.appendRow(new QStandardItem(QStringLiteral("VALUE 292")));
    QTRY_VERIFY(bar.count().startsWith(QStringLiteral("11 of 12")));
    model.removeRows(0, 100);
    QTRY_COMPARE(bar.count(), QStringLiteral("11 matches"));
    bar.bar->go(Findable::Direction::Forward);
    QCOMPARE(view.currentIndex().data().toString(), QStringLiteral("value 299"));
    model.clear();
    QTRY_COMPARE(bar.count(), QStringLiteral("No matches"));
}

void TestFind::plainTextIsFound()
{
    QWidget page;
    QPlainTextEdit view(&page);
    view.setPlainText(QStringLiteral("Alpha\nbeta alpha\ngamma"));
    TextFind find(&view);
    const Bar bar(new FindBar(&find, &page) ? &page : nullptr);
    page.show();
    bar.type(QStringLiteral("alpha"));
    QCOMPARE(bar.count(), QStringLiteral("1 of 2"));
    bar.press("btnFindNext");
    QCOMPARE(view.textCursor().selectionStart(), 11);
    bar.press("btnFindCase");
    QCOMPARE(bar.count(), QStringLiteral("1 of 1"));
    view.setPlainText(QStringLiteral("alpha alpha alpha"));
    QTRY_COMPARE(bar.count(), QStringLiteral("3 matches"));
}

/// After the reader has moved away from the last match.
void TestFind::consoleIsSearchedFromTheReader()
{
    Page page;
    for (int i = 0; i < 3000; ++i) {
        const bool matches = i % 1000 == 0;
        page.receive({text(Type::Error, matches ? "needle and\nneedle" : "hay")}, 1);
    }
    QVERIFY(page.comesToRest());
    const Bar bar(consoleTab(page));
    bar.type(QStringLiteral("needle"));
    QTRY_VERIFY(bar.count().contains(QStringLiteral("of 6")));
    const auto goFrom = [&](std::uint64_t serial, const char* button) {
        page.page.console().showEntry(serial);
        bar.press(button);
        return bar.count();
    };
    QCOMPARE(goFrom(1500, "btnFindNext"), QStringLiteral("5 of 6"));
    QCOMPARE(goFrom(1500, "btnFindPrevious"), QStringLiteral("4 of 6"));
    QCOMPARE(goFrom(1000, "btnFindNext"), QStringLiteral("5 of 6"));
    QCOMPARE(goFrom(1000, "btnFindPrevious"), QStringLiteral("2 of 6"));
    QCOMPARE(goFrom(2500, "btnFindNext"), QStringLiteral("1 of 6 \u2013 continued from the start"));
    // A click between two matches of an entry.
    QTest::mouseClick(
        page.view->viewport(), Qt::LeftButton, {}, page.view->cursorRect().center() + QPoint(150, 0));
    QCOMPARE(page.view->textCursor().block().text(), QStringLiteral("needle and"));
    bar.press("btnFindNext");
    QCOMPARE(bar.count(), QStringLiteral("2 of 6"));
    bar.press("btnFindNext");
    QCOMPARE(bar.count(), QStringLiteral("3 of 6"));
}

void TestFind::viewsAreSearchedFromTheReader()
{
    QWidget page;
    QPlainTextEdit text(QStringLiteral("Alpha\nbeta alpha\ngamma"), &page);
    TextFind inText(&text);
    const Bar textBar(new FindBar(&inText, &page) ? &page : nullptr);
    page.show();
    textBar.type(QStringLiteral("alpha"));
    const auto goInText = [&](int position, Findable::Direction direction) {
        QTextCursor cursor = text.textCursor();
        cursor.setPosition(position);
        text.setTextCursor(cursor);
        textBar.bar->go(direction);
        return textBar.count();
    };
    QCOMPARE(
        goInText(20, Findable::Direction::Forward), QStringLiteral("1 of 2 \u2013 continued from the start"));
    QCOMPARE(goInText(20, Findable::Direction::Backward), QStringLiteral("2 of 2"));
    QCOMPARE(goInText(8, Findable::Direction::Backward), QStringLiteral("1 of 2"));

    QStandardItemModel model(0, 1);
    for (int i = 0; i < 30; ++i) {
        auto* item = new QStandardItem(QStringLiteral("row %1").arg(i));
        item->appendRow(new QStandardItem(QStringLiteral("value %1").arg(i)));
        model.appendRow(item);
    }
    QWidget treePage;
    QTreeView tree(&treePage);
    tree.setModel(&model);
    ItemFind inTree(&treePage);
    inTree.setViews({&tree});
    const Bar treeBar(new FindBar(&inTree, &treePage) ? &treePage : nullptr);
    treePage.show();
    treeBar.type(QStringLiteral("Value 2"));
    QTRY_COMPARE(treeBar.count(), QStringLiteral("1 of 11"));
    const auto goInTree = [&](const QModelIndex& row, Findable::Direction direction) {
        tree.setCurrentIndex(row);
        treeBar.bar->go(direction);
        return treeBar.count();
    };
    const QModelIndex row25 = model.index(25, 0);
    QCOMPARE(goInTree(row25, Findable::Direction::Forward), QStringLiteral("7 of 11"));
    QCOMPARE(goInTree(row25, Findable::Direction::Backward), QStringLiteral("6 of 11"));
    // The reader sees what is in that row already.
    QCOMPARE(goInTree(model.index(0, 0, row25), Findable::Direction::Forward), QStringLiteral("8 of 11"));
    QCOMPARE(goInTree(model.index(10, 0), Findable::Direction::Backward), QStringLiteral("1 of 11"));
}

/// Opening the bar makes the view smaller, which keeps what it shows.
void TestFind::firstMatchIsInSight()
{
    Page page;
    page.receive({text(Type::Error, "hay")}, 30);
    page.receive({text(Type::Error, "needle")}, 1);
    page.receive({text(Type::Error, "hay")}, 30);
    QVERIFY(page.comesToRest());
    const Bar bar(consoleTab(page));
    bar.type(QStringLiteral("needle"));
    bar.bar->close();
    page.autoScroll->setChecked(false);
    page.view->moveCursor(QTextCursor::Start);
    QCoreApplication::processEvents();
    QVERIFY(page.view->verticalScrollBar()->value() < 20);
    bar.bar->open();
    QTRY_COMPARE(bar.count(), QStringLiteral("1 of 1"));
    QCoreApplication::processEvents();
    QVERIFY(page.view->viewport()->rect().contains(page.view->cursorRect()));
}

/// Also on a page that has nothing to look at.
void TestFind::barIsOnlyALine()
{
    Page page;
    page.page.resize(700, 600);
    page.page.show();
    QVERIFY(QTest::qWaitForWindowActive(&page.page));
    auto* tabs = page.page.findChild<QTabWidget*>(QStringLiteral("tabWidget"));
    auto* contexts = page.page.findChild<QWidget*>(QStringLiteral("tab_contextInfo"));
    tabs->setCurrentWidget(contexts);
    tabs->tabBar()->setFocus();
    const Bar bar(contexts);
    bar.type(QStringLiteral("a"));
    QTRY_COMPARE(bar.bar->height(), bar.bar->sizeHint().height());
    QVERIFY(bar.edit()->hasFocus());
    QTest::keyClick(bar.edit(), Qt::Key_Escape);
    QVERIFY(bar.bar->isHidden());
    QVERIFY2(tabs->tabBar()->hasFocus(), "the focus is lost");
}

QTEST_MAIN(TestFind)
#include "TestFind.moc"
