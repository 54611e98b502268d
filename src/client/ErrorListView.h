#pragma once

#include <QPoint>
#include <QTableView>

/// The table of a client's errors and warnings. Its context menu, a double click and the Return key ask for
/// the full contents of a cell; Ctrl+C copies the selected cells as lines of tab-separated text.
class ErrorListView : public QTableView {
    Q_OBJECT

public:
    explicit ErrorListView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;

Q_SIGNALS:
    void contextMenuOpened();
    /// Asks for the contents of the cell at a row and column, whose top-left corner is at a global position.
    void itemContentsRequested(int, int, QPoint);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void requestContents(const QModelIndex& index);
    void copySelection() const;
    void setUpRows();
    void setUpColumns();
};
