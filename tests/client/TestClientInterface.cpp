#include "ClientInterface.h"
#include "ConnectedClient.h"
#include "Console.h"
#include "ConsoleEntry.h"
#include "ConsoleMargin.h"
#include "ConsoleText.h"
#include "ErrorListModel.h"
#include "MetaObjects.h"
#include "Resources.h"

#include <QCheckBox>
#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableView>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextFrame>

#include <functional>
#include <utility>
#include <vector>

using namespace records;

namespace {

constexpr std::uint32_t debugTypeError = 0x824C;
constexpr std::uint32_t debugSeverityHigh = 0x9146;

/// A page without a client, and its parts.
struct Page {
    explicit Page(Client* client = nullptr)
        : page(client, 0, QFontDatabase::systemFont(QFontDatabase::FixedFont))
    {
        page.resize(700, 500);
    }
    template <typename Widget> Widget& child(const char* name) const
    {
        return *page.findChild<Widget*>(QString::fromLatin1(name));
    }
    QTextDocument& document() const { return *child<QTextEdit>("txtConsole").document(); }
    QTextBlock block(const QString& text) const
    {
        for (QTextBlock block = document().begin(); block.isValid(); block = block.next()) {
            if (block.text() == text)
                return block;
        }
        return {};
    }
    QTextFrame* frameOf(const QString& text) const { return QTextCursor(block(text)).currentFrame(); }
    void receive(const QList<Message>& messages)
    {
        for (const Message& message : messages)
            page.receive(message);
    }

    ClientInterface page;
};

/// A page that shows its error list.
struct ErrorListPage : Page {
    ErrorListPage()
    {
        child<QTabWidget>("tabWidget").setCurrentIndex(1);
        page.show();
    }
    void fill(int count)
    {
        for (int i = 0; i < count; ++i)
            page.receive(text(Type::Error, "line"));
    }
    bool isAtEnd() const { return bar.maximum() > 0 && bar.value() == bar.maximum(); }

    QTableView& list = child<QTableView>("tblErrorList");
    QScrollBar& bar = *list.verticalScrollBar();
    QCheckBox& box = child<QCheckBox>("chkErrorListAutoScroll");
};

} // namespace

class TestClientInterface : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerResources(); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin)"))); }

    void initialState();
    void consoleText_data();
    void consoleText();
    void headingsInARowStandClose();
    void headingStyles_data();
    void headingStyles();
    void identifiedFramesStayShallow();
    void textCannotForgeStructure();
    void clearAndFinish();
    void errorListRowsAndFilter();
    void autoScroll();
    void errorListFollowsTheBoxAtOnce();
    void errorListLeavesTheEndToTheReader();
    void fromRowToConsoleAndBack();
    void largeTextDoesNotWidenThePage();
    void contexts();
    void cellContents();
    void wireframe();
};

void TestClientInterface::initialState()
{
    QCOMPARE(ownMethods(ClientInterface::staticMetaObject),
        QStringList({"receive(ui::messages::Message)", "fontChanged(QFont)", "finish(QString)",
            "wireframeStateChanged(int)", "uncheckConsoleAutoScroll()", "uncheckErrorListAutoScroll()",
            "errorListWarningsStateChanged(int)", "errorListErrorsStateChanged(int)",
            "showErrorListItemContents(int,int,QPoint)"}));
    const Page page;
    for (const char* name : {"chkConsoleAutoScroll", "chkErrors", "chkWarnings", "chkErrorListAutoScroll"})
        QVERIFY2(page.child<QCheckBox>(name).isChecked(), name);
    QVERIFY(!page.child<QCheckBox>("chkWireframe").isChecked());
    QCOMPARE(
        page.child<QTabWidget>("tabWidget").currentWidget()->objectName(), QStringLiteral("tab_contextInfo"));
    QCOMPARE(page.child<QTabWidget>("tabWidget_contexts").currentIndex(), -1);
    QVERIFY(page.child<QTextEdit>("txtConsole").isReadOnly());
    QCOMPARE(page.page.state(), ClientInterface::State::Fresh);
    QVERIFY2(!page.page.hasHeightForWidth(), "layouts of many pages would shape the texts of all of them");
}

