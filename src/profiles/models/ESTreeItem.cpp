#include "ESTreeItem.h"

#include "KeyTables.h"
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

QString ESTreeItem::versionName(const QVariant& version)
{
    esapi::API api;
    const std::optional<int> number = storedNumber(version);
    if (number && esapi::findAPI(*number, &api))
        return QString::fromStdString(api.displayName);
    return version.toString();
}

} // namespace models
