#pragma once

#include "ESTreeItem.h"
#include "ProfileData.h"
#include "ProfileTree.h"

namespace models {

/// An API version or one of its extensions.
class ESExtensionTreeItem : public ESTreeItem {
public:
    using ESTreeItem::ESTreeItem;
};

/// The extensions of each API version, in one column.
class ESExtensionTree : public ProfileTree {
    Q_OBJECT

public:
    explicit ESExtensionTree(const ProfileData::Extensions& extensions, QObject* parent = nullptr);

    /// Shows these instead, by a reset of the model.
    void refresh(const ProfileData::Extensions& extensions);

    /// The rows as a document holds them, with the extensions sorted by their bytes. Rows at the top that
    /// hold no number are left out.
    ProfileData::Extensions extensions() const;

protected:
    std::unique_ptr<ProfileTreeItem> makeItem() const override;
    QString displayText(const ProfileTreeItem& item, int column) const override;

private:
    void fill(const ProfileData::Extensions& extensions);
};

} // namespace models