void TestClientInterface::consoleText_data()
{
    QTest::addColumn<QList<Message>>("messages");
    QTest::addColumn<QString>("shown");
    const Message info = text(Type::Information, "info");
    const Message lineBreak = make(Type::LineBreak);
    const Message error = text(Type::Error, "broken");
    QTest::newRow("each information text is a line") << QList<Message>{info, info} << "info\ninfo";
    QTest::newRow("line break") << QList<Message>{info, lineBreak, info} << "info\ninfo";
    QTest::newRow("line breaks") << QList<Message>{info, lineBreak, lineBreak, info} << "info\n\ninfo";
    QTest::newRow("an empty text is no line")
        << QList<Message>{info, text(Type::Information, ""), info} << "info\ninfo";
    QTest::newRow("error") << QList<Message>{error} << "\n\nError\nbroken\n\n";
    QTest::newRow("warning after text")
        << QList<Message>{info, text(Type::Warning, "slow")} << "info\n\nWarning\nslow\n\n";
    QTest::newRow("errors in a row") << QList<Message>{error, error}
                                     << "\n\nError\nbroken\n\nError\nbroken\n\n";
    QTest::newRow("text after an error")
        << QList<Message>{error, info, error} << "\n\nError\nbroken\n\ninfo\n\nError\nbroken\n\n";
    QTest::newRow("GL error") << QList<Message>{glError(1282, "glDrawArrays", "no program")}
                              << "\n\nError - GL_INVALID_OPERATION in glDrawArrays\nno program\n\n";
    QTest::newRow("unknown GL error")
        << QList<Message>{glError(7, "glFlush", "")} << "\n\nError -  in glFlush\n\n\n";
    QTest::newRow("debug") << QList<Message>{debug(debugTypeError, 4294967295U, debugSeverityHigh,
        "oops")} << "\n\nGL_DEBUG_TYPE_ERROR (ID: 4294967295)\nSeverity: GL_DEBUG_SEVERITY_HIGH\noops\n\n";
    QTest::newRow("debug of unknown kind")
        << QList<Message>{debug(5555555, 0, 5555555, "")} << "\n\n (ID: 0)\nSeverity: \n\n\n";
    QTest::newRow("identified: what follows stays in the frame") << QList<Message>{
        identified("assert", 7), info, lineBreak, info} << "\n\nassert (ID: 7)\ninfo\n\ninfo";
    QTest::newRow("several lines stay in their frame")
        << QList<Message>{text(Type::Error, "one\r\ntwo"), info} << "\n\nError\none\ntwo\n\ninfo";
    QTest::newRow("no more than eight frames are nested")
        << (QList<Message>(9, identified("deep", 1)) + QList<Message>{info})
        << QStringLiteral("\n\n") + QStringLiteral("deep (ID: 1)\n").repeated(8) + QString(8, '\n')
            + QStringLiteral("deep (ID: 1)\ninfo\n");
    QTest::newRow("no other type shows")
        << QList<Message>{make(Type::SetPid), make(Type::ReportText), make(static_cast<Type>(99))} << "";
}

void TestClientInterface::consoleText()
{
    QFETCH(const QList<Message>, messages);
    Page page;
    page.receive(messages);
    QTEST(page.document().toPlainText(), "shown");

    ConsoleText saved;
    for (const Message& message : messages) {
        if (console_entry::isShown(message.type()))
            console_entry::write(console_entry::pack(message), saved);
    }
    saved.finish();
    QFETCH(QString, shown);
    if (!shown.isEmpty() && !shown.endsWith(QLatin1Char('\n')))
        shown += QLatin1Char('\n');
    QCOMPARE(saved.take(), shown);
}

void TestClientInterface::headingsInARowStandClose()
{
    Page page;
    page.receive({text(Type::Error, "one"), text(Type::Error, "two"), text(Type::Information, "info"),
        text(Type::Error, "three")});
    const QAbstractTextDocumentLayout* layout = page.document().documentLayout();
    const auto gapAbove = [&](const QString& body) {
        const QTextBlock heading = page.frameOf(body)->firstCursorPosition().block().previous();
        const QTextBlock before = heading.previous();
        return layout->blockBoundingRect(heading).top()
            - (before.length() > 1 ? layout->blockBoundingRect(before).bottom()
                                   : layout->blockBoundingRect(before).top());
    };
    const double line = layout->blockBoundingRect(page.block(QStringLiteral("info"))).height();
    QVERIFY2(gapAbove(QStringLiteral("two")) < line / 2, "errors in a row stand close together");
    QVERIFY2(gapAbove(QStringLiteral("three")) > line * 0.9, "an error after text has a line before it");
}

