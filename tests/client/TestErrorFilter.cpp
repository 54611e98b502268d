#include "ErrorFilterBar.h"
#include "ErrorFilterParser.h"
#include "ErrorListFilterProxyModel.h"
#include "ErrorListModel.h"
#include "ErrorListSortMenu.h"
#include "ErrorListView.h"
#include "KeptFilters.h"
#include "Preferences.h"
#include "Theme.h"

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QCompleter>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace error_list;

namespace {

/// Many rows, every third a warning; the frame is the number of the row.
void fill(ErrorListModel& model, int count)
{
    for (int i = model.rowCount(); count > 0; ++i, --count)
        model.append(i % 3 == 0 ? SeverityWarning : SeverityError, i, QString(),
            QStringLiteral("Call %1: %2").arg(i * 7 % 1000).arg(i % 2 ? "Level" : "border"),
            QStringLiteral("glTexImage%1").arg(i % 5));
}

QList<int> shownFrames(const QAbstractItemModel& model)
{
    QList<int> frames;
    for (int row = 0; row < model.rowCount(); ++row)
        frames.append(model.index(row, FrameColumn).data().toInt());
    return frames;
}

ErrorFilter filterOf(const char* text)
{
    return ErrorFilterParser(QString::fromUtf8(text)).parse().value();
}

} // namespace

class TestErrorFilter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void grammar_data();
    void grammar();
    void faults_data();
    void faults();
    void costlyExpressionsAreGivenUp();
    void manyRowsAreFoundInSteps();
    void sortsByEachColumn_data();
    void sortsByEachColumn();
    void rowsArriveInASortedList();
    void thirdClickBringsTheOrderOfArrivalBack();
    void readerComesBackToThePlace();
    void lineShowsFaults();
    void lineCompletes();
    void filtersAreKept();
};

void TestErrorFilter::grammar_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("chosen");
    // Rows: e = error, w = warning, n = error without a frame, u = not ASCII.
    const auto add = [](const char* filter, const char* chosen) {
        QTest::newRow(filter) << QString::fromUtf8(filter) << QString::fromUtf8(chosen);
    };
    add("", "ewnu");
    add("  ", "ewnu");
    add("LEVEL", "e");
    add("level large", "e");
    add("level slow", "");
    add("level | slow", "ew");
    add("\"too large\"", "e");
    add("\"too  large\"", "");
    add("-level", "wnu");
    add("-\"too large\" -slow", "nu");
    add("fn:glTex*", "e");
    add("fn:GLTEXIMAGE?D", "e");
    add("fn:glTex", "");
    add("-fn:*", "");
    add("code:GL_INVALID_*", "en");
    add("frame:10", "e");
    add("frame:10..90", "ew");
    add("frame:11..", "wu");
    add("frame:..10", "e");
    add("frame:none", "n");
    add("-frame:10..90", "nu");
    add("sev:warning", "w");
    add("sev:error -frame:none", "eu");
    add("/lev.l \\d+/", "e");
    add("/LEVEL/", "");
    add("/LEVEL/i", "e");
    add("/a\\/b/", "w");
    add("-/^Tex/", "wnu");
    add("path:", "w"); // a word, as in running text
    add("a/b", "w");
    add("\"say \\\"no\\\"\"", "n");
    add("ÄNDERUNG", "u");
    add("glteximage2d | \"-\"", "en");
}

void TestErrorFilter::grammar()
{
    QFETCH(QString, filter);
    const std::vector<std::pair<char, Row>> rows = {
        {'e', {SeverityError, 10, "glTexImage2D", "GL_INVALID_VALUE", "Texture level 12 is too large"}},
        {'w', {SeverityWarning, 90, "", "", "slow path: a/b"}},
        {'n', {SeverityError, -1, "glEnable", "GL_INVALID_ENUM", "say \"no\" - now"}},
        {'u', {SeverityError, 400, "", "GL_OUT_OF_MEMORY", "die Änderung"}},
    };
    ErrorFilterParser parser(filter);
    const std::optional<ErrorFilter> parsed = parser.parse();
    QVERIFY2(parsed, qPrintable(parser.fault().message));
    QString chosen;
    for (const auto& [name, row] : rows) {
        if (parsed->matches(row))
            chosen.append(QLatin1Char(name));
    }
    QTEST(chosen, "chosen");
}

