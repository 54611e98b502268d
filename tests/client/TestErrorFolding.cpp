#include "ErrorFilterParser.h"
#include "ErrorHistogram.h"
#include "ErrorListActions.h"
#include "ErrorListFilterProxyModel.h"
#include "ErrorListModel.h"
#include "ErrorListTable.h"
#include "ErrorListView.h"
#include "ErrorOverview.h"
#include "MutedErrors.h"
#include "MutedErrorsDialog.h"
#include "TableExport.h"
#include "UnseenBadge.h"
#include "UnseenErrors.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <map>
#include <optional>

using namespace error_list;

namespace {

/// A list with its view in a page. The tester of its model is too slow for many rows.
struct List {
    explicit List(bool isTested = true)
    {
        if (isTested)
            tester.emplace(&filter);
        filter.setSourceModel(&model);
        page.setLayout(new QVBoxLayout);
        page.layout()->addWidget(&view);
        page.layout()->addWidget(&button);
        view.setModel(&filter);
        page.resize(700, 300);
        page.show();
        // Else keys would be no shortcuts.
        page.activateWindow();
        isActive = QTest::qWaitForWindowActive(&page);
    }
    void add(qint32 severity, int frame, const char* text, const char* function = "")
    {
        model.append(severity, frame, QString(), QString::fromLatin1(text), QString::fromLatin1(function));
    }
    /// Three kinds, of which one has three rows.
    void fill()
    {
        add(SeverityError, 5, "Level 1 is too large", "glTexImage2D");
        add(SeverityWarning, 6, "slow");
        add(SeverityError, 7, "Level 20 is too large", "glTexImage2D");
        add(SeverityError, 7, "Level 1 is too large", "glTexImage3D");
        add(SeverityError, 3, "Level 4 is too large", "glTexImage2D");
    }
    /// The rows, each with count, frames and function.
    QStringList shown() const
    {
        QStringList rows;
        for (int row = 0; row < filter.rowCount(); ++row) {
            QStringList cells;
            for (const int column :
                {CountColumn, static_cast<int>(FrameColumn), static_cast<int>(FunctionColumn)})
                cells.append(filter.index(row, column).data().toString());
            rows.append(cells.join(QLatin1Char('|')));
        }
        return rows;
    }

    ErrorListModel model{QIcon(), QIcon(), QIcon()};
    ErrorListFilterProxyModel filter;
    std::optional<QAbstractItemModelTester> tester;
    QWidget page;
    ErrorListView view;
    QPushButton button;
    bool isActive = false;
};

} // namespace

class TestErrorFolding : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rowsOfAKindAreOne();
    void rowsArriveInAFoldedList();
    void foldingKeepsTheReadersPlace();
    void manyKindsInSteps();
    void mutedKindsAreHiddenAndCounted();
    void mutedKindsAreKept();
    void mutedFileThatCannotBeRead();
    void keysGoToErrorsAndFrames();
    void rowsAreCopied_data();
    void rowsAreCopied();
    void manyRowsAreCopiedInSteps();
    void rowsAreExported_data();
    void rowsAreExported();
    void exportsThatFailLeaveTheFile();
    void histogramWidens();
    void overviewIsClicked();
    void overviewShowsWhatTheListShows();
    void unseenErrorsAreCounted();
};

void TestErrorFolding::rowsOfAKindAreOne()
{
    List list;
    list.fill();
    list.filter.setFolded(true);
    const QStringList folded = {QStringLiteral("\u25B8 3|3\u20137|glTexImage2D"),
        QStringLiteral("\u25B8 1|6|"), QStringLiteral("\u25B8 1|7|glTexImage3D")};
    QCOMPARE(list.shown(), folded);
    QCOMPARE(list.view.horizontalHeader()->visualIndex(CountColumn), 0);

    list.view.setCurrentIndex(list.filter.index(0, DescriptionColumn));
    QTest::keyClick(&list.view, Qt::Key_Return);
    QCOMPARE(list.shown().mid(0, 5),
        QStringList({"\u25BE 3|3\u20137|glTexImage2D", "|5|glTexImage2D", "|7|glTexImage2D",
            "|3|glTexImage2D", "\u25B8 1|6|"}));
    QCOMPARE(list.view.currentIndex().row(), 0);
    // The rows of an open group stay below it in any order, and another filter leaves it open.
    list.filter.sort(CountColumn, Qt::AscendingOrder);
    QTRY_COMPARE(list.shown().mid(1, 3),
        QStringList({"\u25B8 1|7|glTexImage3D", "\u25BE 3|3\u20137|glTexImage2D", "|5|glTexImage2D"}));
    list.filter.setShowWarnings(false);
    QTRY_COMPARE(list.shown().size(), 5);
    QTest::keyClick(&list.view, Qt::Key_Minus);
    QCOMPARE(list.shown(), QStringList({folded[2], folded[0]}));

    list.filter.setFolded(false);
    QCOMPARE(list.filter.columnCount(), static_cast<int>(ColumnCount));
    QCOMPARE(list.filter.rowCount(), 4);
    QVERIFY(list.filter.isByArrival());
}