void TestClientInterface::headingStyles_data()
{
    QTest::addColumn<Message>("message");
    QTest::addColumn<QString>("heading");
    QTest::addColumn<QColor>("headingText");
    QTest::addColumn<QColor>("headingBackground");
    QTest::addColumn<QColor>("bodyBackground");
    QTest::addColumn<int>("border");
    const QColor base(10, 20, 30);
    const QColor ink(200, 180, 25);
    QTest::newRow("error") << text(Type::Error, "body") << "Error" << QColor(255, 255, 255)
                           << QColor(255, 0, 0) << base << int(QTextFrameFormat::BorderStyle_Solid);
    QTest::newRow("warning") << text(Type::Warning, "body") << "Warning" << QColor(0, 0, 0)
                             << QColor(255, 255, 0) << base << int(QTextFrameFormat::BorderStyle_Solid);
    QTest::newRow("debug") << debug(debugTypeError, 1, debugSeverityHigh, "body")
                           << "Severity: GL_DEBUG_SEVERITY_HIGH" << base << ink << base
                           << int(QTextFrameFormat::BorderStyle_Solid);
    QTest::newRow("identified") << identified("id", 1) << "id (ID: 1)" << base << ink << QColor(190, 160, 5)
                                << int(QTextFrameFormat::BorderStyle_Dotted);
}

void TestClientInterface::headingStyles()
{
    QFETCH(const Message, message);
    QFETCH(const QString, heading);
    QFETCH(const QColor, headingBackground);
    QFETCH(const QColor, headingText);
    Page page;
    QPalette palette = page.child<QTextEdit>("txtConsole").palette();
    palette.setColor(QPalette::Base, QColor(10, 20, 30));
    palette.setColor(QPalette::Text, QColor(200, 180, 25));
    page.child<QTextEdit>("txtConsole").setPalette(palette);
    page.page.receive(message);
    page.page.receive(text(Type::Information, "body"));

    const QTextBlock block = page.block(heading);
    QCOMPARE(block.blockFormat().background().color(), headingBackground);
    QCOMPARE(block.begin().fragment().charFormat().foreground().color(), headingText);
    QTextFrame* frame = QTextCursor(block.next()).currentFrame();
    const QTextFrameFormat format = frame->frameFormat();
    QTEST(format.background().color(), "bodyBackground");
    QTEST(int(format.borderStyle()), "border");
    QCOMPARE(format.borderBrush().color(), headingBackground);
    QCOMPARE(format.border(), 1.0);
    QCOMPARE(format.topMargin(), -1.0);
    QCOMPARE(format.padding(), 5.0);
    const QTextBlock inside = frame->firstCursorPosition().block();
    QCOMPARE(inside.begin().fragment().charFormat().foreground().color(), QColor(200, 180, 25));
    QCOMPARE(inside.blockFormat().background().style(), Qt::NoBrush);
    QCOMPARE(page.document().lastBlock().blockFormat().background().style(), Qt::NoBrush);
}

void TestClientInterface::identifiedFramesStayShallow()
{
    Page page;
    for (int i = 0; i < 2000; ++i)
        page.page.receive(identified("again", 1));
    page.page.receive(text(Type::Information, "the end"));
    QTRY_VERIFY(page.block(QStringLiteral("the end")).isValid());
    int depth = 0;
    for (const QTextFrame* frame = page.frameOf(QStringLiteral("the end")); frame;
         frame = frame->parentFrame())
        ++depth;
    QVERIFY2(depth < 12, qPrintable(QString::number(depth)));
    page.page.grab();
}

void TestClientInterface::textCannotForgeStructure()
{
    Page page;
    page.receive({identified("a\nError\xE2\x80\xA9x", 1), make(Type::LineBreak),
        glError(1280, "gl\nEvil\xEF\xB7\x90", "<b>bold</b>\xE2\x80\xA8\xEF\xB7\x91"),
        text(Type::Information, "<h1>plain</h1>\x1B[0m")});
    QCOMPARE(page.document().toPlainText(),
        QStringLiteral(u"\n\na\nError\uFFFDx (ID: 1)\n\n\n\n\nError - GL_INVALID_ENUM in gl Evil\uFFFD\n"
                       "<b>bold</b>\uFFFD\uFFFD\n\n<h1>plain</h1>\u241B[0m")
            .replace(QStringLiteral("\n\n\n\n\nError"), QStringLiteral("\n\n\nError")));
    QCOMPARE(page.document().rootFrame()->childFrames().size(), 2);
}

