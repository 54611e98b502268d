#include "ProfileTreeItem.h"

#include <algorithm>
#include <iterator>

namespace models {

namespace {

/// A number is not the same as its digits.
bool isSame(const QVariant& one, const QVariant& other)
{
    return one == other && one.userType() == other.userType();
}

} // namespace

std::optional<int> storedNumber(const QVariant& value)
{
    return value.userType() == QMetaType::Int ? std::optional(value.toInt()) : std::nullopt;
}

void ProfileTreeItems::insert(int row, std::vector<std::unique_ptr<ProfileTreeItem>> items)
{
    for (const std::unique_ptr<ProfileTreeItem>& item : items)
        item->m_parent = m_parent;
    m_items.insert(m_items.begin() + row, std::move_iterator(items.begin()), std::move_iterator(items.end()));
    renumber(row);
}

void ProfileTreeItems::append(std::unique_ptr<ProfileTreeItem> item)
{
    item->m_parent = m_parent;
    item->m_row = count();
    m_items.push_back(std::move(item));
}

std::vector<std::unique_ptr<ProfileTreeItem>> ProfileTreeItems::take(int row, int count)
{
    const auto first = m_items.begin() + row;
    std::vector<std::unique_ptr<ProfileTreeItem>> taken(
        std::make_move_iterator(first), std::make_move_iterator(first + count));
    m_items.erase(first, first + count);
    renumber(row);
    return taken;
}

void ProfileTreeItems::renumber(int first)
{
    for (int row = first; row < count(); ++row)
        at(row)->m_row = row;
}

ProfileTreeItem::ProfileTreeItem(int columns)
    : m_cells(static_cast<std::size_t>(columns))
    , m_children(this)
{
}

ProfileTreeItem::~ProfileTreeItem() = default;

void ProfileTreeItem::setData(int column, const QVariant& value)
{
    Cell& changed = m_cells[static_cast<std::size_t>(column)];
    if (!isSame(changed.value, value))
        changed = {value, std::nullopt};
}

void ProfileTreeItem::setWritten(int column, const std::string& text, const QVariant& value)
{
    m_cells[static_cast<std::size_t>(column)] = {value, text};
}

void ProfileTreeItem::setWritten(int column, const std::string& text)
{
    setWritten(column, text, QString::fromStdString(text));
}

std::string ProfileTreeItem::text(int column) const
{
    const Cell& wanted = cell(column);
    return wanted.written ? *wanted.written : wanted.value.toString().toStdString();
}

void ProfileTreeItem::setSaved()
{
    m_saved.clear();
    for (const Cell& cell : m_cells)
        m_saved.push_back(cell.value);
    for (int row = 0; row < m_children.count(); ++row)
        m_children.at(row)->setSaved();
}

bool ProfileTreeItem::isUnsaved() const
{
    return !std::equal(m_cells.begin(), m_cells.end(), m_saved.begin(), m_saved.end(),
        [](const Cell& cell, const QVariant& saved) { return isSame(cell.value, saved); });
}

} // namespace models
