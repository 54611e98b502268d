#include "ESExtensionSelector.h"

namespace widgets {

ESExtensionSelector::ESExtensionSelector(QWidget* parent, const QStringList& names, const QString& current)
    : GenericValueSelector(parent, names, current)
{
}

} // namespace widgets
