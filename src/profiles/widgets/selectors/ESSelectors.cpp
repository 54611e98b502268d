#include "ESSelectors.h"

#include "SelectorValues.h"

namespace widgets {

ESAPISelector::ESAPISelector(QWidget* parent, const QList<std::int32_t>& versions, const QString& current)
    : NamedValueSelector(parent, decimals(versions), current)
{
}

ESTrueFalseSelector::ESTrueFalseSelector(QWidget* parent, const QString& current)
    : NamedValueSelector(parent, {QStringLiteral("1"), QStringLiteral("0")}, current)
{
}

ShaderBinaryFormatSelector::ShaderBinaryFormatSelector(QWidget* parent, const QString& current)
    : NamedValueSelector(parent, glDecimals(candidateNames()), current)
{
}

QList<const char*> ShaderBinaryFormatSelector::candidateNames()
{
    return {"GL_TSR_BINARY_BWD", "GL_TSR_PROGRAM_BINARY_BWD"};
}

} // namespace widgets
