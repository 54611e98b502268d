#include "ErrorListView.h"

#include "ErrorList.h"
#include "ErrorListDelegate.h"
#include "ErrorListFilterProxyModel.h"
#include "ErrorListModel.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>

namespace {

/// Milliseconds between two scrolls to the end, each of which takes about one.
constexpr int scrollPause = 50;

/// A cell of tab-separated text, in quotes where it could be taken for several.
QString quotedCell(QString text)
{
    const bool isQuoted = std::any_of(text.cbegin(), text.cend(),
        [](QChar character) { return QStringLiteral("\t\n\"").contains(character); });
    if (!isQuoted)
        return text;
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QLatin1Char('"');
}

} // namespace

ErrorListView::ErrorListView(QWidget* parent)
    : QTableView(parent)
    , m_follower(this)
    , m_place(this)
{
    setItemDelegate(new ErrorListDelegate(this));
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setCornerButtonEnabled(false);
    setAlternatingRowColors(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setTabKeyNavigation(false);
    setUpRows();
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    connect(horizontalHeader(), &QHeaderView::sortIndicatorChanged, this, &ErrorListView::sortBy);
    m_scrollPause.setSingleShot(true);
    m_scrollPause.setInterval(scrollPause);
    connect(&m_scrollPause, &QTimer::timeout, this, &ErrorListView::followEndIfPending);
    connect(&m_follower, &EndFollower::endWanted, this, [this] {
        m_scrollPause.stop();
        followEnd();
    });
    connect(verticalScrollBar(), &QAbstractSlider::actionTriggered, this, &ErrorListView::readerActed);
    // Its signals keep silent about clicks near the edge of a row.
    verticalHeader()->viewport()->installEventFilter(this);
    connect(this, &QAbstractItemView::doubleClicked, this, &ErrorListView::open);
}

void ErrorListView::setModel(QAbstractItemModel* model)
{
    if (QAbstractItemModel* former = this->model()) {
        disconnect(former, &QAbstractItemModel::modelAboutToBeReset, this, &ErrorListView::keepPlace);
        disconnect(former, &QAbstractItemModel::modelReset, this, &ErrorListView::restorePlace);
        disconnect(former, &QAbstractItemModel::columnsInserted, this, &ErrorListView::placeCountColumn);
        if (auto* formerFilter = qobject_cast<ErrorListFilterProxyModel*>(former))
            disconnect(formerFilter, &ErrorListFilterProxyModel::settled, this, &ErrorListView::placeSettled);
    }
    QTableView::setModel(model);
    setUpColumns();
    if (!model)
        return;
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, &ErrorListView::keepPlace);
    // Connected after the selection, which the reset clears.
    connect(model, &QAbstractItemModel::modelReset, this, &ErrorListView::restorePlace);
    connect(model, &QAbstractItemModel::columnsInserted, this, &ErrorListView::placeCountColumn);
    if (filter())
        connect(filter(), &ErrorListFilterProxyModel::settled, this, &ErrorListView::placeSettled);
}

ErrorListFilterProxyModel* ErrorListView::filter() const
{
    return qobject_cast<ErrorListFilterProxyModel*>(model());
}

void ErrorListView::restoreColumns(const QByteArray& state)
{
    QHeaderView& header = *horizontalHeader();
    const int section = header.isSortIndicatorShown() ? header.sortIndicatorSection() : -1;
    const Qt::SortOrder order = header.sortIndicatorOrder();
    const QSignalBlocker quiet(&header);
    header.restoreState(state);
    showSortIndicator();
    header.setSortIndicator(section, order);
}

void ErrorListView::showSortIndicator()
{
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setSortIndicatorShown(true);
    horizontalHeader()->setSortIndicatorClearable(true);
}

void ErrorListView::keepPlace()
{
    // What is shown while rows are still being found is not what the reader chose.
    if (m_isPlaceKept)
        return;
    executeDelayedItemsLayout();
    m_place.keep();
}

void ErrorListView::restorePlace()
{
    m_isPlaceKept = filter() && !filter()->isSettled();
    executeDelayedItemsLayout();
    m_place.restoreSelection();
    if (m_follower.isFollowing())
        scrollToBottom();
    else
        m_place.restoreScrolling();
}

void ErrorListView::placeSettled()
{
    if (m_isPlaceKept)
        restorePlace();
    followEnd();
}

void ErrorListView::followEnd()
{
    m_isScrollPending = false;
    if (!m_follower.isFollowing())
        return;
    if (!isVisible() || m_scrollPause.isActive()) {
        m_isScrollPending = true;
        return;
    }
    scrollToBottom();
    m_scrollPause.start();
}

void ErrorListView::followEndIfPending()
{
    if (m_isScrollPending)
        followEnd();
}

void ErrorListView::showEvent(QShowEvent* event)
{
    QTableView::showEvent(event);
    followEndIfPending();
}

void ErrorListView::setUpRows()
{
    // Measuring rows or columns by their contents would cost time for every row that arrives.
    const int iconSide = style()->pixelMetric(QStyle::PM_SmallIconSize);
    const int height = std::max(fontMetrics().height(), iconSide) + 6;
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(height);
    verticalHeader()->setDefaultSectionSize(height);
    verticalHeader()->setFixedWidth(iconSide + 12);
}

