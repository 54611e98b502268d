#pragma once

#include <QVariant>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace models {

class ProfileTreeItem;

/// The number that a cell holds; nothing for a text, even one with digits.
std::optional<int> storedNumber(const QVariant& value);

/// Sibling rows; knows nothing of models. Every item is told its row and its parent.
class ProfileTreeItems {
public:
    explicit ProfileTreeItems(ProfileTreeItem* parent)
        : m_parent(parent)
    {
    }

    int count() const { return static_cast<int>(m_items.size()); }
    /// The row must exist.
    ProfileTreeItem* at(int row) const { return m_items[static_cast<std::size_t>(row)].get(); }

    /// Puts the items before `row`, which is at most count().
    void insert(int row, std::vector<std::unique_ptr<ProfileTreeItem>> items);
    void append(std::unique_ptr<ProfileTreeItem> item);
    /// Takes rows out; their parents stay theirs until they are put in elsewhere.
    std::vector<std::unique_ptr<ProfileTreeItem>> take(int row, int count);

private:
    void renumber(int first);

    ProfileTreeItem* m_parent;
    std::vector<std::unique_ptr<ProfileTreeItem>> m_items;
};

/// One row of a profile tree: a value for each column, and the rows below it.
class ProfileTreeItem {
public:
    explicit ProfileTreeItem(int columns);
    virtual ~ProfileTreeItem();
    ProfileTreeItem(const ProfileTreeItem&) = delete;
    ProfileTreeItem& operator=(const ProfileTreeItem&) = delete;

    /// None for a row at the top.
    ProfileTreeItem* parent() const { return m_parent; }
    int row() const { return m_row; }
    ProfileTreeItems& children() { return m_children; }
    const ProfileTreeItems& children() const { return m_children; }

    /// Takes over the values of another row, with their texts in the document, not the rows below it.
    virtual void copyCells(const ProfileTreeItem& other) { m_cells = other.m_cells; }

    int columnCount() const { return static_cast<int>(m_cells.size()); }
    /// The stored value of a column that exists.
    const QVariant& data(int column) const { return cell(column).value; }

    /// Stores a value. Where it is the one that is stored already, its text in the document stays as well.
    void setData(int column, const QVariant& value);
    /// Stores what a document says, with the value that stands for it.
    void setWritten(int column, const std::string& text, const QVariant& value);
    void setWritten(int column, const std::string& text);

    /// The text to write for a value that nobody changed; nothing when somebody did.
    const std::optional<std::string>& written(int column) const { return cell(column).written; }
    /// That text, else the value as text.
    std::string text(int column) const;

    /// The element of the document that the row was read from, as ProfileNode has it; copies have none.
    const std::optional<int>& origin() const { return m_origin; }
    void setOrigin(const std::optional<int>& origin) { m_origin = origin; }

    /// Takes the values of this row, and of all rows below it, for those of the saved document.
    void setSaved();
    /// Whether the saved document has other values, or does not have the row.
    bool isUnsaved() const;

private:
    friend class ProfileTreeItems;

    struct Cell {
        QVariant value = QString();
        std::optional<std::string> written;
    };
    const Cell& cell(int column) const { return m_cells[static_cast<std::size_t>(column)]; }

    std::vector<Cell> m_cells;
    /// None for a row that was added.
    std::vector<QVariant> m_saved;
    std::optional<int> m_origin;
    ProfileTreeItems m_children;
    ProfileTreeItem* m_parent = nullptr;
    int m_row = 0;
};

} // namespace models
