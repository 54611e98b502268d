#include "ESCapabilitySelector.h"

#include "ValueNames.h"

namespace widgets {

QString CapabilitySelectorItemDelegate::displayText(const QVariant& value, const QLocale& /*locale*/) const
{
    return capabilityName(value.toString());
}

ESCapabilitySelector::ESCapabilitySelector(
    QWidget* parent, const QStringList& xmlNames, const QString& current)
    : GenericValueSelector(parent, xmlNames, current)
{
    setItemDelegate(new CapabilitySelectorItemDelegate(this));
}

QString ESCapabilitySelector::displayText(const QString& value) const
{
    return capabilityName(value);
}

} // namespace widgets
