#include "Client.h"
#include "ConsoleMargin.h"
#include "ConsolePage.h"
#include "OutlinedStyle.h"
#include "Resources.h"
#include "Theme.h"

#include <QDateTime>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>

using namespace console_page;
using namespace records;

/// What stands beside the text of a console, and what is folded there.
class TestConsoleMargin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerResources(); }
    void cleanup() { theme::apply(Theme::System); }

    void timesAndFramesStandBesideTheirEntries();
    void scrollingTakesThemAlong();
    void foldedEntriesAreCounted();
    void numbersHaveRoom();
    void colorsCanBeRead_data();
    void colorsCanBeRead();
    void repeatsAreFolded();
    void repeatsAreCountedFromTheFirstOn();
    void groupsAreFolded();
    void groupsAreFoldedByKeys();

private:
    /// The parts of a picture with something in them, from left to right. Those that stand at least so many
    /// pixels apart are parts of their own.
    static QList<QImage> partsOf(const QImage& picture)
    {
        constexpr int apart = 7;
        const auto isEmpty = [&picture, ground = picture.pixel(0, 0)](const QRect& rect) {
            for (int y = rect.top(); y <= rect.bottom(); ++y) {
                for (int x = rect.left(); x <= rect.right(); ++x) {
                    if (picture.pixel(x, y) != ground)
                        return false;
                }
            }
            return true;
        };
        QList<QImage> parts;
        QRect part;
        const auto take = [&] {
            while (isEmpty({part.left(), part.top(), part.width(), 1}))
                part.setTop(part.top() + 1);
            while (isEmpty({part.left(), part.bottom(), part.width(), 1}))
                part.setBottom(part.bottom() - 1);
            parts.append(picture.copy(part));
            part = {};
        };
        for (int x = 0; x < picture.width(); ++x) {
            if (isEmpty({x, 0, 1, picture.height()}))
                continue;
            if (!part.isNull() && x - part.right() > apart)
                take();
            part = QRect(QPoint(part.isNull() ? x : part.left(), 0), QPoint(x, picture.height() - 1));
        }
        if (!part.isNull())
            take();
        return parts;
    }
    /// What the margin shows beside a place in the text.
    static QList<QImage> partsBeside(Page& page, const QTextCursor& place)
    {
        ConsoleMargin& margin = page.page.consoleMargin();
        const QPoint top = page.view->viewport()->mapTo(&page.page, page.view->cursorRect(place).topLeft());
        const int y = margin.mapFrom(&page.page, top).y();
        const QImage picture = margin.grab().toImage().convertToFormat(QImage::Format_RGB32);
        return partsOf(picture.copy(0, y, picture.width(), page.view->fontMetrics().height()));
    }
    static QList<QImage> partsBeside(Page& page, const char* words)
    {
        QTextCursor place = page.document().find(QString::fromUtf8(words));
        place.movePosition(QTextCursor::StartOfBlock);
        return partsBeside(page, place);
    }
    /// The same text as the margin has to draw it.
    static QImage drawn(Page& page, const QString& text)
    {
        const QFontMetrics metrics = page.view->fontMetrics();
        QImage picture(metrics.horizontalAdvance(text) + 20, metrics.height(), QImage::Format_RGB32);
        picture.fill(page.page.consoleMargin().palette().color(QPalette::Window));
        QPainter painter(&picture);
        painter.setFont(page.view->font());
        painter.setPen(page.view->palette().color(QPalette::PlaceholderText));
        painter.drawText(
            QRect(0, 0, picture.width() - 10, picture.height()), Qt::AlignRight | Qt::AlignVCenter, text);
        painter.end();
        return partsOf(picture).value(0);
    }
    /// Adds an entry that arrives so many milliseconds after 01:02:03.
    static void add(Page& page, const std::string& words, int milliseconds, std::uint32_t frame)
    {
        page.page.console().add(text(Type::Information, words, frame), ConsolePace::Reading::NoConnection,
            QDateTime(QDate(2024, 5, 17), QTime(1, 2, 3).addMSecs(milliseconds)).toMSecsSinceEpoch());
    }
};