void ErrorListView::setUpColumns()
{
    if (!model() || model()->columnCount() < error_list::ColumnCount)
        return;
    const QFontMetrics metrics(font());
    const int margin = 4 * metrics.horizontalAdvance(QLatin1Char(' '));
    setColumnWidth(error_list::FrameColumn, metrics.horizontalAdvance(QStringLiteral("0000000")) + margin);
    setColumnWidth(error_list::FunctionColumn,
        metrics.horizontalAdvance(QStringLiteral("glFramebufferTexture2D")) + margin);
    setColumnWidth(
        error_list::CodeColumn, metrics.horizontalAdvance(QStringLiteral("GL_INVALID_OPERATION")) + margin);
    showSortIndicator();
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void ErrorListView::sortBy(int column, Qt::SortOrder order)
{
    readerActed();
    model()->sort(column, order);
}

void ErrorListView::contextMenuEvent(QContextMenuEvent* event)
{
    Q_EMIT contextMenuOpened();
    const QModelIndexList selected = selectionModel() ? selectedIndexes() : QModelIndexList();
    const QPersistentModelIndex cell = selected.value(0);

    // Rows arrive while the menu is open, and the tab may even be closed.
    const QPointer<ErrorListView> self(this);
    QMenu menu;
    QAction* view = menu.addAction(tr("View contents"));
    view->setShortcut(m_openRow ? QKeySequence(Qt::CTRL | Qt::Key_Return) : QKeySequence(Qt::Key_Return));
    view->setEnabled(cell.isValid());
    menu.addActions(actions());
    const QAction* chosen = menu.exec(viewport()->mapToGlobal(event->pos()));
    if (self && chosen == view && cell.isValid())
        requestContents(cell);
}

void ErrorListView::requestContents(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    const QPoint corner = viewport()->mapToGlobal(visualRect(index).topLeft());
    Q_EMIT itemContentsRequested(index.row(), index.column(), corner);
}

void ErrorListView::open(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    if (filter() && filter()->isGroup(index.row()))
        toggle(index.row());
    else if (m_openRow && filter())
        m_openRow(filter()->sourceRow(index.row()));
    else
        requestContents(index);
}

/// The reader wants to see the rows of the group, and not the end of the list.
void ErrorListView::toggle(int group)
{
    m_follower.stopFollowing();
    filter()->toggle(group);
}

/// True for a key that opens, closes or shows the current row.
bool ErrorListView::openWithKey(const QKeyEvent& event)
{
    const QModelIndex index = currentIndex();
    const bool isGroup = filter() && filter()->isGroup(index.row());
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (isReturn && event.modifiers().testFlag(Qt::ControlModifier))
        requestContents(index);
    else if (isReturn)
        open(index);
    else if (isGroup && (event.key() == Qt::Key_Plus || event.key() == Qt::Key_Minus)) {
        if (filter()->isOpen(index.row()) == (event.key() == Qt::Key_Minus))
            toggle(index.row());
    } else
        return false;
    return true;
}

/// In front of the others, where it shows which rows are groups.
void ErrorListView::placeCountColumn()
{
    const QFontMetrics metrics(font());
    horizontalHeader()->moveSection(horizontalHeader()->visualIndex(error_list::CountColumn), 0);
    setColumnWidth(error_list::CountColumn, metrics.horizontalAdvance(QStringLiteral("  00,000,000  ")));
}

void ErrorListView::goToRow(int row)
{
    readerActed();
    m_follower.stopFollowing();
    executeDelayedItemsLayout();
    const QModelIndex cell = model()->index(row, std::max(0, currentIndex().column()));
    setCurrentIndex(cell);
    scrollTo(cell, QAbstractItemView::PositionAtCenter);
    setFocus();
}

void ErrorListView::keyPressEvent(QKeyEvent* event)
{
    readerActed();
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        event->accept();
        return;
    }
    if (currentIndex().isValid() && openWithKey(*event)) {
        event->accept();
        return;
    }
    // Rows that are laid out only now would seem to be the key's doing.
    executeDelayedItemsLayout();
    const QModelIndex cell = currentIndex();
    const int distance = m_follower.distanceToEnd();
    QTableView::keyPressEvent(event);
    const bool isLast = !currentIndex().siblingAtRow(currentIndex().row() + 1).isValid();
    m_follower.keyHandled(distance, currentIndex() != cell && !isLast);
}

bool ErrorListView::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonPress && watched == verticalHeader()->viewport()) {
        readerActed();
        m_follower.stopFollowing();
    }
    return QTableView::eventFilter(watched, event);
}

void ErrorListView::mousePressEvent(QMouseEvent* event)
{
    readerActed();
    if (indexAt(event->position().toPoint()).isValid())
        m_follower.stopFollowing();
    QTableView::mousePressEvent(event);
}

void ErrorListView::copySelection() const
{
    QModelIndexList cells = selectionModel() ? selectedIndexes() : QModelIndexList();
    if (cells.isEmpty())
        return;
    std::sort(cells.begin(), cells.end());
    QString text;
    if (cells.size() == 1)
        text = cells.front().data().toString();
    int row = -1;
    for (qsizetype i = 0; cells.size() > 1 && i < cells.size(); ++i) {
        if (cells[i].row() != row) {
            if (i > 0)
                text += QLatin1Char('\n');
            row = cells[i].row();
            text += severityText(cells[i]);
        }
        text += QLatin1Char('\t') + quotedCell(cells[i].data().toString());
    }
    QGuiApplication::clipboard()->setText(text);
}

QString ErrorListView::severityText(const QModelIndex& cell) const
{
    const ErrorListModel* errors =
        filter() ? filter()->errors() : qobject_cast<const ErrorListModel*>(model());
    if (!errors)
        return {};
    switch (errors->severity(filter() ? filter()->sourceRow(cell.row()) : cell.row())) {
    case error_list::SeverityError:
        return tr("Error");
    case error_list::SeverityWarning:
        return tr("Warning");
    default:
        return {};
    }
}
