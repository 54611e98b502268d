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
#include <bit>
#include <cstdint>
#include <memory>
#include <numeric>
#include <optional>

namespace {

/// Milliseconds between two scrolls to the end, each of which takes about one.
constexpr int scrollPause = 50;

/// Columns of a row of which cells are selected, as bits.
struct SelectedRow {
    int row;
    std::uint32_t columns;
};

std::vector<SelectedRow> selectedCells(const QTableView& view)
{
    const QItemSelection selection = view.selectionModel()->selection();
    std::vector<SelectedRow> rows;
    rows.reserve(std::accumulate(selection.begin(), selection.end(), std::size_t(0),
        [](std::size_t sum, const QItemSelectionRange& range) {
            return sum + static_cast<std::size_t>(range.height());
        }));
    for (const QItemSelectionRange& range : selection) {
        std::uint32_t columns = 0;
        for (int column = range.left(); column <= range.right(); ++column)
            columns |= view.isColumnHidden(column) ? 0U : 1U << static_cast<unsigned>(column);
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back({row, columns});
    }
    const auto isBefore = [](const SelectedRow& left, const SelectedRow& right) {
        return left.row < right.row;
    };
    if (!std::is_sorted(rows.begin(), rows.end(), isBefore))
        std::sort(rows.begin(), rows.end(), isBefore);
    // Rows with cells of several ranges are one.
    std::size_t kept = 0;
    for (const SelectedRow& row : rows) {
        if (kept > 0 && rows[kept - 1].row == row.row)
            rows[kept - 1].columns |= row.columns;
        else
            rows[kept++] = row;
    }
    rows.resize(kept);
    return rows;
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
    // With the view's selection, the header would look at each row whenever it is drawn, to see whether whole
    // columns are selected, which it does not show.
    horizontalHeader()->setSelectionModel(new QItemSelectionModel(model, horizontalHeader()));
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
    // Not by a list of all cells, of which there may be millions.
    const QItemSelection selected = selectionModel() ? selectionModel()->selection() : QItemSelection();
    const QPersistentModelIndex cell =
        selected.isEmpty() ? QPersistentModelIndex() : selected.front().topLeft();

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

void ErrorListView::copySelection()
{
    std::vector<SelectedRow> selected = selectionModel() ? selectedCells(*this) : std::vector<SelectedRow>();
    if (selected.empty())
        return;
    if (selected.size() == 1 && std::has_single_bit(selected.front().columns)) {
        const int column = std::countr_zero(selected.front().columns);
        QGuiApplication::clipboard()->setText(model()->index(selected.front().row, column).data().toString());
        return;
    }
    // Rows of the list behind the filter stay the same whatever is shown meanwhile; groups have none.
    const bool isBehindFilter = filter() && !filter()->isFolded();
    const ErrorListModel* errors =
        filter() ? filter()->errors() : qobject_cast<const ErrorListModel*>(model());
    if (isBehindFilter) {
        for (SelectedRow& row : selected)
            row.row = filter()->sourceRow(row.row);
    }
    TextTable table;
    table.rowCount = static_cast<int>(selected.size());
    table.model = isBehindFilter ? errors : model();
    table.cells = [this, errors, isBehindFilter, model = table.model,
                      rows = std::make_shared<const std::vector<SelectedRow>>(std::move(selected))](
                      int number) {
        const SelectedRow& row = (*rows)[static_cast<std::size_t>(number)];
        const bool isOfFilter = filter() && !isBehindFilter;
        QStringList cells{severityText(errors, isOfFilter ? filter()->sourceRow(row.row) : row.row)};
        for (int column = 0; column < model->columnCount(); ++column) {
            if ((row.columns >> static_cast<unsigned>(column) & 1U) != 0)
                cells.append(model->index(row.row, column).data().toString());
        }
        return cells;
    };
    m_copy.start(table, std::nullopt, TextTable::Format::Text, false);
}

QString ErrorListView::severityText(const ErrorListModel* errors, int row)
{
    if (!errors)
        return {};
    switch (errors->severity(row)) {
    case error_list::SeverityError:
        return tr("Error");
    case error_list::SeverityWarning:
        return tr("Warning");
    default:
        return {};
    }
}
