#include "TreePlace.h"

#include "ProfileColumns.h"

#include <QHash>
#include <QScrollBar>
#include <QTreeView>

namespace widgets {

using models::KeyColumn;

namespace {

QString keyText(const QModelIndex& row)
{
    return row.data(Qt::EditRole).toString();
}

} // namespace

TreePlace::TreePlace(const QTreeView& view)
    : m_column(view.currentIndex().column())
    , m_top(view.verticalScrollBar()->value())
    , m_left(view.horizontalScrollBar()->value())
{
    for (QModelIndex row = view.currentIndex().siblingAtColumn(KeyColumn); row.isValid();
         row = row.parent()) {
        int repetition = 0;
        for (int before = 0; before < row.row(); ++before)
            repetition += keyText(row.siblingAtRow(before)) == keyText(row) ? 1 : 0;
        m_current.prepend({keyText(row), repetition});
    }
    addOpenRows(view, {}, {});
}

void TreePlace::addOpenRows(const QTreeView& view, const QModelIndex& parent, const Path& above)
{
    QHash<QString, int> repetitions;
    for (int row = 0; row < view.model()->rowCount(parent); ++row) {
        const QModelIndex index = view.model()->index(row, KeyColumn, parent);
        const int repetition = repetitions[keyText(index)]++;
        // Rows without others below them may count as expanded.
        if (!view.model()->hasChildren(index) || !view.isExpanded(index))
            continue;
        m_openRows.append(above + Path{{keyText(index), repetition}});
        addOpenRows(view, index, Path(m_openRows.last()));
    }
}

void TreePlace::restore(QTreeView& view) const
{
    // The last row of the path that there is still.
    const auto find = [&view](const Path& path, bool* complete) {
        QModelIndex found;
        for (const Step& step : path) {
            int repetition = step.repetition;
            QModelIndex next;
            for (int row = 0; row < view.model()->rowCount(found) && !next.isValid(); ++row) {
                const QModelIndex index = view.model()->index(row, KeyColumn, found);
                if (keyText(index) == step.key && repetition-- == 0)
                    next = index;
            }
            *complete = next.isValid();
            if (!*complete)
                break;
            found = next;
        }
        return found;
    };
    bool complete = false;
    for (const Path& path : m_openRows) {
        const QModelIndex row = find(path, &complete);
        if (complete)
            view.expand(row);
    }
    const QModelIndex current = find(m_current, &complete);
    if (current.isValid())
        view.setCurrentIndex(complete ? current.siblingAtColumn(m_column) : current);
    // Else the scroll bars do not know the open rows yet.
    view.doItemsLayout();
    view.verticalScrollBar()->setValue(m_top);
    view.horizontalScrollBar()->setValue(m_left);
}

} // namespace widgets
