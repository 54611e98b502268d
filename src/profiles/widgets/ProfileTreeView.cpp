#include "ProfileTreeView.h"

#include "ProfileColumns.h"
#include "ProfileTreeItemDelegate.h"

#include <QAction>
#include <QHeaderView>
#include <QInputDialog>
#include <QMenu>
#include <QScrollBar>
#include <QSet>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <utility>

namespace widgets {

using models::KeyColumn;
using models::ValueColumn;

namespace {

/// How many rows around those in sight count for the width of a column.
constexpr int rowsMeasured = 200;

QAction* makeAction(QMenu* menu, ProfileTreeView* view, const QString& text, const QKeySequence& shortcut)
{
    QAction* action = menu->addAction(text);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetShortcut);
    // Without the view an action of the menu would not hear its shortcut.
    view->addAction(action);
    return action;
}

QString keyText(const QModelIndex& index)
{
    return index.data(Qt::EditRole).toString();
}

} // namespace

ProfileTreeView::ProfileTreeView(const QString& addTop, const QString& addChild, QWidget* parent)
    : QTreeView(parent)
    , m_menu(new QMenu(this))
    , m_addTop(makeAction(m_menu, this, addTop, Qt::CTRL | Qt::Key_Insert))
    , m_addChild(makeAction(m_menu, this, addChild, Qt::Key_Insert))
    , m_delete(makeAction(m_menu, this, QStringLiteral("Delete"), QKeySequence::Delete))
{
    setStyleSheet(QStringLiteral("QLineEdit, QSpinBox { background-color: white; }"));
    setSelectionMode(ExtendedSelection);
    setUniformRowHeights(true);
    header()->setResizeContentsPrecision(rowsMeasured);
    header()->setStretchLastSection(false);
    setEditTriggers(DoubleClicked | EditKeyPressed | SelectedClicked);
    connect(m_delete, SIGNAL(triggered()), SLOT(deleteItemTriggered()));
    setEditable(false);
}

void ProfileTreeView::setModel(QAbstractItemModel* model)
{
    QTreeView::setModel(model);
    m_contextIndex = QModelIndex();
    if (!model)
        return;
    resizeToFit();
    connect(model, SIGNAL(dataChanged(const QModelIndex&, const QModelIndex&)), this, SLOT(resizeToFit()),
        Qt::UniqueConnection);
    connect(this, SIGNAL(expanded(const QModelIndex&)), this, SLOT(resizeToFit()), Qt::UniqueConnection);
}

void ProfileTreeView::setEditable(bool editable)
{
    setContextMenuPolicy(editable ? Qt::CustomContextMenu : Qt::NoContextMenu);
    for (QAction* action : {m_addTop, m_addChild, m_delete})
        action->setEnabled(editable);
}

bool ProfileTreeView::finishEdit()
{
    QWidget* editor = state() == EditingState ? indexWidget(currentIndex()) : nullptr;
    if (!editor)
        return true;
    const auto* delegate = qobject_cast<ProfileTreeItemDelegate*>(itemDelegateForIndex(currentIndex()));
    if (delegate && delegate->refuses(editor))
        return false;
    commitData(editor);
    closeEditor(editor, QAbstractItemDelegate::NoHint);
    return true;
}

/// Values take what room there is, and can be scrolled to where that is too little.
void ProfileTreeView::fitValues()
{
    if (header()->count() > ValueColumn)
        setColumnWidth(ValueColumn, std::max(m_valueWidth, viewport()->width() - columnWidth(KeyColumn)));
}

/// Keeps the keys in sight: values may be wider than the view.
void ProfileTreeView::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    const int left = horizontalScrollBar()->value();
    QTreeView::scrollTo(index, hint);
    horizontalScrollBar()->setValue(left);
}

void ProfileTreeView::resizeEvent(QResizeEvent* event)
{
    QTreeView::resizeEvent(event);
    fitValues();
}

QStringList ProfileTreeView::openRows() const
{
    QStringList keys;
    for (int row = 0; model() && row < model()->rowCount(); ++row) {
        const QModelIndex index = model()->index(row, KeyColumn);
        if (isExpanded(index))
            keys << keyText(index);
    }
    return keys;
}

