#pragma once

#include <QMenu>

class QHeaderView;

/// Sorts an error list from the keyboard, as clicks on its headers do.
class ErrorListSortMenu : public QMenu {
    Q_OBJECT

public:
    /// The header's columns are those of the time when the menu is opened.
    ErrorListSortMenu(QHeaderView& header, QWidget* parent);

private:
    void fill();
    void sortBy(int column);

    QHeaderView& m_header;
};