void TestClientInterface::clearAndFinish()
{
    Page page;
    page.receive({text(Type::Error, "broken"), identified("open frame", 1)});
    page.page.finish(QStringLiteral("Client disconnected"));
    QVERIFY(page.document().toPlainText().endsWith(QStringLiteral("\nClient disconnected")));
    QCOMPARE(page.page.state(), ClientInterface::State::Finished);
    QVERIFY(!page.child<QGroupBox>("grpRendering").isEnabled());
    QTest::mouseClick(&page.child<QPushButton>("btnClear"), Qt::LeftButton);
    QCOMPARE(page.document().toPlainText(), QString());
    page.page.receive(text(Type::Information, "again"));
    QCOMPARE(page.document().toPlainText(), QStringLiteral("again"));
    QCOMPARE(page.frameOf(QStringLiteral("again")), page.document().rootFrame());
}

void TestClientInterface::errorListRowsAndFilter()
{
    Page page;
    page.receive({text(Type::Error, "e", 0xFFFFFFFF), text(Type::Warning, "w", 3),
        glError(1281, "glViewport", "neg\native", 4), text(Type::Information, "no row")});
    const QAbstractItemModel& shown = *page.child<QTableView>("tblErrorList").model();
    const auto& hint = page.child<QLabel>("lblErrorListEmpty");
    QVERIFY(hint.isHidden());
    const auto row = [&shown](int number) {
        QStringList cells;
        for (int column = 0; column < shown.columnCount(); ++column)
            cells.append(shown.index(number, column).data().toString());
        return cells;
    };
    QCOMPARE(shown.rowCount(), 3);
    QCOMPARE(row(0), QStringList({"", "", "", "e"}));
    QCOMPARE(row(1), QStringList({"3", "", "", "w"}));
    QCOMPARE(row(2), QStringList({"4", "glViewport", "GL_INVALID_VALUE", "neg\native"}));
    page.child<QCheckBox>("chkErrors").click();
    QCOMPARE(shown.rowCount(), 1);
    QCOMPARE(row(0).last(), QStringLiteral("w"));
    page.child<QCheckBox>("chkWarnings").click();
    QCOMPARE(shown.rowCount(), 0);
    QVERIFY(!hint.isHidden() && hint.text().contains(QStringLiteral("Tick")));
    page.child<QCheckBox>("chkErrors").click();
    QCOMPARE(shown.rowCount(), 2);
    QVERIFY(hint.isHidden());

    // Rows that arrive while their kind is hidden change what the empty list says.
    Page filtered;
    const auto& empty = filtered.child<QLabel>("lblErrorListEmpty");
    filtered.child<QCheckBox>("chkErrors").click();
    QVERIFY(!empty.isHidden() && empty.text().startsWith(QStringLiteral("No errors")));
    filtered.page.receive(text(Type::Error, "e"));
    QVERIFY(!empty.isHidden() && empty.text().contains(QStringLiteral("Tick")));
}