void TestConsoleMargin::timesAndFramesStandBesideTheirEntries()
{
    Page page;
    ConsoleMargin& margin = page.page.consoleMargin();
    const int widthWithout = page.view->viewport()->width();
    QVERIFY(margin.isHidden());
    margin.setStampsShown(true);
    add(page, "one\nof two lines", 4, 7);
    add(page, "without a frame", 5000, ui::messages::noFrame);
    add(page, "late", 3600'000, 123456);
    QVERIFY(page.comesToRest());
    const auto expected = [&page](const char* time, const char* frame) {
        QList<QImage> parts{drawn(page, QLatin1String(time))};
        if (*frame)
            parts.append(drawn(page, QLatin1String(frame)));
        return parts;
    };
    QTRY_COMPARE(partsBeside(page, "one"), expected("01:02:03.004", "7"));
    QCOMPARE(partsBeside(page, "of two"), QList<QImage>());
    QCOMPARE(partsBeside(page, "without"), expected("01:02:08.000", ""));
    QCOMPARE(partsBeside(page, "late"), expected("02:02:03.000", "123456"));
    margin.setStampsShown(false);
    QVERIFY(margin.isHidden());
    QTRY_COMPARE(page.view->viewport()->width(), widthWithout);
}

void TestConsoleMargin::scrollingTakesThemAlong()
{
    Page page;
    page.page.consoleMargin().setStampsShown(true);
    for (int i = 0; i < 300; ++i)
        add(page, "line " + std::to_string(i), i, static_cast<std::uint32_t>(i));
    QVERIFY(page.comesToRest());
    page.autoScroll->setChecked(false);
    for (const int place : {0, 1003, page.view->verticalScrollBar()->maximum()}) {
        page.view->verticalScrollBar()->setValue(place);
        QTextCursor line = page.view->cursorForPosition({300, page.view->viewport()->height() / 2});
        line.movePosition(QTextCursor::StartOfBlock);
        const int number = line.block().text().mid(5).toInt();
        const QString time = QTime(1, 2, 3).addMSecs(number).toString(QStringLiteral("HH:mm:ss.zzz"));
        QCOMPARE(partsBeside(page, line),
            QList<QImage>({drawn(page, time), drawn(page, QString::number(number))}));
    }
}

void TestConsoleMargin::foldedEntriesAreCounted()
{
    Page page;
    ConsoleMargin& margin = page.page.consoleMargin();
    page.page.console().setFoldsRepeats(true);
    margin.setRepeatsShown(true);
    for (int i = 0; i < 1204; ++i)
        add(page, "often", i, 1);
    add(page, "once", 0, 1);
    for (const Message& record : {identified("outer", 1), identified("inner", 2), text(Type::Error, "deep"),
             make(Type::LineBreak), make(Type::LineBreak)})
        page.page.receive(record);
    QVERIFY(page.comesToRest());
    const auto beside = [&page](const char* words, const QString& text) {
        const QImage found = partsBeside(page, words).value(0);
        return text.isEmpty() ? found.isNull() : found == drawn(page, text);
    };
    QTRY_VERIFY(beside("often", QString(QChar(0xD7)) + QStringLiteral(" 1,204")));
    QVERIFY(beside("once", {}) && beside("outer", {}));
    margin.setGroupsShown(true);
    QVERIFY(beside("outer", QString(QChar(0x25BE))));
    QVERIFY2(beside("inner", {}), "is folded with the one around it only");
    page.view->setTextCursor(page.document().find(QStringLiteral("deep")));
    QVERIFY(page.page.console().toggleGroupAtCursor());
    QTRY_VERIFY(beside("outer", QString(QChar(0x25B8)) + QStringLiteral(" 3")));
}

/// Also for those with more digits than most.
void TestConsoleMargin::numbersHaveRoom()
{
    Page page;
    page.page.resize(1000, 400);
    ConsoleMargin& margin = page.page.consoleMargin();
    margin.setStampsShown(true);
    add(page, "usual", 0, 99'999);
    QVERIFY(page.comesToRest());
    QCoreApplication::processEvents();
    const int usual = margin.width();
    add(page, "unusual", 0, 4'000'000'000);
    QTRY_VERIFY(margin.width() > usual);
    const auto frameBeside = [&page](const char* words) {
        const QList<QImage> parts = partsBeside(page, words);
        return parts.isEmpty() ? QImage() : parts.last();
    };
    QCOMPARE(frameBeside("unusual"), drawn(page, QStringLiteral("4000000000")));
    QCOMPARE(frameBeside("usual"), drawn(page, QStringLiteral("99999")));
    QFont large = page.view->font();
    large.setPointSize(2 * large.pointSize());
    page.page.fontChanged(large);
    QTRY_COMPARE(frameBeside("unusual"), drawn(page, QStringLiteral("4000000000")));
}

void TestConsoleMargin::colorsCanBeRead_data()
{
    QTest::addColumn<int>("theme");
    QTest::newRow("light") << static_cast<int>(Theme::Light);
    QTest::newRow("dark") << static_cast<int>(Theme::Dark);
}

void TestConsoleMargin::colorsCanBeRead()
{
    QFETCH(const int, theme);
    theme::apply(static_cast<Theme>(theme));
    Page page;
    page.page.consoleMargin().setStampsShown(true);
    add(page, "entry", 0, 1);
    QVERIFY(page.comesToRest());
    const QImage time = partsBeside(page, "entry").value(0);
    QVERIFY(!time.isNull());
    const QColor ground = page.page.palette().color(QPalette::Window);
    double best = 1;
    for (int i = 0; i < time.width() * time.height(); ++i)
        best = std::max(
            best, OutlinedStyle::contrast(time.pixelColor(i % time.width(), i / time.width()), ground));
    QVERIFY2(best >= 4.5, qPrintable(QString::number(best)));
}

void TestConsoleMargin::repeatsAreFolded()
{
    Page page;
    Console& console = page.page.console();
    const auto shown = [&page] {
        QStringList entries;
        page.page.console().history().forEachShown([&](const ConsoleDocument::Shown& entry) {
            QTextCursor cursor(&page.document());
            cursor.setPosition(entry.range.start);
            cursor.setPosition(entry.range.end, QTextCursor::KeepAnchor);
            entries.append(
                QStringLiteral("%1x%2")
                    .arg(cursor.selectedText().remove(QRegularExpression(QStringLiteral("\\W"))).left(8))
                    .arg(entry.count));
            return true;
        });
        return entries.join(QLatin1Char(' '));
    };
    const QList<Message> mark{identified("mark", 1), make(Type::LineBreak)};
    const auto receive = [&page, &mark] {
        page.receive({text(Type::Information, "a")}, 3);
        page.receive({text(Type::Error, "b")}, 2);
        for (const Message& record : mark + mark)
            page.page.receive(record);
        page.receive({text(Type::Information, "a")}, 2);
    };
    const QString folded = QStringLiteral("ax3 Errorbx2 markID1x1 x1 markID1x1 x1 ax2");
    receive();
    QCOMPARE(shown().count(QLatin1Char('x')), 11);
    console.setFoldsRepeats(true);
    QCOMPARE(shown(), folded);
    receive(); // at once
    page.receive({text(Type::Warning, "w")}, 20'000); // in a flood
    page.receive({text(Type::Information, "end")}, 1);
    QVERIFY(page.comesToRest());
    QVERIFY2(shown().startsWith(folded.chopped(1) + QStringLiteral("5 Errorbx2")), qPrintable(shown()));
    QVERIFY2(shown().endsWith(QStringLiteral(" Warningwx20000 endx1")), qPrintable(shown()));
    QCOMPARE(page.earlier(), 0);
    // Each entry of those folded is there.
    QVERIFY(console.showEntry(5000));
    QCOMPARE(page.view->textCursor().block().text(), QStringLiteral("Warning"));
    const QString top = page.topLine();
    console.setFoldsRepeats(false);
    QCOMPARE(page.topLine(), top);
    page.autoScroll->click();
    QVERIFY(page.comesToRest());
    QCOMPARE(page.whyWrong(), QString());
    QVERIFY(page.earlier() > 10'000);
    console.setFoldsRepeats(true);
    QVERIFY(page.comesToRest());
    QVERIFY2(shown().endsWith(QStringLiteral(" Warningwx20000 endx1")), qPrintable(shown()));
    QCOMPARE(page.earlier(), 0);
}

/// Where earlier entries are brought back, they begin somewhere in the middle.
void TestConsoleMargin::repeatsAreCountedFromTheFirstOn()
{
    Page page;
    Console& console = page.page.console();
    const auto firstShown = [&console] {
        std::optional<ConsoleDocument::Shown> first;
        console.history().forEachShown([&first](const ConsoleDocument::Shown& entry) {
            first = entry;
            return false;
        });
        return first;
    };
    for (int i = 0; i < 1000; ++i)
        page.receive({text(Type::Information, "three times " + std::to_string(i))}, 3);
    page.receive({text(Type::Information, "often")}, 110'000);
    page.receive(numbered(1000), 1000);
    console.setFoldsRepeats(true);
    QVERIFY(page.comesToRest());
    for (const std::uint64_t serial : {1500U, 1501U, 1502U}) {
        QVERIFY(console.showEntry(0) && console.showEntry(serial));
        QVERIFY(firstShown()->serial > 0);
        QCOMPARE(firstShown()->count, std::uint64_t(3));
        QVERIFY(!firstShown()->isCut);
    }
    // Too many to be read at once: this is said.
    QVERIFY(console.showEntry(112'999));
    QVERIFY(firstShown()->isCut && firstShown()->count > 50'000);
}

void TestConsoleMargin::groupsAreFolded()
{
    Page page;
    Console& console = page.page.console();
    const auto line = [](const char* words) {
        return text(Type::Information, words);
    };
    for (const Message& record :
        {line("before"), identified("outer", 1), line("one"), identified("inner", 2), line("two"),
            make(Type::LineBreak), text(Type::Error, "three"), make(Type::LineBreak), line("behind")})
        page.page.receive(record);
    const QString all = page.document().toPlainText();
    const auto shown = [&page] {
        return page.document()
            .toPlainText()
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts)
            .join(QLatin1Char(' '));
    };
    console.setFoldsGroups(true);
    const QString folded = QStringLiteral("before outer (ID: 1) behind");
    QCOMPARE(shown(), folded);
    // A click in the margin opens the group, and closes it.
    ConsoleMargin& margin = page.page.consoleMargin();
    margin.setGroupsShown(true);
    QCoreApplication::processEvents();
    QTextCursor heading = page.document().find(QStringLiteral("outer"));
    const auto clickBesideHeading = [&] {
        const QPoint place =
            page.view->viewport()->mapTo(&page.page, page.view->cursorRect(heading).center());
        QTest::mouseClick(
            &margin, Qt::LeftButton, {}, margin.mapFrom(&page.page, QPoint(0, place.y())) + QPoint(4, 0));
        heading = page.document().find(QStringLiteral("outer"));
    };
    clickBesideHeading();
    QCOMPARE(page.document().toPlainText(), all);
    clickBesideHeading();
    QCOMPARE(shown(), folded);
    // New entries go into the group that is open, and into the view when it is left.
    for (const Message& record : {identified("next", 3), line("four"), line("five")})
        page.page.receive(record);
    QVERIFY(shown().endsWith(QStringLiteral("behind next (ID: 3)")));
    page.page.finish(QStringLiteral("The end"));
    QVERIFY(shown().endsWith(QStringLiteral("next (ID: 3) The end")));
    QVERIFY(console.showEntry(4));
    QCOMPARE(page.view->textCursor().block().text(), QStringLiteral("outer (ID: 1)"));
    console.setFoldsGroups(false);
    page.autoScroll->setChecked(true);
    QVERIFY(page.comesToRest());
    QCOMPARE(page.whyWrong(), QString());
}

void TestConsoleMargin::groupsAreFoldedByKeys()
{
    Page page;
    page.receive(numbered(400), 400);
    for (const Message& record : {identified("outer", 1), identified("inner", 2), text(Type::Error, "deep"),
             make(Type::LineBreak), make(Type::LineBreak)})
        page.page.receive(record);
    page.receive(numbered(900), 500);
    QVERIFY(page.comesToRest());
    QVERIFY(QTest::qWaitForWindowActive(&page.page));
    page.view->setFocus();
    const auto group = [&page] {
        const QString all = page.document().toPlainText();
        return all.mid(all.indexOf(QStringLiteral("outer"))).section(QStringLiteral("line"), 0, 0);
    };
    const QString unfolded = group();
    QStringList told;
    connect(&page.page.console(), &Console::statusMessage, &page.page,
        [&told](const QString& words) { told.append(words); });
    const auto foldAt = [&page](const char* words) {
        page.view->setTextCursor(page.document().find(QLatin1String(words)));
        QTest::keyClick(page.view, Qt::Key_F9);
        return page.view->textCursor().block().text();
    };
    QVERIFY(page.page.consoleMargin().isHidden());
    QCOMPARE(foldAt("deep"), QStringLiteral("outer (ID: 1)"));
    QVERIFY(!page.document().toPlainText().contains(QStringLiteral("deep")));
    QVERIFY2(!page.page.consoleMargin().isHidden(), "tells that something is folded");
    QVERIFY(!page.autoScroll->isChecked());
    const QRect inView = page.view->viewport()->rect();
    QVERIFY(inView.contains(page.view->cursorRect().center()));
    QCOMPARE(foldAt("outer"), QStringLiteral("outer (ID: 1)"));
    QCOMPARE(group(), unfolded);
    QVERIFY(page.page.consoleMargin().isHidden());
    QVERIFY(told.isEmpty());
    QCOMPARE(foldAt("line 399"), QStringLiteral("line 399"));
    QCOMPARE(told.size(), 1);
    // The menu of the console has it as well, for the place of the click.
    page.view->setTextCursor(page.document().find(QStringLiteral("inner")));
    page.view->ensureCursorVisible();
    const QPoint place = page.view->cursorRect().center();
    page.view->moveCursor(QTextCursor::StartOfBlock);
    Q_EMIT page.view->customContextMenuRequested(place);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    QVERIFY(menu);
    auto* fold = page.page.findChild<QAction*>(QStringLiteral("actionFoldGroup"));
    QVERIFY(menu->actions().contains(fold) && fold->shortcut() == QKeySequence(Qt::Key_F9));
    fold->trigger();
    menu->close();
    QVERIFY(!page.document().toPlainText().contains(QStringLiteral("inner")));
}

QTEST_MAIN(TestConsoleMargin)
#include "TestConsoleMargin.moc"
