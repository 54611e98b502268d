#include "ESTrueFalseSelector.h"

#include "ValueNames.h"

namespace widgets {

QString ESTrueFalseSelectorItemDelegate::displayText(const QVariant& value, const QLocale& /*locale*/) const
{
    return glTruthName(value.toString());
}

ESTrueFalseSelector::ESTrueFalseSelector(QWidget* parent, const QString& current)
    : GenericValueSelector(parent, {QStringLiteral("1"), QStringLiteral("0")}, current)
{
    setItemDelegate(new ESTrueFalseSelectorItemDelegate(this));
}

QString ESTrueFalseSelector::displayText(const QString& value) const
{
    return glTruthName(value);
}

} // namespace widgets
