#include "ProfileTreeView.h"

#include "ProfileColumns.h"
#include "ProfileTreeItemDelegate.h"
#include "models/ProfileTree.h"

#include <QAction>
#include <QHeaderView>
#include <QInputDialog>
#include <QKeyEvent>
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

/// How many rows around those in sight count for the width of the keys.
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

} // namespace

ProfileTreeView::ProfileTreeView(const QString& addTop, const QString& addChild, QWidget* parent)
    : QTreeView(parent)
    , m_menu(new QMenu(this))
    , m_addTop(makeAction(m_menu, this, addTop, Qt::CTRL | Qt::Key_Insert))
    , m_addChild(makeAction(m_menu, this, addChild, Qt::Key_Insert))
    , m_delete(makeAction(m_menu, this, tr("Delete"), QKeySequence::Delete))
    , m_duplicate(makeAction(m_menu, this, tr("Duplicate"), Qt::CTRL | Qt::SHIFT | Qt::Key_D))
{
    setStyleSheet(QStringLiteral("QLineEdit, QSpinBox { background-color: white; }"));
    setSelectionMode(ExtendedSelection);
    setUniformRowHeights(true);
    header()->setResizeContentsPrecision(rowsMeasured);
    header()->setStretchLastSection(false);
    setEditTriggers(DoubleClicked | EditKeyPressed | SelectedClicked);
    // Names begin alike and differ at their ends.
    setTextElideMode(Qt::ElideMiddle);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &ProfileTreeView::fitColumns);
    connect(m_delete, SIGNAL(triggered()), SLOT(deleteItemTriggered()));
    connect(m_duplicate, &QAction::triggered, this, &ProfileTreeView::duplicateRow);
    setEditable(false);
}

void ProfileTreeView::setModel(QAbstractItemModel* model)
{
    if (model == this->model())
        return;
    if (this->model())
        disconnect(this->model(), nullptr, this, nullptr);
    QTreeView::setModel(model);
    m_contextIndex = QModelIndex();
    if (!model)
        return;
    resizeToFit();
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, [this] { m_place = TreePlace(*this); });
    connect(model, &QAbstractItemModel::modelReset, this, [this] {
        m_place.restore(*this);
        resizeToFit();
    });
    connect(model, SIGNAL(dataChanged(const QModelIndex&, const QModelIndex&)), this, SLOT(resizeToFit()),
        Qt::UniqueConnection);
    for (const char* signal : {SIGNAL(expanded(const QModelIndex&)), SIGNAL(collapsed(const QModelIndex&))})
        connect(this, signal, this, SLOT(resizeToFit()), Qt::UniqueConnection);
}

