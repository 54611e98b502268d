#pragma once

#include <vector>

class ErrorListFilterProxyModel;
class QTableView;

/// What the reader of an error list sees and has selected. It is kept in rows of the model behind the filter,
/// so that it survives another filter or order, which reset the model.
class ErrorListPlace {
public:
    /// For a view that lives at least as long and has been laid out before each call.
    explicit ErrorListPlace(QTableView* view)
        : m_view(view)
    {
    }

    void keep();
    /// Selects the cells again that are still shown, and makes the current cell current again.
    void restoreSelection() const;
    /// Puts the row that was at the top there again, or the nearest one that is still shown.
    void restoreScrolling() const;

private:
    /// A block of selected cells.
    struct Cells {
        int top;
        int bottom;
        int left;
        int right;
    };

    std::vector<Cells> selectedCells() const;
    const ErrorListFilterProxyModel* filter() const;
    bool isByArrival() const;
    int sourceRow(int row) const;
    int rowFrom(int source) const;
    int rowOf(int source) const;

    QTableView* m_view;
    int m_topRow = -1;
    int m_topOffset = 0; ///< Pixels from the upper edge of the view to that of the top row.
    int m_currentRow = -1;
    int m_currentColumn = -1;
    std::vector<Cells> m_selected;
};
