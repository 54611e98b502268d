#pragma once

#include "ErrorListArrangement.h"

#include <vector>

class ErrorListFilterProxyModel;
class QTableView;

/// What the reader of an error list sees and has selected. It is kept in entries, which are rows of the model
/// behind the filter or groups, so that it survives another filter or order, which reset the model.
class ErrorListPlace {
public:
    /// For a view that lives at least as long and has been laid out before each call.
    explicit ErrorListPlace(QTableView* view)
        : m_view(view)
    {
    }

    void keep();
    /// Selects the cells again that are still shown, and makes the current cell current again, or its
    /// neighbour.
    void restoreSelection() const;
    /// Puts the row that was at the top there again, or the nearest one that is still shown.
    void restoreScrolling() const;

private:
    using Entry = ErrorListArrangement::Entry;

    /// A block of selected cells.
    struct Cells {
        Entry top;
        Entry bottom;
        int left;
        int right;
    };

    std::vector<Cells> selectedCells() const;
    const ErrorListFilterProxyModel* filter() const;
    bool isByArrival() const;
    Entry entryOf(int row) const;
    int rowFrom(Entry entry) const;
    int rowOf(Entry entry) const;
    int currentRow() const;

    QTableView* m_view;
    Entry m_top = ErrorListArrangement::noEntry;
    int m_topOffset = 0; ///< Pixels from the upper edge of the view to that of the top row.
    Entry m_current = ErrorListArrangement::noEntry;
    int m_currentRow = -1;
    int m_currentColumn = -1;
    std::vector<Cells> m_selected;
};