void TestClientInterface::autoScroll()
{
    Page page;
    page.page.show();
    auto& pages = page.child<QTabWidget>("tabWidget");
    pages.setCurrentIndex(0);
    auto& console = page.child<QTextEdit>("txtConsole");
    const auto fill = [&page](int count) {
        for (int i = 0; i < count; ++i)
            page.page.receive(text(i % 2 == 0 ? Type::Error : Type::Warning, "line"));
    };
    fill(50);
    QScrollBar& bar = *console.verticalScrollBar();
    QVERIFY(bar.maximum() > 100);
    QVERIFY(bar.value() > bar.maximum() - 10);
    bar.setSliderDown(true);
    bar.setSliderPosition(bar.maximum() / 2);
    bar.setSliderDown(false);
    QVERIFY(!page.child<QCheckBox>("chkConsoleAutoScroll").isChecked());
    const int kept = bar.value();
    fill(20);
    QCOMPARE(bar.value(), kept);

    pages.setCurrentIndex(1);
    auto& list = page.child<QTableView>("tblErrorList");
    QCoreApplication::processEvents();
    fill(1);
    QScrollBar& listBar = *list.verticalScrollBar();
    QTRY_VERIFY(list.visualRect(list.model()->index(70, 0)).bottom() < list.viewport()->height());
    const int end = listBar.maximum();
    QVERIFY(end > 100);
    const auto filterAndBack = [&](const char* box) {
        page.child<QCheckBox>(box).click();
        QTRY_VERIFY(listBar.maximum() < end);
        page.child<QCheckBox>(box).click();
        QTRY_COMPARE(listBar.maximum(), end);
    };
    for (const char* box : {"chkErrors", "chkWarnings"}) {
        filterAndBack(box);
        QTRY_COMPARE(listBar.value(), end);
    }
    listBar.setSliderDown(true);
    listBar.setSliderPosition(end / 4);
    listBar.setSliderDown(false);
    QVERIFY(!page.child<QCheckBox>("chkErrorListAutoScroll").isChecked());
    filterAndBack("chkWarnings");
    QTest::qWait(100); // longer than it takes to follow
    // Where the row at the top was hidden, its neighbour has taken its place.
    QVERIFY(std::abs(listBar.value() - end / 4) <= list.rowHeight(0));
}

void TestClientInterface::errorListFollowsTheBoxAtOnce()
{
    ErrorListPage page;
    page.fill(50);
    QTRY_VERIFY(page.isAtEnd());
    page.fill(2); // one to start the pause, one to wait for its end
    page.box.click();
    page.bar.setValue(0);
    QTest::qWait(100);
    QVERIFY2(page.bar.value() == 0, "the list has jumped to its end with the box off");

    page.box.click();
    QVERIFY(page.isAtEnd());
    // Also in the pause that follows a scroll.
    page.box.click();
    page.bar.setValue(0);
    page.box.click();
    QVERIFY(page.isAtEnd());

    page.child<QTabWidget>("tabWidget").setCurrentIndex(0);
    page.fill(30);
    QTest::qWait(100);
    page.child<QTabWidget>("tabWidget").setCurrentIndex(1);
    QTRY_VERIFY(page.isAtEnd());
    QCOMPARE(page.bar.value(),
        page.list.rowHeight(0) * page.list.model()->rowCount() - page.list.viewport()->height());
}

void TestClientInterface::errorListLeavesTheEndToTheReader()
{
    ErrorListPage page;
    QWidget* rows = page.list.viewport();
    const auto key = [&](Qt::Key code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        return [=, &page] {
            QTest::keyClick(&page.list, code, modifiers);
        };
    };
    const auto wheel = [&](int delta) {
        return [=] {
            QWheelEvent event(QPointF(5, 5), rows->mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, delta),
                Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(rows, &event);
        };
    };
    const auto press = [](QWidget* on) {
        return [=] {
            QTest::mouseClick(on, Qt::LeftButton, Qt::NoModifier, QPoint(5, 30));
        };
    };
    const std::vector<std::pair<std::function<void()>, bool>> acts = {{wheel(120), false},
        {wheel(-120), true}, {key(Qt::Key_PageUp), false}, {key(Qt::Key_Home, Qt::ControlModifier), false},
        {key(Qt::Key_Up), false}, {key(Qt::Key_End, Qt::ControlModifier), true}, {key(Qt::Key_F5), true},
        {press(rows), false}, {press(page.list.verticalHeader()->viewport()), false}};
    page.fill(50);
    for (std::size_t i = 0; i < acts.size(); ++i) {
        page.box.setChecked(true);
        QTRY_VERIFY(page.isAtEnd());
        page.list.setCurrentIndex(page.list.model()->index(page.list.model()->rowCount() - 1, 0));
        page.fill(2); // the pause is on, and the list a row behind
        acts[i].first();
        QVERIFY2(page.box.isChecked() == acts[i].second, qPrintable(QString::number(i)));
    }
}

