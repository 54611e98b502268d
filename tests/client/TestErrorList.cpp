#include "ErrorListDelegate.h"
#include "ErrorListFilterProxyModel.h"
#include "ErrorListModel.h"
#include "ErrorListView.h"
#include "MetaObjects.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextLayout>
#include <QTimer>
#include <QToolTip>

using namespace error_list;

namespace {

QIcon iconOf(Qt::GlobalColor color)
{
    QPixmap pixmap(8, 8);
    pixmap.fill(color);
    return QIcon(pixmap);
}

/// A list with an error, a warning, a row of another severity and a last error.
struct List {
    List()
    {
        proxy.setSourceModel(&model);
        model.append(SeverityError, 0, QStringLiteral("GL_INVALID_ENUM"), QStringLiteral("bad cap"),
            QStringLiteral("glEnable"));
        model.append(SeverityWarning, 7, QString(), QStringLiteral("slow"), QString());
        model.append(2, 8, QString(), QStringLiteral("neither"), QString());
        model.append(SeverityError, -1, QString(), QStringLiteral("two\nlines"), QString());
    }
    QStringList shown() const
    {
        QStringList texts;
        for (int row = 0; row < proxy.rowCount(); ++row)
            texts.append(proxy.index(row, DescriptionColumn).data().toString());
        return texts;
    }

    ErrorListModel model{iconOf(Qt::blue), iconOf(Qt::yellow), iconOf(Qt::red)};
    QAbstractItemModelTester modelTester{&model};
    ErrorListFilterProxyModel proxy;
    QAbstractItemModelTester proxyTester{&proxy};
};

} // namespace

class TestErrorList : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cellsAndHeaders();
    void filter();
    void contextMenuAsksForTheSelectedCell();
    void contextMenuWithoutSelection();
    void viewMayGoWhileItsMenuIsOpen();
    void keys();
    void longTexts();
    void orderInRightToLeftLayouts();
    void filterKeepsTheReadersPlace();
};

void TestErrorList::cellsAndHeaders()
{
    const List list;
    const auto cell = [&list](int row, int column) {
        return list.model.index(row, column).data();
    };
    QCOMPARE(cell(0, FrameColumn), QVariant("0"));
    QCOMPARE(cell(0, FunctionColumn), QVariant("glEnable"));
    QCOMPARE(cell(0, CodeColumn), QVariant("GL_INVALID_ENUM"));
    QCOMPARE(cell(3, FrameColumn), QVariant("")); // a negative frame is none
    QCOMPARE(cell(3, DescriptionColumn), QVariant("two\nlines"));
    QVERIFY(!list.model.index(0, 0).data(Qt::ToolTipRole).isValid());

    QStringList headers;
    for (int column = 0; column < 5; ++column)
        headers.append(list.model.headerData(column, Qt::Horizontal).toString());
    QCOMPARE(headers, QStringList({"Frame", "Function", "Code", "Description", ""}));

    const auto color = [&list](int row) {
        const QVariant icon = list.model.headerData(row, Qt::Vertical, Qt::DecorationRole);
        return icon.isValid() ? icon.value<QIcon>().pixmap(8, 8).toImage().pixelColor(4, 4) : QColor();
    };
    QCOMPARE(color(0), QColor(Qt::red));
    QCOMPARE(color(1), QColor(Qt::yellow));
    QCOMPARE(color(2), QColor());
    QVERIFY(!list.model.headerData(0, Qt::Vertical).isValid());
    QVERIFY(!list.model.headerData(4, Qt::Vertical, Qt::DecorationRole).isValid());
}

void TestErrorList::filter()
{
    List list;
    QCOMPARE(list.shown(), QStringList({"bad cap", "slow", "two\nlines"}));
    list.proxy.setShowErrors(false);
    QCOMPARE(list.shown(), QStringList({"slow"}));
    list.proxy.setShowWarnings(false);
    QCOMPARE(list.shown(), QStringList());
    list.model.append(SeverityWarning, 9, QString(), QStringLiteral("meanwhile"), QString());
    QCOMPARE(list.shown(), QStringList());
    list.proxy.setShowWarnings(true);
    QCOMPARE(list.shown(), QStringList({"slow", "meanwhile"}));

    QSignalSpy changes(&list.proxy, &QAbstractItemModel::rowsRemoved);
    list.proxy.setShowWarnings(true);
    QCOMPARE(changes.count(), 0);
    list.model.append(SeverityWarning, 10, QString(), QStringLiteral("next"), QString());
    QCOMPARE(list.shown(), QStringList({"slow", "meanwhile", "next"}));
}

