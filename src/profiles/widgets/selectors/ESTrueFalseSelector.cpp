#include "ESTrueFalseSelector.h"

namespace widgets {

ESTrueFalseSelector::ESTrueFalseSelector(QWidget* parent, const QString& current)
    : NamedValueSelector(parent, {QStringLiteral("1"), QStringLiteral("0")}, current)
{
}

} // namespace widgets
