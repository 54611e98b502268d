#include "ESCapabilitySelector.h"

namespace widgets {

ESCapabilitySelector::ESCapabilitySelector(
    QWidget* parent, const QStringList& xmlNames, const QString& current)
    : NamedValueSelector(parent, xmlNames, current)
{
}

} // namespace widgets
