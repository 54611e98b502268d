#pragma once

#include <QList>
#include <QModelIndex>
#include <QString>

class QTreeView;

namespace widgets {

/// Where the reader of a profile tree is: which rows are open, which cell is current, how far the view is
/// scrolled. Rows are told by their keys, so the place is found again after the model was filled anew.
class TreePlace {
public:
    TreePlace() = default;
    explicit TreePlace(const QTreeView& view);

    /// A current row that is gone leaves its parent current.
    void restore(QTreeView& view) const;

private:
    /// A row among its siblings; several may have one key.
    struct Step {
        QString key;
        int repetition;
    };
    using Path = QList<Step>;

    void addOpenRows(const QTreeView& view, const QModelIndex& parent, const Path& above);

    QList<Path> m_openRows;
    Path m_current;
    int m_column = 0;
    int m_top = 0;
    int m_left = 0;
};

} // namespace widgets