void TestErrorList::contextMenuAsksForTheSelectedCell()
{
    QCOMPARE(ownMethods(ErrorListView::staticMetaObject),
        QStringList({"contextMenuOpened()", "itemContentsRequested(int,int,QPoint)"}));
    List list;
    ErrorListView view;
    view.setModel(&list.proxy);
    view.resize(600, 200);
    view.show();
    view.setCurrentIndex(list.proxy.index(1, DescriptionColumn));
    QSignalSpy opened(&view, &ErrorListView::contextMenuOpened);
    QSignalSpy requested(&view, &ErrorListView::itemContentsRequested);

    QStringList entries;
    QTimer::singleShot(0, &view, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu);
        for (const QAction* action : menu->actions())
            entries.append(action->text());
        QCOMPARE(requested.count(), 0);
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
    });
    const QPoint position = view.visualRect(view.currentIndex()).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, position, view.viewport()->mapToGlobal(position));
    QCoreApplication::sendEvent(view.viewport(), &event);

    QCOMPARE(entries, QStringList("View contents"));
    QCOMPARE(opened.count(), 1);
    const QPoint corner = view.viewport()->mapToGlobal(view.visualRect(view.currentIndex()).topLeft());
    QCOMPARE(requested, QList<QVariantList>({QVariantList{1, 3, corner}}));
}

void TestErrorList::contextMenuWithoutSelection()
{
    List list;
    ErrorListView view;
    view.setModel(&list.proxy);
    view.show();
    QSignalSpy opened(&view, &ErrorListView::contextMenuOpened);
    QSignalSpy requested(&view, &ErrorListView::itemContentsRequested);
    QTimer::singleShot(0, &view, [] {
        QWidget* menu = QApplication::activePopupWidget();
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
        menu->close();
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 150), view.mapToGlobal(QPoint(5, 150)));
    QCoreApplication::sendEvent(view.viewport(), &event);
    QCOMPARE(opened.count(), 1);
    QCOMPARE(requested.count(), 0);
}

void TestErrorList::viewMayGoWhileItsMenuIsOpen()
{
    List list;
    auto view = std::make_unique<ErrorListView>();
    view->setModel(&list.proxy);
    view->show();
    view->setCurrentIndex(list.proxy.index(0, 0));
    QTimer::singleShot(0, qApp, [&view] {
        QWidget* menu = QApplication::activePopupWidget();
        view->deleteLater();
        QCoreApplication::sendPostedEvents(view.release(), QEvent::DeferredDelete);
        menu->close();
    });
    // Sent by hand: an application's own delivery would go on with the view that is gone.
    struct Opener : ErrorListView {
        using ErrorListView::contextMenuEvent;
    };
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), QPoint(5, 5));
    (view.get()->*&Opener::contextMenuEvent)(&event);
    QVERIFY(!view);
}

void TestErrorList::keys()
{
    List list;
    list.model.append(SeverityError, -1, QString(), QStringLiteral("say \"no\""), QString());
    ErrorListView view;
    view.setModel(&list.proxy);
    view.show();
    QSignalSpy requested(&view, &ErrorListView::itemContentsRequested);
    view.setCurrentIndex(list.proxy.index(0, CodeColumn));
    QTest::keyClick(&view, Qt::Key_Return);
    QCOMPARE(requested.count(), 1);
    QCOMPARE(requested.at(0).mid(0, 2), QVariantList({0, 2}));

    view.selectAll();
    QTest::keySequence(&view, QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(),
        QStringLiteral("Error\t0\tglEnable\tGL_INVALID_ENUM\tbad cap\nWarning\t7\t\t\tslow\n"
                       "Error\t\t\t\t\"two\nlines\"\nError\t\t\t\t\"say \"\"no\"\"\""));
    view.selectionModel()->setCurrentIndex(
        list.proxy.index(2, DescriptionColumn), QItemSelectionModel::ClearAndSelect);
    QTest::keySequence(&view, QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("two\nlines"));
}

