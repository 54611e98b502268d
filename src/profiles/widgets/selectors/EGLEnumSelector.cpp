#include "EGLEnumSelector.h"

namespace widgets {

EGLEnumSelector::EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, std::int32_t current)
    : EGLEnumSelector(parent, values, QString::number(current))
{
}

EGLEnumSelector::EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, const QString& current)
    : NamedValueSelector(parent, decimals(values), current)
{
}

} // namespace widgets
