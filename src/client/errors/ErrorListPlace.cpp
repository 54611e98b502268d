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
constexpr int mostRowsInOrder = 40;

} // namespace

void ErrorListPlace::keep()
{
    // Where all rows are filtered out, the reader comes back to what was there before.
    if (m_view->model()->rowCount() == 0)
        return;
    const int top = std::max(0, m_view->rowAt(0));
    m_topRow = sourceRow(top);
    m_topOffset = m_view->rowViewportPosition(top);
    const QModelIndex current = m_view->currentIndex();
    m_currentRow = current.isValid() ? sourceRow(current.row()) : -1;
    m_currentColumn = current.column();
    m_selected = selectedCells();
}

/// None where they are too many blocks: a part of them would be taken for the whole.
std::vector<ErrorListPlace::Cells> ErrorListPlace::selectedCells() const
{
    std::vector<Cells> blocks;
    for (const QItemSelectionRange& range : m_view->selectionModel()->selection()) {
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

void ErrorListPlace::restoreSelection() const
{
    const QAbstractItemModel& model = *m_view->model();
    QItemSelectionModel& selectionModel = *m_view->selectionModel();
    QItemSelection selection;
    const int count = std::accumulate(m_selected.begin(), m_selected.end(), 0,
        [](int sum, const Cells& cells) { return sum + cells.bottom - cells.top + 1; });
    const auto add = [&](int top, int bottom, const Cells& cells) {
        if (top >= 0 && top <= bottom)
            selection.append(
                QItemSelectionRange(model.index(top, cells.left), model.index(bottom, cells.right)));
    };
    for (const Cells& cells : m_selected) {
        if (isByArrival())
            add(rowFrom(cells.top), rowFrom(cells.bottom + 1) - 1, cells);
        for (int source = cells.top; !isByArrival() && count <= mostRowsInOrder && source <= cells.bottom;
             ++source)
            add(rowOf(source), rowOf(source), cells);
    }
    selectionModel.select(selection, QItemSelectionModel::ClearAndSelect);

    const int row = rowOf(m_currentRow);
    if (row < 0)
        return;
    // The view would scroll to the current cell.
    m_view->setAutoScroll(false);
    selectionModel.setCurrentIndex(model.index(row, m_currentColumn), QItemSelectionModel::NoUpdate);
    m_view->setAutoScroll(true);
}

void ErrorListPlace::restoreScrolling() const
{
    const int count = m_view->model()->rowCount();
    if (count == 0 || m_topRow < 0)
        return;
    int row = isByArrival() ? rowFrom(m_topRow) : std::max(0, rowOf(m_topRow));
    if (isByArrival()
        && (row == count || (row > 0 && m_topRow - sourceRow(row - 1) < sourceRow(row) - m_topRow)))
        --row;
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

int ErrorListPlace::sourceRow(int row) const
{
    return filter() ? filter()->sourceRow(row) : row;
}

/// In the order of arrival, the first row that shows a source row or a later one; the number of rows where
/// none does.
int ErrorListPlace::rowFrom(int source) const
{
    int first = 0;
    int last = m_view->model()->rowCount();
    while (first < last) {
        const int middle = first + (last - first) / 2;
        if (sourceRow(middle) < source)
            first = middle + 1;
        else
            last = middle;
    }
    return first;
}

/// The row that shows a source row, -1 where none does.
int ErrorListPlace::rowOf(int source) const
{
    if (source < 0)
        return -1;
    return filter() ? filter()->rowOf(source) : source;
}
