#include "ErrorListView.h"

#include "ErrorList.h"
#include "ErrorListDelegate.h"

#include <QAbstractButton>
#include <QAbstractProxyModel>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace {

/// Milliseconds between two scrolls, each of which takes one.
constexpr int followPause = 50;

/// Blocks of selected cells that are kept when the model is reset: as many as a large screen shows rows. Each
/// makes every row that arrives dearer, and where errors and warnings take turns there may be as many as
/// rows.
constexpr std::size_t mostBlocks = 100;

} // namespace

ErrorListView::ErrorListView(QWidget* parent)
    : QTableView(parent)
{
    setItemDelegate(new ErrorListDelegate(this));
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setCornerButtonEnabled(false);
    setAlternatingRowColors(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setTabKeyNavigation(false);
    setUpRows();
    m_followPause.setSingleShot(true);
    m_followPause.setInterval(followPause);
    connect(&m_followPause, &QTimer::timeout, this, [this] {
        if (std::exchange(m_followsLater, false))
            followEnd();
    });
    connect(verticalScrollBar(), &QAbstractSlider::actionTriggered, this, &ErrorListView::readerScrolled);
    connect(verticalHeader(), &QHeaderView::sectionPressed, this, &ErrorListView::stopFollowing);
    connect(this, &QAbstractItemView::doubleClicked, this, &ErrorListView::requestContents);
}

void ErrorListView::setModel(QAbstractItemModel* model)
{
    if (QAbstractItemModel* former = this->model()) {
        disconnect(former, &QAbstractItemModel::modelAboutToBeReset, this, &ErrorListView::keepPlace);
        disconnect(former, &QAbstractItemModel::modelReset, this, &ErrorListView::restorePlace);
    }
    QTableView::setModel(model);
    setUpColumns();
    if (!model)
        return;
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, &ErrorListView::keepPlace);
    // Connected after the selection, which the reset clears.
    connect(model, &QAbstractItemModel::modelReset, this, &ErrorListView::restorePlace);
}

void ErrorListView::keepPlace()
{
    // Where all is filtered out, the reader comes back to what was there before.
    if (model()->rowCount() == 0)
        return;
    executeDelayedItemsLayout();
    const int top = std::max(0, rowAt(0));
    m_place.topRow = sourceRow(top);
    m_place.offset = rowViewportPosition(top);
    const QModelIndex current = currentIndex();
    m_place.currentRow = current.isValid() ? sourceRow(current.row()) : -1;
    m_place.currentColumn = current.column();
    m_place.selected = selectedCells();
}

/// None where they are too many blocks: a part of them would be taken for the whole.
std::vector<ErrorListView::Cells> ErrorListView::selectedCells() const
{
    std::vector<Cells> blocks;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            const int source = sourceRow(row);
            if (row > range.top() && blocks.back().bottom == source - 1)
                blocks.back().bottom = source;
            else if (blocks.size() < mostBlocks)
                blocks.push_back({source, source, range.left(), range.right()});
            else
                return {};
        }
    }
    return blocks;
}

void ErrorListView::restorePlace()
{
    executeDelayedItemsLayout();
    restoreSelection();
    if (m_followButton && m_followButton->isChecked())
        scrollToBottom();
    else
        restoreScrolling();
}

void ErrorListView::restoreSelection()
{
    QItemSelection selection;
    for (const Cells& cells : m_place.selected) {
        const int top = rowFrom(cells.top);
        const int bottom = rowFrom(cells.bottom + 1) - 1;
        if (top <= bottom)
            selection.append(
                QItemSelectionRange(model()->index(top, cells.left), model()->index(bottom, cells.right)));
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);

    const int row = rowFrom(m_place.currentRow);
    if (row == model()->rowCount() || sourceRow(row) != m_place.currentRow)
        return;
    // The view would scroll to it.
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(
        model()->index(row, m_place.currentColumn), QItemSelectionModel::NoUpdate);
    setAutoScroll(true);
}

