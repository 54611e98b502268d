#pragma once

#include "ESTreeItem.h"
#include "ProfileData.h"
#include "ProfileTree.h"

namespace models {

/// An API version, one of its capabilities, or a part of a compound one. Keys are element names.
class ESCapabilityTreeItem : public ESTreeItem {
public:
    using ESTreeItem::ESTreeItem;
    explicit ESCapabilityTreeItem(const ProfileNode& node);

    ProfileNode node() const;
};

/// The capabilities of each API version, in two columns. Those that the key table does not know are shown as
/// they stand in the document, and so are the parts of their compound values.
class ESCapabilityTree : public ProfileTree {
    Q_OBJECT

public:
    explicit ESCapabilityTree(const ProfileData::Capabilities& capabilities, QObject* parent = nullptr);

    /// Shows these instead, by a reset of the model.
    void refresh(const ProfileData::Capabilities& capabilities);

    /// The rows as a document holds them. A version without capabilities has no entry, and rows at the top
    /// that hold no number are left out.
    ProfileData::Capabilities capabilities() const;

    /// A new row that becomes a compound capability gets the rows of its parts as well.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

protected:
    std::unique_ptr<ProfileTreeItem> makeItem() const override;
    QString displayText(const ProfileTreeItem& item, int column) const override;
    QString readableText(const ProfileTreeItem& item, int column) const override;

private:
    void fill(const ProfileData::Capabilities& capabilities);
    void addParts(const QModelIndex& capability);
};

} // namespace models