void TestErrorFolding::rowsArriveInAFoldedList()
{
    List list;
    list.filter.setFolded(true);
    list.fill();
    QTRY_COMPARE(list.shown().value(0), QStringLiteral("\u25B8 3|3\u20137|glTexImage2D"));
    QSignalSpy resets(&list.filter, &QAbstractItemModel::modelReset);
    list.add(SeverityError, 90, "Level 9 is too large", "glTexImage2D");
    list.add(SeverityError, -1, "new");
    QTRY_COMPARE(list.shown().size(), 4);
    QCOMPARE(list.shown().at(0), QStringLiteral("\u25B8 4|3\u201390|glTexImage2D"));
    QCOMPARE(list.shown().at(3), QStringLiteral("\u25B8 1||"));
    QCOMPARE(resets.count(), 0); // groups come behind the others

    list.filter.toggle(0);
    list.add(SeverityError, 91, "Level 0 is too large", "glTexImage2D");
    QTRY_COMPARE(list.shown().value(5), QStringLiteral("|91|glTexImage2D"));
    list.filter.sort(FunctionColumn, Qt::DescendingOrder);
    list.add(SeverityError, 1, "x", "zoom");
    QTRY_COMPARE(list.shown().value(0), QStringLiteral("\u25B8 1|1|zoom"));
    list.model.clear();
    QCOMPARE(list.filter.rowCount(), 0);
    list.add(SeverityWarning, 2, "other");
    QTRY_COMPARE(list.shown(), QStringList("\u25B8 1|2|"));
}

void TestErrorFolding::foldingKeepsTheReadersPlace()
{
    List list(false);
    for (int i = 0; i < 1000; ++i)
        list.add(SeverityError, i, "text",
            qPrintable(QStringLiteral("gl%1").arg(QChar('a' + i % 26)) + QChar('a' + i / 26 % 26)));
    list.view.setCurrentIndex(list.filter.index(300, CodeColumn));
    list.view.verticalScrollBar()->setValue(list.view.rowHeight(0) * 298);
    const auto current = [&] {
        return list.view.currentIndex().siblingAtColumn(FunctionColumn).data().toString();
    };
    const auto top = [&] {
        return list.view.indexAt(QPoint(100, 1)).siblingAtColumn(FunctionColumn).data().toString();
    };
    const QString function = current();
    const QString topFunction = top();
    list.filter.setFolded(true);
    QTRY_VERIFY(list.filter.isSettled());
    QCOMPARE(current(), function);
    QCOMPARE(top(), topFunction);
    // Also while rows arrive below an open group.
    list.filter.toggle(list.view.currentIndex().row());
    QTest::keyClick(&list.view, Qt::Key_Down);
    QVERIFY(!list.filter.isGroup(list.view.currentIndex().row()));
    list.add(SeverityError, 5000, "text", qPrintable(function));
    QTRY_VERIFY(list.filter.isSettled());
    QVERIFY(!list.filter.isGroup(list.view.currentIndex().row()));
    list.filter.setFolded(false);
    QCOMPARE(current(), function);
}

