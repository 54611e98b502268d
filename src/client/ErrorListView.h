#pragma once

#include <QPoint>
#include <QPointer>
#include <QTableView>
#include <QTimer>

class QAbstractButton;

/// The table of a client's errors and warnings. Its context menu, a double click and the Return key ask for
/// the full contents of a cell; Ctrl+C copies the selected cells as lines of tab-separated text.
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
    void followToggled(bool on);
    void stopFollowing();
    void readerScrolled();
    int distanceToEnd() const;
    void requestContents(const QModelIndex& index);
    void copySelection() const;
    void setUpRows();
    void setUpColumns();

    QPointer<QAbstractButton> m_followButton;
    QTimer m_followPause;
    bool m_followsLater = false;
};