/// Puts the row that was at the top there again, or the one that is nearest to it.
void ErrorListView::restoreScrolling()
{
    const int count = model()->rowCount();
    if (count == 0 || m_place.topRow < 0)
        return;
    int row = rowFrom(m_place.topRow);
    if (row == count || (row > 0 && m_place.topRow - sourceRow(row - 1) < sourceRow(row) - m_place.topRow))
        --row;
    verticalScrollBar()->setValue(verticalHeader()->sectionPosition(row) - m_place.offset);
}

int ErrorListView::sourceRow(int row) const
{
    const QModelIndex index = model()->index(row, 0);
    const auto* filter = qobject_cast<const QAbstractProxyModel*>(model());
    return filter ? filter->mapToSource(index).row() : row;
}

/// The first row that shows a source row or a later one; the number of rows where none does.
int ErrorListView::rowFrom(int source) const
{
    int first = 0;
    int last = model()->rowCount();
    while (first < last) {
        const int middle = first + (last - first) / 2;
        if (sourceRow(middle) < source)
            first = middle + 1;
        else
            last = middle;
    }
    return first;
}

void ErrorListView::setFollowButton(QAbstractButton* button)
{
    m_followButton = button;
    connect(button, &QAbstractButton::toggled, this, &ErrorListView::followToggled);
}

void ErrorListView::followToggled(bool on)
{
    m_followPause.stop();
    m_followsLater = false;
    if (on)
        followEnd();
}

void ErrorListView::stopFollowing()
{
    if (m_followButton)
        m_followButton->setChecked(false);
}

/// Only up: who scrolls down does not leave the end, even where it has just moved on.
void ErrorListView::readerScrolled()
{
    if (verticalScrollBar()->sliderPosition() < verticalScrollBar()->value())
        stopFollowing();
}

int ErrorListView::distanceToEnd() const
{
    return verticalScrollBar()->maximum() - verticalScrollBar()->value();
}

void ErrorListView::followEnd()
{
    if (!isVisible() || m_followPause.isActive()) {
        m_followsLater = true;
        return;
    }
    scrollToBottom();
    m_followPause.start();
}

void ErrorListView::showEvent(QShowEvent* event)
{
    QTableView::showEvent(event);
    if (std::exchange(m_followsLater, false))
        followEnd();
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
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void ErrorListView::contextMenuEvent(QContextMenuEvent* event)
{
    Q_EMIT contextMenuOpened();
    const QModelIndexList selected = selectionModel() ? selectedIndexes() : QModelIndexList();
    const QPersistentModelIndex cell = selected.value(0);

    // Rows arrive while the menu is open, and the tab may even be closed.
    const QPointer<ErrorListView> self(this);
    QMenu menu;
    QAction* view = menu.addAction(QStringLiteral("View contents"));
    view->setShortcut(Qt::Key_Return);
    view->setEnabled(cell.isValid());
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

void ErrorListView::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        event->accept();
        return;
    }
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentIndex().isValid()) {
        requestContents(currentIndex());
        event->accept();
        return;
    }
    // Rows that are still to be laid out would seem to be the key's doing.
    executeDelayedItemsLayout();
    const QModelIndex cell = currentIndex();
    const int distance = distanceToEnd();
    QTableView::keyPressEvent(event);
    const bool isLast = !currentIndex().siblingAtRow(currentIndex().row() + 1).isValid();
    if (distanceToEnd() > distance || (currentIndex() != cell && !isLast))
        stopFollowing();
}

void ErrorListView::mousePressEvent(QMouseEvent* event)
{
    if (indexAt(event->position().toPoint()).isValid())
        stopFollowing();
    QTableView::mousePressEvent(event);
}

void ErrorListView::copySelection() const
{
    QModelIndexList cells = selectionModel() ? selectedIndexes() : QModelIndexList();
    if (cells.isEmpty())
        return;
    std::sort(cells.begin(), cells.end());
    QString text;
    for (qsizetype i = 0; i < cells.size(); ++i) {
        if (i > 0)
            text += QLatin1Char(cells[i].row() == cells[i - 1].row() ? '\t' : '\n');
        text += cells[i].data().toString();
    }
    QGuiApplication::clipboard()->setText(text);
}