void TestErrorFolding::manyKindsInSteps()
{
    List list(false);
    for (int i = 0; i < 20'000; ++i)
        list.add(i % 2 ? SeverityError : SeverityWarning, i, "Call 7 of 9",
            qPrintable(QStringLiteral("gl") + QString(i % 97, QLatin1Char('x'))));
    QTRY_VERIFY(list.filter.isSettled());
    list.filter.setFolded(true);
    list.filter.sort(FunctionColumn, Qt::DescendingOrder);
    QTRY_VERIFY(list.filter.isSettled());
    QCOMPARE(list.filter.rowCount(), 2 * 97);
    int count = 0;
    for (int row = 0; row < list.filter.rowCount(); ++row) {
        const QString text = list.filter.index(row, CountColumn).data().toString();
        count += QLocale().toInt(text.mid(2));
        QCOMPARE(list.filter.index(row, FunctionColumn).data().toString().size(), 2 + 96 - row / 2);
    }
    QCOMPARE(count, 20'000);
}

void TestErrorFolding::mutedKindsAreHiddenAndCounted()
{
    MutedErrors muted{{}};
    List list;
    QVERIFY(list.isActive);
    ErrorListActions actions(list.view, list.filter, list.page);
    actions.setMuted(&muted, &list.button);
    list.fill();
    QVERIFY(!list.button.isVisible());
    list.view.setCurrentIndex(list.filter.index(2, FrameColumn)); // one of three
    QTest::keyClick(&list.view, Qt::Key_M, Qt::ControlModifier);
    QCOMPARE(list.filter.rowCount(), 2);
    QVERIFY(list.button.isVisible());
    QCOMPARE(list.button.text(), QStringLiteral("3 muted"));
    list.add(SeverityError, 8, "Level 77 is too large", "glTexImage2D");
    QCOMPARE(list.filter.rowCount(), 2);
    QCOMPARE(list.button.text(), QStringLiteral("4 muted"));
    // The keys go on at the row that took its place.
    QCOMPARE(list.view.currentIndex().row(), 1);
    list.filter.setShowErrors(false); // none of them would be shown
    QVERIFY(!list.button.isVisible());
    list.filter.setShowErrors(true);

    list.button.click();
    auto* dialog = list.page.findChild<MutedErrorsDialog*>();
    QVERIFY(dialog);
    auto* kinds = dialog->findChild<QTreeWidget*>(QStringLiteral("listMutedErrors"));
    QCOMPARE(kinds->topLevelItemCount(), 1);
    QCOMPARE(kinds->topLevelItem(0)->text(1), QStringLiteral("glTexImage2D"));
    dialog->activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), static_cast<QWidget*>(dialog));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
    QCOMPARE(kinds->topLevelItemCount(), 0);
    QCOMPARE(list.filter.rowCount(), 6);
    QVERIFY(!list.button.isVisible());
    dialog->close();
    list.page.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&list.page));
    list.view.clearSelection();
    QTest::keyClick(&list.view, Qt::Key_M, Qt::ControlModifier);
    QTRY_COMPARE(list.button.text(), QStringLiteral("1 muted"));
}

void TestErrorFolding::mutedKindsAreKept()
{
    const QTemporaryDir folder;
    const std::filesystem::path file = std::filesystem::path(folder.path().toStdString()) / "muted.txt";
    const sessions::Signature kind{sessions::Severity::Error, "glClear", "GL_INVALID_VALUE", "mask #"};
    const sessions::Signature other{sessions::Severity::Warning, "", "", "slow"};
    MutedErrors first(file);
    MutedErrors second(file);
    QVERIFY(first.mute({kind}));
    // What another window has written stays.
    QVERIFY(second.mute({other}));
    QVERIFY(MutedErrors(file).kinds().contains(kind));
    QVERIFY(second.mute({{sessions::Severity::Message, "", "", "only told"}}));
    const MutedErrorsDialog dialog(second, nullptr);
    QStringList severities;
    for (int row = 0; row < 3; ++row)
        severities.append(
            dialog.findChild<QTreeWidget*>(QStringLiteral("listMutedErrors"))->topLevelItem(row)->text(0));
    QCOMPARE(severities, (QStringList{"Error", "Warning", "Message"}));
    QSignalSpy changes(&first, &MutedErrors::changed);
    QVERIFY(first.show({kind}));
    QCOMPARE(changes.count(), 1);
    QVERIFY(first.kinds().contains(other));
    QCOMPARE(MutedErrors(file).kinds().size(), 2U);
}

void TestErrorFolding::mutedFileThatCannotBeRead()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("muted.txt"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QByteArray text = "This is no list of kinds\n";
    file.write(text);
    file.close();
    MutedErrors muted(path.toStdString());
    QVERIFY(!muted.problem().isEmpty());
    QSignalSpy failures(&muted, &MutedErrors::failed);
    QVERIFY(!muted.mute({{sessions::Severity::Error, "glClear", "", "x"}}));
    QCOMPARE(failures.count(), 1);
    QVERIFY(muted.kinds().empty());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), text);
}