void ProfileTreeView::setEditable(bool editable)
{
    setContextMenuPolicy(editable ? Qt::CustomContextMenu : Qt::NoContextMenu);
    for (QAction* action : {m_addTop, m_addChild, m_delete, m_duplicate})
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

/// Makes room for the values in sight. Those that come into sight later can only need more, so that the keys
/// do not move to and fro under somebody who scrolls.
void ProfileTreeView::measureValues()
{
    if (!model() || model()->columnCount() <= ValueColumn)
        return;
    QModelIndex row = indexAt(QPoint());
    for (; row.isValid() && visualRect(row).top() < viewport()->height(); row = indexBelow(row))
        m_valueWidth = std::max(m_valueWidth, sizeHintForIndex(valueOf(row)).width());
}

/// Values take what room there is, and can be scrolled to where that is too little. In a narrow view keys
/// give way, so that something of the values is always in sight.
void ProfileTreeView::fitColumns()
{
    if (!isVisible() || header()->count() <= ValueColumn)
        return;
    measureValues();
    const int room = viewport()->width();
    const int forValues = std::min(m_valueWidth, room * 2 / 5);
    setColumnWidth(KeyColumn, std::min(m_keyWidth, room - forValues));
    setColumnWidth(ValueColumn, std::max(m_valueWidth, room - columnWidth(KeyColumn)));
}

/// A change of a value can change how its key is painted.
void ProfileTreeView::dataChanged(
    const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles)
{
    QTreeView::dataChanged(topLeft.siblingAtColumn(KeyColumn),
        bottomRight.siblingAtColumn(valueOf(bottomRight).column()), roles);
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
    fitColumns();
}

void ProfileTreeView::showEvent(QShowEvent* event)
{
    QTreeView::showEvent(event);
    fitColumns();
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
    m_keyWidth = columnWidth(KeyColumn);
    m_valueWidth = 0;
    fitColumns();
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
    m_duplicate->setVisible(isChild || (isRow && freeKey().isValid()));
    if (m_addTop->isVisible() || isRow)
        m_menu->exec(viewport()->mapToGlobal(pos));
    // What is hidden does not hear its shortcut.
    for (QAction* action : {m_addTop, m_addChild, m_delete, m_duplicate})
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

QString ProfileTreeView::askForAny(const QString& title, const QString& label, const QStringList& names,
    const NameChooser::RefusalFor& refusalFor)
{
    NameChooser chooser(label, names, refusalFor, this);
    chooser.setWindowTitle(title);
    return chooser.exec() == QDialog::Accepted ? chooser.textValue().trimmed() : QString();
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

QModelIndex ProfileTreeView::valueOf(const QModelIndex& index) const
{
    return index.siblingAtColumn(model()->columnCount() > ValueColumn ? ValueColumn : KeyColumn);
}

/// Makes the cell current and edits it; false, with the current cell unchanged, for one without an editor.
bool ProfileTreeView::editCell(const QModelIndex& cell)
{
    if (!cell.isValid() || !(cell.flags() & Qt::ItemIsEditable))
        return false;
    const QPersistentModelIndex before = currentIndex();
    setCurrentIndex(cell);
    edit(cell, AllEditTriggers, nullptr);
    if (state() == EditingState)
        return true;
    setCurrentIndex(before);
    return false;
}

/// Edits the value of a row: the first of its parts for a compound one, the key for one without a value.
void ProfileTreeView::editRow(const QModelIndex& row)
{
    if (editCell(valueOf(row)))
        return;
    if (row.parent().isValid() && model()->hasChildren(row)) {
        expand(row);
        if (editCell(valueOf(model()->index(0, KeyColumn, row))))
            return;
    }
    editCell(row);
}

void ProfileTreeView::editNextValue(bool forwards)
{
    QModelIndex row = currentIndex();
    if (forwards && row.column() == KeyColumn && row != valueOf(row) && editCell(valueOf(row)))
        return;
    do
        row = forwards ? indexBelow(row) : indexAbove(row);
    while (row.isValid() && !(row.parent().isValid() && editCell(valueOf(row))));
}

void ProfileTreeView::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex row = currentIndex().siblingAtColumn(KeyColumn);
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool isF2 = event->key() == Qt::Key_F2;
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isEditable = state() != EditingState && (row.flags() & Qt::ItemIsEditable);
    if (isEditable && modifiers == Qt::NoModifier && (isF2 || isEnter))
        editRow(row);
    else if (isEditable && modifiers == Qt::ShiftModifier && isF2)
        editCell(row);
    else
        QTreeView::keyPressEvent(event);
}

QModelIndex ProfileTreeView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex current = currentIndex();
    const QModelIndex key = current.siblingAtColumn(KeyColumn);
    const CursorAction toValue = isRightToLeft() ? MoveLeft : MoveRight;
    const CursorAction toKey = isRightToLeft() ? MoveRight : MoveLeft;
    if (action == toValue && current.isValid() && !model()->hasChildren(key))
        return valueOf(current);
    if (action == toKey && current.column() == ValueColumn)
        return key;
    // Rows without others below them may count as expanded.
    if (action == toKey && key.parent().isValid() && !(model()->hasChildren(key) && isExpanded(key)))
        return key.parent();
    return QTreeView::moveCursor(action, modifiers);
}

void ProfileTreeView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint)
{
    const bool isNext = hint == QAbstractItemDelegate::EditNextItem;
    const bool isPrevious = hint == QAbstractItemDelegate::EditPreviousItem;
    QTreeView::closeEditor(editor, isNext || isPrevious ? QAbstractItemDelegate::NoHint : hint);
    if (isNext || isPrevious)
        editNextValue(isNext);
}

void ProfileTreeView::duplicateRow()
{
    auto* tree = qobject_cast<models::ProfileTree*>(model());
    const QModelIndex row = QModelIndex(m_contextIndex).siblingAtColumn(KeyColumn);
    const bool isTop = row.isValid() && !row.parent().isValid();
    const QVariant key = isTop ? freeKey() : QVariant();
    if (!tree || !row.isValid() || (isTop && !key.isValid()))
        return;
    const bool isOpen = isExpanded(row);
    const QModelIndex copy = tree->duplicate(row, key);
    if (!copy.isValid())
        return;
    setExpanded(copy, isOpen);
    setCurrentIndex(copy);
    scrollTo(copy);
}

/// Leaves the row current and selected that takes the place of those that went, so that the next one can be
/// deleted at once.
void ProfileTreeView::deleteItemTriggered()
{
    const QModelIndex current = currentIndex();
    const auto goes = [this](const QModelIndex& row) {
        return selectionModel()->isSelected(row) || selectionModel()->isSelected(valueOf(row));
    };
    QModelIndex next = current.siblingAtColumn(KeyColumn);
    for (QModelIndex up = next; up.isValid(); up = up.parent()) {
        if (goes(up))
            next = up;
    }
    const QModelIndex first = next;
    while (next.isValid() && goes(next))
        next = next.siblingAtRow(next.row() + 1);
    for (int row = first.row() - 1; !next.isValid() && row >= 0; --row) {
        if (!goes(first.siblingAtRow(row)))
            next = first.siblingAtRow(row);
    }
    const QPersistentModelIndex stays = next.isValid() ? next : first.parent();
    const int column = current.column();
    removeSelected();
    if (stays.isValid())
        setCurrentIndex(stays.sibling(stays.row(), column));
}

void ProfileTreeView::removeSelected()
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
