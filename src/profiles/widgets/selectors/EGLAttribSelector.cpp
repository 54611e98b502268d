#include "EGLAttribSelector.h"

#include "ValueNames.h"

namespace widgets {

QString AttribSelectorItemDelegate::displayText(const QVariant& value, const QLocale& /*locale*/) const
{
    return eglAttribName(value.toString());
}

EGLAttribSelector::EGLAttribSelector(
    QWidget* parent, const QList<std::int32_t>& attribs, const QString& current)
    : GenericValueSelector(parent, decimals(attribs), current)
{
    setItemDelegate(new AttribSelectorItemDelegate(this));
}

QString EGLAttribSelector::displayText(const QString& value) const
{
    return eglAttribName(value);
}

} // namespace widgets
