#include "ESAPISelector.h"

namespace widgets {

ESAPISelector::ESAPISelector(QWidget* parent, const QList<std::int32_t>& versions, const QString& current)
    : NamedValueSelector(parent, decimals(versions), current)
{
}

} // namespace widgets
