#pragma once

#include <QPoint>
#include <QPointer>
#include <QTableView>
#include <QTimer>

#include <vector>

class QAbstractButton;

/// The table of a client's errors and warnings. Its context menu, a double click and the Return key ask for
/// the full contents of a cell; Ctrl+C copies the selected cells as lines of tab-separated text. When a
/// filter resets its model, the reader keeps the place, the current cell and the selection as far as they are
/// still shown.
class ErrorListView : public QTableView {
    Q_OBJECT

public:
    explicit ErrorListView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;

    /// The button that is checked as long as the view is to follow its last row. A reader who scrolls up, or
    /// who selects a row, unchecks it.
    void setFollowButton(QAbstractButton* button);
    /// Scrolls to the last row: at once, or within a short time where that has just been done. While the view
    /// is hidden it waits until it is shown.
    void followEnd();

Q_SIGNALS:
    void contextMenuOpened();
    /// Asks for the contents of the cell at a row and column, whose top-left corner is at a global position.
    void itemContentsRequested(int, int, QPoint);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    /// A block of cells; its rows are those of the model behind the filter, as all rows of a Place are.
    struct Cells {
        int top;
        int bottom;
        int left;
        int right;
    };
    /// What the reader sees and has selected.
    struct Place {
        int topRow = -1;
        int offset = 0; ///< Pixels from the upper edge of the view to that of the top row.
        int currentRow = -1;
        int currentColumn = -1;
        std::vector<Cells> selected;
    };

    void keepPlace();
    std::vector<Cells> selectedCells() const;
    void restorePlace();
    void restoreSelection();
    void restoreScrolling();
    int sourceRow(int row) const;
    int rowFrom(int source) const;
    void followToggled(bool on);
    void stopFollowing();
    void readerScrolled();
    int distanceToEnd() const;
    void requestContents(const QModelIndex& index);
    void copySelection() const;
    void setUpRows();
    void setUpColumns();

    Place m_place;
    QPointer<QAbstractButton> m_followButton;
    QTimer m_followPause;
    bool m_followsLater = false;
};