void TestErrorList::longTexts()
{
    List list;
    const QString log = QString(8000, QLatin1Char('i')); // a narrow letter
    list.model.append(SeverityError, 1, QString(), log, QString());
    ErrorListView view;
    view.setModel(&list.proxy);
    view.resize(900, 200);
    view.show();
    const QModelIndex cell = list.proxy.index(3, DescriptionColumn);
    QCOMPARE(cell.data().toString(), log);
    QVERIFY2(ErrorListDelegate().displayText(log, QLocale()).size() < 3000, "shaping takes 60 ns a letter");

    QStyleOptionViewItem option;
    option.initFrom(&view);
    for (const int width : {150, 3500}) {
        option.rect = QRect(0, 0, width, 20);
        const int hint = view.itemDelegate()->sizeHint(option, cell).width();
        QVERIFY2(hint > width && hint < 3 * width, qPrintable(QString::number(hint)));
    }

    // Letters without a width would let a text that is cut seem to fit.
    list.model.append(
        SeverityError, 2, QString(), QString(8000, QChar(0x200B)) + QLatin1Char('!'), QString());
    const QRect place = view.visualRect(list.proxy.index(4, DescriptionColumn));
    QHelpEvent help(QEvent::ToolTip, place.center(), view.viewport()->mapToGlobal(place.center()));
    QCoreApplication::sendEvent(view.viewport(), &help);
    QVERIFY(!QToolTip::text().isEmpty());
}

void TestErrorList::orderInRightToLeftLayouts()
{
    List list;
    list.model.append(SeverityError, 1, QString(), QStringLiteral("5 bad calls"), QString());
    list.model.append(SeverityError, 1, QString(), QStringLiteral(u"5 \u05D0\u05D1"), QString());
    struct Delegate : ErrorListDelegate {
        using ErrorListDelegate::initStyleOption;
    };
    const Delegate delegate;
    /// Where a line in a layout's direction shows the space behind the digit: 0 at its left end, 1 at its
    /// right one.
    const auto placeOfSpace = [&](int row, Qt::LayoutDirection direction) {
        QStyleOptionViewItem option;
        option.direction = direction;
        option.rect = QRect(0, 0, 1000, 20);
        delegate.initStyleOption(&option, list.proxy.index(row, DescriptionColumn));
        QTextLayout layout(option.text);
        QTextOption text;
        text.setTextDirection(direction);
        layout.setTextOption(text);
        layout.beginLayout();
        QTextLine line = layout.createLine();
        line.setLineWidth(option.rect.width());
        layout.endLayout();
        const qreal x = line.cursorToX(static_cast<int>(option.text.indexOf(QLatin1Char(' '))));
        return (x - line.naturalTextRect().left()) / line.naturalTextWidth();
    };
    QVERIFY(placeOfSpace(3, Qt::LeftToRight) < 0.5);
    QVERIFY(placeOfSpace(3, Qt::RightToLeft) < 0.5);
    QVERIFY(placeOfSpace(4, Qt::RightToLeft) > 0.5);
}

void TestErrorList::filterKeepsTheReadersPlace()
{
    ErrorListModel model{QIcon(), QIcon(), QIcon()};
    for (int i = 0; i < 3000; ++i)
        model.append(i % 3 == 0 ? SeverityWarning : SeverityError, i, QString(), QString(), QString());
    ErrorListFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    ErrorListView view;
    view.setModel(&proxy);
    view.resize(600, 200);
    view.show();
    const QItemSelectionModel& selection = *view.selectionModel();
    /// The frames at the top, of the current cell and of those that are selected.
    const auto place = [&] {
        QStringList frames;
        const QModelIndexList selected = selection.selectedIndexes();
        for (const QModelIndex& cell :
            QModelIndexList{view.indexAt(QPoint(1, 0)), view.currentIndex()} + selected)
            frames.append(cell.siblingAtColumn(FrameColumn).data().toString());
        return frames.join(QLatin1Char(' '));
    };
    view.selectionModel()->select(QItemSelection(proxy.index(196, CodeColumn), proxy.index(200, CodeColumn)),
        QItemSelectionModel::ClearAndSelect);
    view.selectionModel()->setCurrentIndex(proxy.index(200, CodeColumn), QItemSelectionModel::NoUpdate);
    view.verticalScrollBar()->setValue(view.rowHeight(0) * 100 + 5);

    proxy.setShowWarnings(false);
    QCOMPARE(place(), QStringLiteral("100 200 196 197 199 200"));
    QCOMPARE(view.rowViewportPosition(view.rowAt(0)), -5);
    proxy.setShowWarnings(true);
    QCOMPARE(place(), QStringLiteral("100 200 196 197 199 200"));
    QVERIFY2(view.hasAutoScroll(), "else keys would move the current cell out of sight");
    proxy.setShowErrors(false);
    QCOMPARE(place(), QStringLiteral("99 201")); // the nearest warnings
    proxy.setShowWarnings(false);
    proxy.setShowErrors(true);
    QCOMPARE(place(), QStringLiteral("100 202"));

    // Each range makes each row that arrives dearer.
    view.selectAll();
    proxy.setShowWarnings(true);
    QVERIFY(selection.selection().size() < 1000);
}

QTEST_MAIN(TestErrorList)
#include "TestErrorList.moc"
