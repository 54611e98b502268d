#include "ErrorListPlace.h"

#include "ErrorListFilterProxyModel.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>

#include <algorithm>
#include <numeric>

namespace {

/// Blocks of selected cells that are kept: as many as a large screen shows rows. Each makes every row that
/// arrives dearer, and where errors and warnings alternate there may be as many as rows.
constexpr std::size_t mostBlocks = 100;

/// Selected rows that are kept in a sorted list, where each is looked for among all rows.
constexpr std::uint64_t mostRowsInOrder = 40;

} // namespace

void ErrorListPlace::keep()
{
    // Where all rows are filtered out, the reader comes back to what was there before.
    if (m_view->model()->rowCount() == 0)
        return;
    const int top = std::max(0, m_view->rowAt(0));
    m_top = entryOf(top);
    m_topOffset = m_view->rowViewportPosition(top);
    const QModelIndex current = m_view->currentIndex();
    m_current = current.isValid() ? entryOf(current.row()) : ErrorListArrangement::noEntry;
    m_currentRow = current.row();
    m_currentColumn = current.column();
    m_selected = selectedCells();
}

/// None where they are too many blocks: a part of them would be taken for the whole.
std::vector<ErrorListPlace::Cells> ErrorListPlace::selectedCells() const
{
    std::vector<Cells> blocks;
    for (const QItemSelectionRange& range : m_view->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            const Entry entry = entryOf(row);
            if (row > range.top() && blocks.back().bottom + 1 == entry)
                blocks.back().bottom = entry;
            else if (blocks.size() < mostBlocks)
                blocks.push_back({entry, entry, range.left(), range.right()});
            else
                return {};
        }
    }
    return blocks;
}

void ErrorListPlace::restoreSelection() const
{
    const QAbstractItemModel& model = *m_view->model();
    QItemSelectionModel& selectionModel = *m_view->selectionModel();
    QItemSelection selection;
    const std::uint64_t count = std::accumulate(m_selected.begin(), m_selected.end(), std::uint64_t(0),
        [](std::uint64_t sum, const Cells& cells) { return sum + cells.bottom - cells.top + 1; });
    // There may be a column less than before.
    const int lastColumn = model.columnCount() - 1;
    const auto add = [&](int top, int bottom, const Cells& cells) {
        if (top >= 0 && top <= bottom && cells.left <= lastColumn)
            selection.append(QItemSelectionRange(
                model.index(top, cells.left), model.index(bottom, std::min(cells.right, lastColumn))));
    };
    for (const Cells& cells : m_selected) {
        if (isByArrival())
            add(rowFrom(cells.top), rowFrom(cells.bottom + 1) - 1, cells);
        for (Entry entry = cells.top; !isByArrival() && count <= mostRowsInOrder && entry <= cells.bottom;
             ++entry)
            add(rowOf(entry), rowOf(entry), cells);
    }
    selectionModel.select(selection, QItemSelectionModel::ClearAndSelect);

    const int row = currentRow();
    if (row < 0)
        return;
    // The view would scroll to the current cell.
    m_view->setAutoScroll(false);
    selectionModel.setCurrentIndex(
        model.index(row, std::min(m_currentColumn, lastColumn)), QItemSelectionModel::NoUpdate);
    m_view->setAutoScroll(true);
}

/// The row of the current entry, or of the one that took its place when it was hidden.
int ErrorListPlace::currentRow() const
{
    const int row = rowOf(m_current);
    if (row >= 0 || m_current == ErrorListArrangement::noEntry)
        return row;
    const bool hasPlace = isByArrival() && !ErrorListArrangement::isGroup(m_current);
    return std::min(hasPlace ? rowFrom(m_current) : m_currentRow, m_view->model()->rowCount() - 1);
}

void ErrorListPlace::restoreScrolling() const
{
    const int count = m_view->model()->rowCount();
    if (count == 0 || m_top == ErrorListArrangement::noEntry)
        return;
    int row = std::max(0, rowOf(m_top));
    if (isByArrival() && !ErrorListArrangement::isGroup(m_top)) {
        row = rowFrom(m_top);
        // The nearer one of those around a row that is not shown.
        if (row == count || (row > 0 && m_top - entryOf(row - 1) < entryOf(row) - m_top))
            --row;
    }
    m_view->verticalScrollBar()->setValue(m_view->verticalHeader()->sectionPosition(row) - m_topOffset);
}

const ErrorListFilterProxyModel* ErrorListPlace::filter() const
{
    return qobject_cast<const ErrorListFilterProxyModel*>(m_view->model());
}

bool ErrorListPlace::isByArrival() const
{
    return !filter() || filter()->isByArrival();
}

ErrorListPlace::Entry ErrorListPlace::entryOf(int row) const
{
    return filter() ? filter()->entry(row) : static_cast<Entry>(row);
}

/// In the order of arrival, the first row that shows an entry or a later one; the number of rows where none
/// does.
int ErrorListPlace::rowFrom(Entry entry) const
{
    int first = 0;
    int last = m_view->model()->rowCount();
    while (first < last) {
        const int middle = first + (last - first) / 2;
        if (entryOf(middle) < entry)
            first = middle + 1;
        else
            last = middle;
    }
    return first;
}

/// The row that shows an entry, -1 where none does.
int ErrorListPlace::rowOf(Entry entry) const
{
    if (entry == ErrorListArrangement::noEntry)
        return -1;
    return filter() ? filter()->rowOfEntry(entry) : static_cast<int>(entry);
}
