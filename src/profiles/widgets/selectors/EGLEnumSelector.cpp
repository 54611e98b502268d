#include "EGLEnumSelector.h"

#include "ValueNames.h"

namespace widgets {

QString EGLEnumSelectorItemDelegate::displayText(const QVariant& value, const QLocale& /*locale*/) const
{
    return eglValueName(value.toString());
}

EGLEnumSelector::EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, std::int32_t current)
    : EGLEnumSelector(parent, values, QString::number(current))
{
}

EGLEnumSelector::EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, const QString& current)
    : GenericValueSelector(parent, decimals(values), current)
{
    setItemDelegate(new EGLEnumSelectorItemDelegate(this));
}

QString EGLEnumSelector::displayText(const QString& value) const
{
    return eglValueName(value);
}

} // namespace widgets