void TestClientInterface::fromRowToConsoleAndBack()
{
    ErrorListPage page;
    page.page.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&page.page));
    page.receive({text(Type::Information, "before")});
    for (const char* words : {"one", "two", "three"})
        page.receive({text(Type::Error, words)});
    page.receive({text(Type::Information, "after")});
    auto& tabs = page.child<QTabWidget>("tabWidget");
    auto& console = page.child<QTextEdit>("txtConsole");
    page.list.setCurrentIndex(page.list.model()->index(1, 3));
    QTest::keyClick(&page.list, Qt::Key_Return);
    QCOMPARE(tabs.currentIndex(), 0);
    QVERIFY2(console.textCursor().selectedText().contains(QStringLiteral("two")),
        qPrintable(console.textCursor().selectedText()));
    page.list.setCurrentIndex({});
    QTest::keyClick(&console, Qt::Key_Return);
    QCOMPARE(tabs.currentIndex(), 1);
    QCOMPARE(page.list.currentIndex().row(), 1);

    QSignalSpy messages(&page.page.console(), &Console::statusMessage);
    page.child<QLineEdit>("editErrorFilter").setText(QStringLiteral("one"));
    tabs.setCurrentIndex(0);
    console.setFocus();
    QTest::keyClick(&console, Qt::Key_Return); // its row is filtered out
    QCOMPARE(messages.count(), 1);
    page.child<QPushButton>("btnClear").click();
    tabs.setCurrentIndex(1);
    Q_EMIT page.list.doubleClicked(page.list.model()->index(0, 0));
    QCOMPARE(messages.count(), 2);
}

void TestClientInterface::largeTextDoesNotWidenThePage()
{
    Page page;
    page.page.consoleMargin().setStampsShown(true);
    const int width = page.page.minimumSizeHint().width();
    QFont font = page.child<QTextEdit>("txtConsole").font();
    font.setPointSize(60);
    page.page.fontChanged(font);
    QCOMPARE(page.page.minimumSizeHint().width(), width);
}

void TestClientInterface::contexts()
{
    Page page;
    page.receive({context(3), context(0xFFFFFFFE), context(3)});
    const auto& tabs = page.child<QTabWidget>("tabWidget_contexts");
    QCOMPARE(tabs.count(), 3);
    QCOMPARE(tabs.tabText(0), QStringLiteral("Context 3"));
    QCOMPARE(tabs.tabText(1), QStringLiteral("Context -2"));

    // An application that goes on for ever keeps its newest ones.
    for (std::uint32_t i = 0; i < 600; ++i)
        page.receive({context(i)});
    QVERIFY(tabs.count() <= 500 && tabs.count() >= 400);
    QCOMPARE(tabs.tabText(0), QStringLiteral("Context %1").arg(600 - tabs.count()));
    QCOMPARE(tabs.tabText(tabs.count() - 1), QStringLiteral("Context 599"));
}

void TestClientInterface::cellContents()
{
    Page page;
    page.receive({text(Type::Warning, "hidden"), text(Type::Error, "one\ntwo")});
    page.page.show();
    page.child<QCheckBox>("chkWarnings").click();
    page.page.showErrorListItemContents(0, 3, QPoint(100000, 10));
    auto* contents = page.page.findChild<QPlainTextEdit*>(QStringLiteral("txtContents"));
    QVERIFY(contents);
    QCOMPARE(contents->toPlainText(), QStringLiteral("one\ntwo"));
    QVERIFY(contents->isReadOnly());
    QVERIFY(contents->window()->windowFlags().testFlag(Qt::Popup));
    QVERIFY(contents->window()->isModal());
    QVERIFY(contents->window()->screen()->geometry().contains(contents->window()->geometry()));
    QTest::keyClick(contents, Qt::Key_Escape);
    QTRY_VERIFY(page.page.findChild<QPlainTextEdit*>(QStringLiteral("txtContents")) == nullptr);
}

void TestClientInterface::wireframe()
{
    ConnectedClient connection;
    const Page page(&connection.start());
    auto& box = page.child<QCheckBox>("chkWireframe");
    box.click();
    box.setTristate(true);
    box.setCheckState(Qt::PartiallyChecked);
    box.setCheckState(Qt::Unchecked);
    QTRY_COMPARE(connection.application->receivedTypes(), QList<quint32>({12, 13}));

    const Page placeholder;
    placeholder.child<QCheckBox>("chkWireframe").click();
}

QTEST_MAIN(TestClientInterface)
#include "TestClientInterface.moc"
