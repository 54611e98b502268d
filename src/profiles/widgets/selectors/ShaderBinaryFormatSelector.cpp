#include "ShaderBinaryFormatSelector.h"

#include "ValueNames.h"

namespace widgets {

QString ShaderBinaryFormatSelectorItemDelegate::displayText(
    const QVariant& value, const QLocale& /*locale*/) const
{
    return glValueName(value.toString());
}

ShaderBinaryFormatSelector::ShaderBinaryFormatSelector(QWidget* parent, const QString& current)
    : GenericValueSelector(parent, glDecimals(candidateNames()), current)
{
    setItemDelegate(new ShaderBinaryFormatSelectorItemDelegate(this));
}

QList<const char*> ShaderBinaryFormatSelector::candidateNames()
{
    return {"GL_TSR_BINARY_BWD", "GL_TSR_PROGRAM_BINARY_BWD"};
}

QString ShaderBinaryFormatSelector::displayText(const QString& value) const
{
    return glValueName(value);
}

} // namespace widgets