void TestErrorFolding::keysGoToErrorsAndFrames()
{
    List list;
    QVERIFY(list.isActive);
    const ErrorListActions actions(list.view, list.filter, list.page);
    list.fill();
    list.add(SeverityWarning, 40, "late");
    list.add(SeverityWarning, -1, "no frame");
    list.view.setFocus();
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&list.view, key, modifiers);
        return list.view.currentIndex().row();
    };
    list.view.setCurrentIndex({});
    list.button.show();
    list.button.setFocus();
    list.view.setFocus(); // which makes the first row current
    QCOMPARE(press(Qt::Key_F8), 0);
    QCOMPARE(press(Qt::Key_F8), 2); // over a warning
    QCOMPARE(press(Qt::Key_F8, Qt::ShiftModifier), 0);
    QCOMPARE(press(Qt::Key_F8, Qt::ShiftModifier), 4); // from the end on
    const auto goTo = [&](int frame) {
        QTest::keyClick(&list.view, Qt::Key_G, Qt::ControlModifier);
        auto* dialog = list.page.findChild<QInputDialog*>();
        dialog->setIntValue(frame);
        dialog->accept();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return list.view.currentIndex().row();
    };
    QCOMPARE(goTo(7), 2);
    QCOMPARE(goTo(1000), 5); // the nearest
    QCOMPARE(goTo(0), 4);
}

void TestErrorFolding::rowsAreCopied_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("text");
    QTest::newRow("text") << "&Text"
                          << "error\t1\tglA\t\t\"a\tb\"\nwarning\t\t\t\t\"x|y, \"\"z\"\"\"";
    QTest::newRow("CSV") << "C&SV with Headers"
                         << "Severity,Frame,Function,Code,Description\nerror,1,glA,,a\tb\n"
                            "warning,,,,\"x|y, \"\"z\"\"\"";
    QTest::newRow("Markdown") << "M&arkdown with Headers"
                              << "| Severity | Frame | Function | Code | Description |\n"
                                 "| --- | ---: | --- | --- | --- |\n"
                                 "| error | 1 | glA |  | a b |\n| warning |  |  |  | x\\|y, \"z\" |";
}

void TestErrorFolding::rowsAreCopied()
{
    QFETCH(QString, entry);
    List list;
    const ErrorListActions actions(list.view, list.filter, list.page);
    list.add(SeverityError, 1, "a\tb", "glA");
    list.add(SeverityError, 2, "other");
    list.add(SeverityWarning, -1, "x|y, \"z\"");
    for (const int row : {2, 0}) // in the order of the list
        list.view.selectionModel()->select(list.filter.index(row, FrameColumn), QItemSelectionModel::Select);
    const auto* menu = list.view.findChild<QMenu*>(QStringLiteral("menuCopyRows"));
    for (QAction* action : menu->actions()) {
        if (action->text() == entry)
            action->trigger();
    }
    QTEST(QGuiApplication::clipboard()->text(), "text");
}

void TestErrorFolding::manyRowsAreCopiedInSteps()
{
    List list(false);
    const ErrorListActions actions(list.view, list.filter, list.page);
    QSignalSpy told(&actions, &ErrorListActions::statusMessage);
    constexpr int count = 60'000;
    for (int i = 0; i < count; ++i)
        list.add(i % 2 ? SeverityError : SeverityWarning, i, "short");
    QClipboard& clipboard = *QGuiApplication::clipboard();
    clipboard.setText(QStringLiteral("old"));
    list.view.selectAll();
    QTest::keyClick(&list.view, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard.text(), QStringLiteral("old"));
    QCOMPARE(told.count(), 1);
    // Rows that are not shown any more are copied all the same.
    list.filter.setShowErrors(false);
    QTRY_COMPARE(told.count(), 2);
    const QStringList lines = clipboard.text().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), count);
    QCOMPARE(lines.last(), QStringLiteral("Error\t59999\t\t\tshort"));
    // Those of a list that is cleared are not, and what is too much leaves the clipboard as it is.
    clipboard.setText(QStringLiteral("old"));
    const auto* menu = list.view.findChild<QMenu*>(QStringLiteral("menuCopyRows"));
    list.view.selectAll();
    menu->actions().first()->trigger();
    list.model.clear();
    QVERIFY(told.last().first().toString().startsWith(QStringLiteral("Nothing was copied")));
    list.view.copying().setMostText(1000);
    for (int i = 0; i < 100; ++i)
        list.add(SeverityWarning, i, "too long");
    list.view.selectAll();
    QTest::keyClick(&list.view, Qt::Key_C, Qt::ControlModifier);
    QVERIFY(told.last().first().toString().contains(QStringLiteral("too many for the clipboard")));
    QCOMPARE(clipboard.text(), QStringLiteral("old"));
}

