#include "ESTreeItemDelegate.h"

#include "ESSelectors.h"
#include "ProfileColumns.h"
#include "UnusedKeys.h"

namespace widgets {

QWidget* ESTreeItemDelegate::makeEditor(QWidget* parent, const QModelIndex& index) const
{
    if (index.column() != models::KeyColumn)
        return nullptr;
    QList<std::int32_t> versions;
    for (const esapi::API& api : unusedAPIs(index.model()))
        versions += api.shortVersion();
    return new ESAPISelector(parent, versions, storedText(index));
}

ProfileTreeItemDelegate::Outcome ESTreeItemDelegate::outcomeOf(
    const QModelIndex& /*index*/, const QVariant& entry) const
{
    return {entry.toInt(), {}};
}

} // namespace widgets
