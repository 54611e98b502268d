#include "ProfileTree.h"

#include "Numbers.h"
#include "ProfileColumns.h"

#include <algorithm>

namespace models {

QVariant numberOrText(const QVariant& value)
{
    if (storedNumber(value))
        return value;
    const std::optional<std::int32_t> number = platform::parseInt32(value.toString().toStdString());
    return number ? QVariant(*number) : value.toString();
}

ProfileTree::ProfileTree(int columns, QObject* parent)
    : QAbstractItemModel(parent)
    , m_columns(columns)
{
}

void ProfileTree::setWritable(bool writable)
{
    m_writable = writable;
}

ProfileTreeItem* ProfileTree::item(const QModelIndex& index)
{
    return index.isValid() ? static_cast<ProfileTreeItem*>(index.internalPointer()) : nullptr;
}

ProfileTreeItems& ProfileTree::siblings(const QModelIndex& parent)
{
    return parent.isValid() ? item(parent)->children() : m_items;
}

Qt::ItemFlags ProfileTree::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return m_writable ? flags | Qt::ItemIsEditable : flags;
}

QVariant ProfileTree::headerData(int, Qt::Orientation, int) const
{
    return {};
}

int ProfileTree::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    return parent.isValid() ? item(parent)->children().count() : m_items.count();
}

int ProfileTree::columnCount(const QModelIndex&) const
{
    return m_columns;
}

QModelIndex ProfileTree::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    ProfileTreeItem* found = parent.isValid() ? item(parent)->children().at(row) : m_items.at(row);
    return column < found->columnCount() ? createIndex(row, column, found) : QModelIndex();
}

QModelIndex ProfileTree::parent(const QModelIndex& index) const
{
    ProfileTreeItem* above = index.isValid() ? item(index)->parent() : nullptr;
    return above ? createIndex(above->row(), 0, above) : QModelIndex();
}

QVariant ProfileTree::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const ProfileTreeItem& row = *item(index);
    if (role == Qt::EditRole)
        return row.data(index.column());
    if (role == Qt::DisplayRole)
        return displayText(row, index.column());
    if (role == Qt::AccessibleTextRole)
        return readableText(row, index.column());
    if (role == UnsavedRole)
        return row.isUnsaved();
    if (role == Qt::AccessibleDescriptionRole)
        return row.isUnsaved() ? tr("changed, not saved") : QString();
    if (role == Qt::ToolTipRole) {
        const QString stored = row.data(index.column()).toString().trimmed();
        const QString shown = readableText(row, index.column());
        const bool hidden = stored != shown && storedNumber(numberOrText(row.data(index.column())));
        return hidden ? tr("%1 = %2").arg(shown, stored) : QVariant();
    }
    return {};
}

QString ProfileTree::readableText(const ProfileTreeItem& item, int column) const
{
    return displayText(item, column);
}

QVariant ProfileTree::storedValue(const ProfileTreeItem& item, int column, const QVariant& value) const
{
    return !item.parent() && column == KeyColumn ? numberOrText(value) : value.toString();
}

/// Two configs with one id, or two sections with one version, would be one after the next load.
bool ProfileTree::isTaken(const QVariant& key, const ProfileTreeItem* except) const
{
    for (int row = 0; row < m_items.count(); ++row) {
        if (m_items.at(row) != except && m_items.at(row)->data(KeyColumn) == key)
            return true;
    }
    return false;
}

bool ProfileTree::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    ProfileTreeItem& row = *item(index);
    const QVariant stored = storedValue(row, index.column(), value);
    if (!row.parent() && index.column() == KeyColumn && isTaken(stored, &row))
        return false;
    row.setData(index.column(), stored);
    Q_EMIT dataChanged(index, index);
    return true;
}

