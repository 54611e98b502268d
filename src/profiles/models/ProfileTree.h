#pragma once

#include "ProfileTreeItem.h"

#include <QAbstractItemModel>

namespace models {

/// One section of a profile as a tree: index arithmetic, flags, insertion and removal. What the rows mean is
/// the business of the classes below it.
///
/// Qt::EditRole gives what is stored, Qt::DisplayRole the name of any number that has one. What users read is
/// Qt::AccessibleTextRole, which takes the kind of the key into account: a size is a number, even where an
/// enumerant has the same one. Where they read a name for a number, Qt::ToolTipRole has the number.
class ProfileTree : public QAbstractItemModel {
    Q_OBJECT

public:
    /// Whether cells may be edited in place.
    void setWritable(bool writable);
    bool isWritable() const { return m_writable; }

    /// The item of a valid index of this model, else none.
    static ProfileTreeItem* item(const QModelIndex& index);
    const ProfileTreeItems& items() const { return m_items; }

    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// False also for a value that the row must not have, such as the id of another config.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    bool insertRows(int row, int count, const QModelIndex& parent = {}) override;
    /// The rows can be brought back until they are forgotten.
    bool removeRows(int row, int count, const QModelIndex& parent = {}) override;

    /// How many rows can be brought back; those that stood below one of them are not counted.
    int removedRowCount() const;
    /// Puts all removed rows back to where they were. Stops before a row at the top whose number another one
    /// has by now, and returns what that one is called; empty when all are back.
    QString restoreRemovedRows();
    void forgetRemovedRows() { m_removed.clear(); }

    /// Puts a copy of a row, with all rows below it, right behind it and gives it that key, if it is valid.
    /// Returns the copy, or an invalid index for a key that another row must not have.
    QModelIndex duplicate(const QModelIndex& index, const QVariant& key = {});

protected:
    ProfileTree(int columns, QObject* parent);

    /// Adds a row of the saved document, with those below it, at the end of the top. It is not announced.
    void appendSaved(std::unique_ptr<ProfileTreeItem> item);
    /// Announces a reset and takes all rows away, until endResetModel().
    void beginAnew();

    virtual std::unique_ptr<ProfileTreeItem> makeItem() const = 0;
    virtual QString displayText(const ProfileTreeItem& item, int column) const = 0;
    /// What the user reads.
    virtual QString readableText(const ProfileTreeItem& item, int column) const;
    /// The value as it is to be stored.
    virtual QVariant storedValue(const ProfileTreeItem& item, int column, const QVariant& value) const;

private:
    /// Rows that were taken out together.
    struct Removal {
        /// None at the top. It is alive, since whatever is taken out is kept.
        ProfileTreeItem* parent;
        int row;
        std::vector<std::unique_ptr<ProfileTreeItem>> items;
    };

    ProfileTreeItems& siblings(const QModelIndex& parent);
    const ProfileTreeItem* takenRow(const Removal& removal) const;
    std::unique_ptr<ProfileTreeItem> copyOf(const ProfileTreeItem& item) const;
    bool isTaken(const QVariant& key, const ProfileTreeItem* except = nullptr) const;

    ProfileTreeItems m_items{nullptr};
    std::vector<Removal> m_removed;
    int m_columns;
    bool m_writable = false;
};

/// The value as a whole number where it is one in decimal, as it is otherwise.
QVariant numberOrText(const QVariant& value);

} // namespace models