void TestErrorFilter::faults_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("message");
    const auto add = [](const char* filter, int position, const char* message) {
        QTest::newRow(filter) << QString::fromUtf8(filter) << position << QString::fromUtf8(message);
    };
    add("a \"b", 2, "quotes are not closed");
    add("a \"\"", 2, "nothing between the quotes");
    add("a /b", 2, "no \"/\" at its end");
    add("//", 0, "is empty");
    add("/a(b/", 4, "Not a regular expression");
    add("/a[/", 3, "Not a regular expression");
    add("/a/b", 3, "space must stand behind");
    add("| a", 0, "before \"|\"");
    add("a || b", 3, "before \"|\"");
    add("a |", 2, "behind \"|\"");
    add("a - b", 2, "behind \"-\"");
    add("a func:glTex*", 2, "no field \"func\"");
    add("fn:", 0, "behind \"fn:\"");
    add("frame:x", 6, "Not a frame");
    add("frame:99999999999", 6, "Not a frame");
    add("frame:9..1", 6, "before the first");
    add("sev:bad", 4, "Not a severity");
}

void TestErrorFilter::faults()
{
    QFETCH(QString, filter);
    QFETCH(QString, message);
    ErrorFilterParser parser(filter);
    QVERIFY(!parser.parse());
    QVERIFY2(parser.fault().message.contains(message), qPrintable(parser.fault().message));
    QTEST(static_cast<int>(parser.fault().position), "position");
    QVERIFY(parser.fault().length > 0);
}

void TestErrorFilter::costlyExpressionsAreGivenUp()
{
    const ErrorFilter filter = filterOf("/(a+)+$/");
    const std::string text = std::string(60, 'a') + '!';
    QVERIFY(!filter.matches({SeverityError, 1, "", "", text}));
    QVERIFY(filter.hasGivenUp());
}