bool ProfileTree::insertRows(int row, int count, const QModelIndex& parent)
{
    if (count < 1 || row < 0 || row > rowCount(parent) || parent.column() > 0)
        return false;
    std::vector<std::unique_ptr<ProfileTreeItem>> added(static_cast<std::size_t>(count));
    std::generate(added.begin(), added.end(), [this] { return makeItem(); });
    Q_EMIT layoutAboutToBeChanged();
    beginInsertRows(parent, row, row + count - 1);
    siblings(parent).insert(row, std::move(added));
    endInsertRows();
    Q_EMIT layoutChanged();
    return true;
}

QModelIndex ProfileTree::duplicate(const QModelIndex& index, const QVariant& key)
{
    if (!index.isValid())
        return {};
    const int row = index.row() + 1;
    const QModelIndex above = index.parent();
    std::vector<std::unique_ptr<ProfileTreeItem>> copies;
    copies.push_back(copyOf(*item(index)));
    if (key.isValid())
        copies.front()->setData(KeyColumn, storedValue(*item(index), KeyColumn, key));
    // It has no row yet, and its original counts as another one.
    if (!above.isValid() && isTaken(copies.front()->data(KeyColumn)))
        return {};
    beginInsertRows(above, row, row);
    siblings(above).insert(row, std::move(copies));
    endInsertRows();
    return this->index(row, KeyColumn, above);
}

std::unique_ptr<ProfileTreeItem> ProfileTree::copyOf(const ProfileTreeItem& item) const
{
    std::unique_ptr<ProfileTreeItem> copy = makeItem();
    copy->copyCells(item);
    for (int row = 0; row < item.children().count(); ++row)
        copy->children().append(copyOf(*item.children().at(row)));
    return copy;
}

void ProfileTree::appendSaved(std::unique_ptr<ProfileTreeItem> item)
{
    item->setSaved();
    m_items.append(std::move(item));
}

void ProfileTree::beginAnew()
{
    beginResetModel();
    // What was taken out stood among rows that go now.
    forgetRemovedRows();
    m_items.take(0, m_items.count());
}

bool ProfileTree::removeRows(int row, int count, const QModelIndex& parent)
{
    if (count < 1 || row < 0 || row + count > rowCount(parent))
        return false;
    beginRemoveRows(parent, row, row + count - 1);
    m_removed.push_back({item(parent), row, siblings(parent).take(row, count)});
    endRemoveRows();
    return true;
}

int ProfileTree::removedRowCount() const
{
    int rows = 0;
    for (const Removal& removal : m_removed) {
        // A row without a key is one that could not be added.
        rows += static_cast<int>(std::count_if(removal.items.begin(), removal.items.end(),
            [](const auto& row) { return !row->data(KeyColumn).toString().isEmpty(); }));
    }
    return rows;
}

/// The first of removed rows at the top whose number has been given to another one.
const ProfileTreeItem* ProfileTree::takenRow(const Removal& removal) const
{
    for (const auto& row : removal.items) {
        for (int other = 0; !removal.parent && other < m_items.count(); ++other) {
            if (m_items.at(other)->data(KeyColumn) == row->data(KeyColumn))
                return row.get();
        }
    }
    return nullptr;
}

QString ProfileTree::restoreRemovedRows()
{
    // From the last one on: a parent is back before what was removed below it earlier.
    for (; !m_removed.empty(); m_removed.pop_back()) {
        Removal& removal = m_removed.back();
        if (const ProfileTreeItem* taken = takenRow(removal))
            return displayText(*taken, KeyColumn);
        const QModelIndex parent =
            removal.parent ? createIndex(removal.parent->row(), 0, removal.parent) : QModelIndex();
        std::erase_if(
            removal.items, [](const auto& row) { return row->data(KeyColumn).toString().isEmpty(); });
        if (removal.items.empty())
            continue;
        const int row = std::min(removal.row, rowCount(parent));
        beginInsertRows(parent, row, row + static_cast<int>(removal.items.size()) - 1);
        siblings(parent).insert(row, std::move(removal.items));
        endInsertRows();
    }
    return {};
}

} // namespace models
