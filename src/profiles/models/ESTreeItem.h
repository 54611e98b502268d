#pragma once

#include "ProfileTreeItem.h"

#include <optional>

namespace models {

/// A row of a tree whose top rows are API versions.
class ESTreeItem : public ProfileTreeItem {
public:
    using ProfileTreeItem::ProfileTreeItem;

    /// A top row for that version.
    ESTreeItem(int columns, int version);

    /// The number of a top row; nothing when what it holds is none.
    std::optional<int> version() const;
};

} // namespace models