void TestErrorFilter::manyRowsAreFoundInSteps()
{
    ErrorListModel model{QIcon(), QIcon(), QIcon()};
    fill(model, 30'000);
    ErrorListFilterProxyModel proxy;
    QAbstractItemModelTester tester(&proxy);
    proxy.setSourceModel(&model);
    QTRY_COMPARE(proxy.rowCount(), 30'000);

    // Rows arrive between the steps.
    proxy.setStepTime(0);
    proxy.setFilter(filterOf("/Call .*(0|1|2).*evel/ -fn:glTexImage4"));
    QVERIFY(!proxy.isSettled());
    QSignalSpy settled(&proxy, &ErrorListFilterProxyModel::settled);
    fill(model, 500);
    while (!proxy.isSettled()) {
        fill(model, 1);
        QCoreApplication::processEvents();
    }
    QCOMPARE(settled.count(), 1);
    QList<int> wanted;
    for (int row = 0; row < model.rowCount(); ++row) {
        if (proxy.filter().matches(model.row(row)))
            wanted.append(row);
    }
    QVERIFY(wanted.size() > 1000);
    QCOMPARE(shownFrames(proxy), wanted);

    model.clear();
    QCOMPARE(proxy.rowCount(), 0);
    fill(model, 4);
    proxy.setFilter({});
    QCOMPARE(proxy.rowCount(), 4);
}

void TestErrorFilter::sortsByEachColumn_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("isDescending");
    for (const int column : {FrameColumn, FunctionColumn, DescriptionColumn}) {
        QTest::addRow("column %d", column) << column << false;
        QTest::addRow("column %d from behind", column) << column << true;
    }
}

void TestErrorFilter::sortsByEachColumn()
{
    QFETCH(int, column);
    QFETCH(bool, isDescending);
    ErrorListModel model{QIcon(), QIcon(), QIcon()};
    // More than are sorted in one go; equal ones and long common beginnings among them.
    fill(model, 40'000);
    for (const char* text : {"b", "A", "a", "", "Call 7: border and more than that", "Call 7: Border"})
        model.append(SeverityError, -1, QString(), QString::fromLatin1(text), QString());
    ErrorListFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.setShowWarnings(false);
    proxy.sort(column, isDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
    QTRY_VERIFY(proxy.isSettled());
    QCOMPARE(proxy.rowCount(), static_cast<int>(40'000 - 13'334 + 6));

    const auto textOf = [&](int row) {
        const QModelIndex cell = proxy.index(row, column);
        return column == FrameColumn ? cell.data().toString().rightJustified(9)
                                     : cell.data().toString().toLower();
    };
    for (int row = 1; row < proxy.rowCount(); ++row) {
        int order = textOf(row - 1).compare(textOf(row));
        if (isDescending)
            order = -order;
        if (order == 0)
            order = proxy.sourceRow(row - 1) - proxy.sourceRow(row);
        QVERIFY2(order < 0, qPrintable(textOf(row - 1) + " before " + textOf(row)));
    }
}

void TestErrorFilter::rowsArriveInASortedList()
{
    ErrorListModel model{QIcon(), QIcon(), QIcon()};
    ErrorListFilterProxyModel proxy;
    QAbstractItemModelTester tester(&proxy);
    proxy.setSourceModel(&model);
    proxy.sort(FrameColumn, Qt::DescendingOrder);
    fill(model, 3);
    QTRY_COMPARE(shownFrames(proxy), QList<int>({2, 1, 0}));
    for (const int frame : {1, 7, -1, 2})
        model.append(SeverityError, frame, QString(), QString(), QString());
    QTRY_COMPARE(shownFrames(proxy), QList<int>({7, 2, 2, 1, 1, 0, 0}));
    QCOMPARE(proxy.sourceRow(1), 2); // of equal ones the first to arrive comes first
    proxy.sort(-1);
    QCOMPARE(shownFrames(proxy), QList<int>({0, 1, 2, 1, 7, 0, 2}));
}

void TestErrorFilter::thirdClickBringsTheOrderOfArrivalBack()
{
    ErrorListModel model{QIcon(), QIcon(), QIcon()};
    for (const int frame : {2, 3, 1})
        model.append(SeverityError, frame, QString(), QString(), QString());
    ErrorListFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    ErrorListView view;
    view.setModel(&proxy);
    view.resize(600, 200);
    view.show();
    view.restoreColumns(QByteArray()); // nothing was kept
    const QHeaderView& header = *view.horizontalHeader();
    const auto click = [&] {
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, QPoint(header.sectionSize(0) / 2, 5));
        return shownFrames(proxy);
    };
    QCOMPARE(click(), QList<int>({1, 2, 3}));
    QCOMPARE(click(), QList<int>({3, 2, 1}));
    QCOMPARE(click(), QList<int>({2, 3, 1}));
    ErrorListSortMenu menu(*view.horizontalHeader(), &view);
    const auto choose = [&](int entry) {
        Q_EMIT menu.aboutToShow();
        menu.actions().at(entry)->trigger();
        return shownFrames(proxy);
    };
    QCOMPARE(choose(0), QList<int>({1, 2, 3}));
    QCOMPARE(choose(0), QList<int>({3, 2, 1}));
    QCOMPARE(choose(0), QList<int>({1, 2, 3}));
    QCOMPARE(choose(4), QList<int>({2, 3, 1}));
    click();
    // What another list's columns were like does not sort this one.
    const QByteArray state = header.saveState();
    proxy.sort(-1);
    ErrorListView other;
    other.setModel(&proxy);
    other.restoreColumns(state);
    QCOMPARE(shownFrames(proxy), QList<int>({2, 3, 1}));
    QCOMPARE(other.horizontalHeader()->sortIndicatorSection(), -1);
}

void TestErrorFilter::readerComesBackToThePlace()
{
    ErrorListModel model{QIcon(), QIcon(), QIcon()};
    fill(model, 30'000);
    ErrorListFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    QTRY_VERIFY(proxy.isSettled());
    ErrorListView view;
    view.setModel(&proxy);
    view.resize(600, 200);
    view.show();
    view.setCurrentIndex(proxy.index(25'001, CodeColumn));
    view.verticalScrollBar()->setValue(view.rowHeight(0) * 25'000 + 5);
    const auto top = [&view] {
        return view.indexAt(QPoint(1, 0)).data().toInt();
    };
    QCOMPARE(top(), 25'000);

    // Two filters, of which the first is not done when the second comes.
    proxy.setStepTime(0);
    proxy.setFilter(filterOf("/^Call .*(0|1|2|3|4|5|6|7|8|9).*/"));
    QVERIFY(!proxy.isSettled());
    proxy.setFilter(filterOf("/^Call .*(0|1|2|3|4|5|6|7|8|9).*/ -fn:glTexImage3"));
    QVERIFY(!proxy.isSettled());
    QTRY_VERIFY(proxy.isSettled());
    QCOMPARE(top(), 25'000);
    QCOMPARE(view.currentIndex().siblingAtColumn(FrameColumn).data().toInt(), 25'001);
    view.sortByColumn(FrameColumn, Qt::DescendingOrder);
    QTRY_VERIFY(proxy.isSettled());
    QCOMPARE(view.currentIndex().siblingAtColumn(FrameColumn).data().toInt(), 25'001);
    QCOMPARE(top(), 25'000);
}

void TestErrorFilter::lineShowsFaults()
{
    ErrorFilterBar bar;
    bar.show();
    auto& edit = *bar.findChild<QLineEdit*>(QStringLiteral("editErrorFilter"));
    const auto& fault = *bar.findChild<QLabel*>(QStringLiteral("lblErrorFilterFault"));
    QSignalSpy changes(&bar, &ErrorFilterBar::filterChanged);
    QTest::keyClicks(&edit, QStringLiteral("ab"));
    QCOMPARE(changes.count(), 2);
    QTest::keyClicks(&edit, QStringLiteral(" \"c"));
    QVERIFY(fault.isVisible());
    QVERIFY2(fault.text().contains(QStringLiteral("Character 4")), qPrintable(fault.text()));
    QCOMPARE(changes.count(), 2); // the filter without a fault holds on
    QCOMPARE(edit.text(), QStringLiteral("ab \"c"));
    for (const Theme theme : {Theme::Dark, Theme::Light}) {
        bar.setPalette(theme::palette(theme));
        QCOMPARE(fault.palette().color(QPalette::WindowText), theme::faultColor(bar.palette()));
    }
    QTest::keyClicks(&edit, QStringLiteral("\""));
    QVERIFY(!fault.isVisible());
    QCOMPARE(changes.count(), 3);
    QTest::keyClick(&edit, Qt::Key_Escape);
    QCOMPARE(changes.count(), 4);
    QVERIFY(changes.last().first().value<ErrorFilter>().isEmpty());
}

void TestErrorFilter::lineCompletes()
{
    ErrorListModel model{QIcon(), QIcon(), QIcon()};
    fill(model, 10);
    model.append(SeverityError, 1, QStringLiteral("GL_INVALID_ENUM"), QString(), QString());
    ErrorFilterBar bar;
    bar.setErrors(&model);
    bar.show();
    auto& edit = *bar.findChild<QLineEdit*>(QStringLiteral("editErrorFilter"));
    auto& completer = *edit.findChild<QCompleter*>();
    const auto offered = [&completer] {
        QStringList texts;
        for (int i = 0; i < completer.completionCount(); ++i)
            texts.append(completer.completionModel()->index(i, 0).data().toString());
        return texts;
    };
    QTest::keyClicks(&edit, QStringLiteral("a -fn:gltex"));
    QVERIFY(completer.popup()->isVisible());
    QCOMPARE(offered(),
        QStringList(
            {"fn:glTexImage0", "fn:glTexImage1", "fn:glTexImage2", "fn:glTexImage3", "fn:glTexImage4"}));
    QTest::keyClick(completer.popup(), Qt::Key_Down);
    QTest::keyClick(completer.popup(), Qt::Key_Return);
    QCOMPARE(edit.text(), QStringLiteral("a -fn:glTexImage0"));
    edit.setText(QString());
    QTest::keyClick(&edit, Qt::Key_Space, Qt::ControlModifier);
    QVERIFY(offered().contains(QStringLiteral("code:GL_INVALID_ENUM")));
    QVERIFY(offered().contains(QStringLiteral("sev:error")));
}

void TestErrorFilter::filtersAreKept()
{
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    std::string error;
    {
        Preferences preferences("Kept");
        preferences.load(error);
        KeptFilters kept(preferences);
        kept.keep({QStringLiteral("mine"), QStringLiteral("level")});
        kept.keep({QStringLiteral("other"), QStringLiteral("fn:glTex* | \"a\tb\"")});
        kept.keep({QStringLiteral("mine"), QStringLiteral("border")});
    }
    Preferences preferences("Kept");
    QVERIFY(preferences.load(error));
    KeptFilters kept(preferences);
    ErrorFilterBar bar;
    bar.setKeptFilters(&kept);
    bar.show();
    QMenu& menu = *bar.findChild<QPushButton*>(QStringLiteral("btnErrorFilters"))->menu();
    Q_EMIT menu.aboutToShow();
    QCOMPARE(menu.actions().at(0)->text(), QStringLiteral("mine"));
    QCOMPARE(menu.actions().at(1)->text(), QStringLiteral("other"));
    menu.actions().at(0)->trigger();
    QCOMPARE(bar.text(), QStringLiteral("border"));
    kept.forget(QStringLiteral("mine"));
    QCOMPARE(kept.filters().size(), 1U);
    QCOMPARE(kept.filters().front().text, QStringLiteral("fn:glTex* | \"a b\""));
}

QTEST_MAIN(TestErrorFilter)
#include "TestErrorFilter.moc"
