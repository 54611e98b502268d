#include "ESAPISelector.h"

#include "ValueNames.h"

namespace widgets {

QString APISelectorItemDelegate::displayText(const QVariant& value, const QLocale& /*locale*/) const
{
    return apiName(value.toString());
}

ESAPISelector::ESAPISelector(QWidget* parent, const QList<std::int32_t>& versions, const QString& current)
    : GenericValueSelector(parent, decimals(versions), current)
{
    setItemDelegate(new APISelectorItemDelegate(this));
}

QString ESAPISelector::displayText(const QString& value) const
{
    return apiName(value);
}

} // namespace widgets
