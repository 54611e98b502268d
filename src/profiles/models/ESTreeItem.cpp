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
    const QVariant& key = data(KeyColumn);
    return key.userType() == QMetaType::Int ? std::optional(key.toInt()) : std::nullopt;
}

QString ESTreeItem::versionName(const QVariant& version)
{
    esapi::API api;
    if (version.userType() == QMetaType::Int && esapi::findAPI(version.toInt(), &api))
        return QString::fromStdString(api.displayName);
    return version.toString();
}

} // namespace models
