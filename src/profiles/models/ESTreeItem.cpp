#include "ESTreeItem.h"

#include "ProfileColumns.h"

namespace models {

ESTreeItem::ESTreeItem(int columns, int version)
    : ProfileTreeItem(columns)
{
    setData(KeyColumn, version);
}

std::optional<int> ESTreeItem::version() const
{
    return storedNumber(data(KeyColumn));
}

} // namespace models
