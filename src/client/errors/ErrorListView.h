#pragma once

#include "EndFollower.h"
#include "ErrorListPlace.h"
#include "TableCopy.h"

#include <QPoint>
#include <QTableView>
#include <QTimer>

#include <functional>
#include <utility>
#include <vector>

class ErrorListFilterProxyModel;
class ErrorListModel;
class QMenu;

/// The table of a client's errors and warnings. Its context menu, which also has the view's actions, a double
/// click and the Return key ask for the full contents of a cell, unless somebody else opens rows; then
/// Ctrl+Return does. Of a group they open or close it, and so do + and -. Ctrl+C copies a cell as it is, and
/// several as lines of tab-separated cells that begin with the severity. Cells with tabs, line breaks or
/// quotes are quoted there, as spreadsheets do it. When a filter resets its model, the reader keeps the
/// place, the current cell and the selection as far as they are still shown. A click on a header sorts, the
/// third one brings the order of arrival back.
class ErrorListView : public QTableView {
    Q_OBJECT

public:
    explicit ErrorListView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;

    /// Gives the columns the widths of a state that QHeaderView::saveState() gave. The order of the rows
    /// stays.
    void restoreColumns(const QByteArray& state);

    /// Has a double click and the Return key call a function with a row of the model behind the filter.
    void setRowOpener(std::function<void(int sourceRow)> opener) { m_openRow = std::move(opener); }

    /// Makes a row the current one, with the reader on it.
    void goToRow(int row);
    /// The button that is checked as long as the view is to follow its last row. A reader who scrolls up, or
    /// who selects a row, unchecks it.
    void setFollowButton(QAbstractButton* button) { m_follower.setButton(button); }
    /// Scrolls to the last row, if that is to be followed: at once, or within a short time where the view has
    /// just scrolled. A hidden view scrolls when it is shown.
    void followEnd();
    /// What Ctrl+C copies with.
    TableCopy& copying() { return m_copy; }

Q_SIGNALS:
    void contextMenuOpened();
    /// Asks for the contents of the cell at a row and column, whose top-left corner is at a global position.
    void itemContentsRequested(int, int, QPoint);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void keepPlace();
    void restorePlace();
    void placeSettled();
    void readerActed() { m_isPlaceKept = false; }
    void showSortIndicator();
    void sortBy(int column, Qt::SortOrder order);
    void followEndIfPending();
    void requestContents(const QModelIndex& index);
    void open(const QModelIndex& index);
    void toggle(int group);
    bool openWithKey(const QKeyEvent& event);
    void placeCountColumn();
    void copySelection();
    static QString severityText(const ErrorListModel* errors, int row);
    ErrorListFilterProxyModel* filter() const;
    void setUpRows();
    void setUpColumns();

    std::function<void(int)> m_openRow;
    EndFollower m_follower;
    ErrorListPlace m_place; ///< While a filter resets the model.
    TableCopy m_copy{this};
    bool m_isPlaceKept = false; ///< The reader comes back to the place when the filter has found all rows.
    QTimer m_scrollPause;
    bool m_isScrollPending = false; ///< The end is to be shown after the pause, or when the view is shown.
};