void TestErrorFolding::rowsAreExported_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isFolded");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("CSV") << "a.csv" << false
                         << QByteArray("Severity,Frame,Function,Code,Description\n"
                                       "error,5,glA,,Level 1\nerror,7,glA,,Level 2\n");
    QTest::newRow("JSON lines, folded")
        << "a.jsonl" << true
        << QByteArray("{\"code\":\"\",\"count\":2,\"description\":\"Level 1\",\"first_frame\":5,"
                      "\"function\":\"glA\",\"last_frame\":7,\"severity\":\"error\"}\n");
}

void TestErrorFolding::rowsAreExported()
{
    QFETCH(QString, name);
    QFETCH(bool, isFolded);
    List list;
    list.add(SeverityError, 5, "Level 1", "glA");
    list.add(SeverityWarning, 6, "not shown");
    list.add(SeverityError, 7, "Level 2", "glA");
    list.filter.setShowWarnings(false);
    list.filter.setFolded(isFolded);
    const QTemporaryDir folder;
    TableExport exporter(&list.page);
    QSignalSpy ended(&exporter, &TableExport::ended);
    exporter.save(folder.filePath(name), shownTable(list.filter));
    QCOMPARE(ended.count(), 1);
    QVERIFY(ended.first().first().toBool());
    QFile file(folder.filePath(name));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QTEST(file.readAll(), "bytes");
}

