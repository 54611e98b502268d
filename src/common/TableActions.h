#pragma once

#include "TableCopy.h"
#include "TextTable.h"

#include <QObject>

#include <functional>
#include <vector>

class QAbstractItemView;
class QMenu;

/// A menu of ways to copy the selected rows of a view: as text, CSV and Markdown, with headers and without.
/// It is offered as an action of the view, whose keys it also has.
class TableActions : public QObject {
    Q_OBJECT

public:
    /// Takes the table from a function, with the rows of the view.
    TableActions(QAbstractItemView& view, std::function<TextTable()> table);

    /// The rows of a view that have selected cells, in their order.
    static std::vector<int> selectedRows(const QAbstractItemView& view);

Q_SIGNALS:
    /// What becomes of many rows, for the user.
    void statusMessage(const QString& text);

private:
    void add(QMenu& menu, const QString& text, TextTable::Format format, bool hasHeader);
    void copy(TextTable::Format format, bool hasHeader);

    QAbstractItemView& m_view;
    std::function<TextTable()> m_table;
    TableCopy m_copy{this};
};