void ProfileTreeView::reopenRows(const QStringList& keys)
{
    for (int row = 0; model() && row < model()->rowCount(); ++row) {
        const QModelIndex index = model()->index(row, KeyColumn);
        if (keys.contains(keyText(index)))
            expand(index);
    }
}

void ProfileTreeView::resizeToFit()
{
    // Opening all rows at once asks for it a thousand times; the first and the last count.
    if (m_hasResized) {
        m_resizesAgain = true;
        return;
    }
    m_hasResized = true;
    resizeColumnToContents(KeyColumn);
    if (model() && model()->columnCount() > ValueColumn)
        m_valueWidth = sizeHintForColumn(ValueColumn);
    fitValues();
    QTimer::singleShot(0, this, [this] {
        m_hasResized = false;
        if (std::exchange(m_resizesAgain, false))
            resizeToFit();
    });
}

void ProfileTreeView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTreeView::currentChanged(current, previous);
    m_contextIndex = current;
}

void ProfileTreeView::showMenu(const QPoint& pos, bool canAddTop)
{
    m_contextIndex = indexAt(pos);
    const bool isRow = m_contextIndex.isValid();
    const bool isChild = isRow && m_contextIndex.parent().isValid();
    m_addTop->setVisible(canAddTop && !isChild);
    m_addChild->setVisible(isRow);
    m_delete->setVisible(isRow);
    if (m_addTop->isVisible() || isRow)
        m_menu->exec(viewport()->mapToGlobal(pos));
    // What is hidden does not hear its shortcut.
    for (QAction* action : {m_addTop, m_addChild, m_delete})
        action->setVisible(true);
}

QModelIndex ProfileTreeView::contextTop() const
{
    QModelIndex top = m_contextIndex;
    while (top.parent().isValid())
        top = top.parent();
    return top.siblingAtColumn(KeyColumn);
}

QString ProfileTreeView::ask(const QString& title, const QString& label, const QStringList& names)
{
    bool accepted = false;
    const QString name = QInputDialog::getItem(this, title, label, names, 0, false, &accepted);
    return accepted ? name : QString();
}

QModelIndex ProfileTreeView::addRow(const QModelIndex& parent, const QVariant& key)
{
    QModelIndex place = m_contextIndex;
    if (place.siblingAtColumn(KeyColumn) == parent)
        return addRow(0, parent, key);
    while (place.parent() != parent)
        place = place.parent();
    return addRow(place.row() + 1, parent, key);
}

QModelIndex ProfileTreeView::addRow(int row, const QModelIndex& parent, const QVariant& key)
{
    if (!model()->insertRow(row, parent))
        return {};
    const QModelIndex added = model()->index(row, KeyColumn, parent);
    if (!model()->setData(added, key, Qt::EditRole)) {
        model()->removeRow(row, parent);
        return {};
    }
    expand(parent);
    setCurrentIndex(added);
    scrollTo(added);
    return added;
}

void ProfileTreeView::deleteItemTriggered()
{
    QSet<QModelIndex> selected;
    for (const QModelIndex& index : selectedIndexes())
        selected << index.siblingAtColumn(KeyColumn);
    // By parent and from the last row up: removing rows moves those behind them, and takes along those below.
    std::map<QPersistentModelIndex, std::set<int, std::greater<>>> rows;
    for (const QModelIndex& index : selected) {
        QModelIndex above = index.parent();
        while (above.isValid() && !selected.contains(above))
            above = above.parent();
        if (!above.isValid())
            rows[index.parent()].insert(index.row());
    }
    for (const auto& [parent, numbers] : rows) {
        // Neighbours go together, since views take long over each removal.
        for (auto row = numbers.begin(); row != numbers.end();) {
            const int last = *row;
            int first = last;
            while (++row != numbers.end() && *row == first - 1)
                first = *row;
            model()->removeRows(first, last - first + 1, parent);
        }
    }
}

} // namespace widgets