void TestErrorFolding::exportsThatFailLeaveTheFile()
{
    List list(false);
    for (int i = 0; i < 20'000; ++i)
        list.add(SeverityError, i, "Level 1", "glA");
    const ErrorListActions actions(list.view, list.filter, list.page);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("a.csv")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("old");
    file.close();
    auto& exporter = *list.page.findChild<TableExport*>();
    QSignalSpy ended(&exporter, &TableExport::ended);
    exporter.save(file.fileName(), wholeTable(list.model));
    QCOMPARE(ended.count(), 0); // in steps
    list.model.clear();
    QCOMPARE(ended.count(), 1);
    QVERIFY(!ended.first().first().toBool());
    exporter.save(folder.filePath(QStringLiteral("missing/a.csv")), wholeTable(list.model));
    QCOMPARE(ended.count(), 2);
    QVERIFY(!ended.last().first().toBool());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("old"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList("a.csv"));
}

void TestErrorFolding::histogramWidens()
{
    ErrorHistogram histogram;
    std::map<qint32, int> frames;
    // Forward far, then before the first one.
    for (const qint32 frame :
        {1'000'000, 1'000'001, 1'000'511, 1'000'512, 1'003'000, 1'003'001, 999'990, 40, 2'000'000'000}) {
        histogram.add(frame % 2 ? SeverityError : SeverityWarning, frame);
        ++frames[frame];
        std::uint32_t sum = 0;
        for (const auto& [other, count] : frames) {
            const std::int64_t start = histogram.binStart(other);
            QVERIFY(start <= other && other < start + histogram.binWidth());
            QVERIFY(histogram.countOf(other, other).sum() > 0);
            Q_UNUSED(count)
        }
        const ErrorHistogram::Bin all = histogram.countOf(histogram.firstFrame(), histogram.lastFrame());
        sum = all.sum();
        QCOMPARE(sum, static_cast<std::uint32_t>(frames.size()));
    }
    QCOMPARE(histogram.countOf(0, 2'000'000'000).errors, 3U);
    histogram.add(SeverityError, -1);
    QCOMPARE(histogram.firstFrame(), 40);
}

void TestErrorFolding::overviewIsClicked()
{
    List list;
    ErrorOverview overview(&list.page);
    list.page.layout()->addWidget(&overview);
    overview.setErrors(&list.filter);
    list.add(SeverityError, 10, "x");
    QTest::qWait(250);
    QVERIFY(overview.isHidden()); // one frame alone
    list.add(SeverityError, 19, "x");
    QTRY_VERIFY(overview.isVisible());
    overview.resize(100, 20);
    QSignalSpy chosen(&overview, &ErrorOverview::framesChosen);
    QTest::mouseClick(&overview, Qt::LeftButton, {}, QPoint(95, 10));
    QTest::mouseClick(&overview, Qt::LeftButton, {}, QPoint(30, 10)); // empty: the nearest bar
    QCOMPARE(chosen, QList<QVariantList>({{19, 19}, {10, 10}}));
    QTest::keyClick(&overview, Qt::Key_Right);
    QTest::keyClick(&overview, Qt::Key_Return);
    QCOMPARE(chosen.last(), QVariantList({19, 19}));
    list.model.clear();
    QVERIFY(overview.isHidden());
}

void TestErrorFolding::overviewShowsWhatTheListShows()
{
    List list(false);
    ErrorOverview overview(&list.page);
    list.page.layout()->addWidget(&overview);
    overview.setErrors(&list.filter);
    for (int i = 0; i < 3000; ++i) {
        list.add(SeverityError, 10, "x");
        list.add(SeverityWarning, 19, "x");
    }
    QTRY_VERIFY(overview.isVisible());
    overview.resize(100, 20);
    const auto colours = [&overview] {
        const QImage image = overview.grab().toImage();
        return std::pair(image.pixelColor(4, 15), image.pixelColor(95, 15));
    };
    const auto [error, warning] = colours();
    list.filter.setStepTime(0);
    list.filter.setShowErrors(false);
    QTRY_VERIFY(list.filter.isSettled());
    QCOMPARE(list.filter.shownFrames().countOf(0, 100).sum(), 3000U);
    const auto [hidden, shown] = colours();
    QCOMPARE(shown, warning);
    const QColor base = overview.palette().color(QPalette::Base);
    QVERIFY2(hidden != error && hidden != base, "faint");
    // Only what the list can show is chosen, with new rows as well.
    QSignalSpy chosen(&overview, &ErrorOverview::framesChosen);
    QTest::mouseClick(&overview, Qt::LeftButton, {}, QPoint(4, 10));
    list.add(SeverityWarning, 12, "y");
    QTest::mouseClick(&overview, Qt::LeftButton, {}, QPoint(4, 10));
    QCOMPARE(chosen, QList<QVariantList>({{19, 19}, {12, 12}}));
    list.filter.setFilter(ErrorFilterParser(QStringLiteral("y")).parse().value());
    list.filter.setShowErrors(true);
    QTRY_VERIFY(list.filter.isSettled());
    QTest::mouseClick(&overview, Qt::LeftButton, {}, QPoint(95, 10));
    QCOMPARE(chosen.last(), QVariantList({12, 12}));
    list.filter.setFilter({});
    QTRY_VERIFY(list.filter.isSettled());
    QVERIFY(colours() == std::pair(error, warning));
}

void TestErrorFolding::unseenErrorsAreCounted()
{
    List list;
    QVERIFY(list.isActive);
    const UnseenErrors unseen(list.model, list.view);
    QTabBar bar;
    bar.addTab(QStringLiteral("Error List"));
    UnseenBadge badge(unseen, bar, 0);
    connect(&unseen, &UnseenErrors::changed, &badge, [&badge] { badge.showOn(0); });
    const auto shownBadge = [&bar] {
        const auto* label = qobject_cast<QLabel*>(bar.tabButton(0, QTabBar::LeftSide));
        return label ? label->text() : QString();
    };
    list.fill();
    QCOMPARE(unseen.errors(), 0); // they are looked at
    list.view.hide();
    list.fill();
    QTRY_COMPARE(shownBadge(), QStringLiteral("5"));
    QCOMPARE(unseen.errors(), 4);
    QVERIFY(badge.accessibleName().contains(QStringLiteral("4 errors and 1 warnings")));
    list.view.show();
    QCOMPARE(shownBadge(), QString());
    list.view.hide();
    list.fill();
    list.model.clear();
    QCOMPARE(unseen.warnings(), 0);
    QCOMPARE(shownBadge(), QString());
}

QTEST_MAIN(TestErrorFolding)
#include "TestErrorFolding.moc"
