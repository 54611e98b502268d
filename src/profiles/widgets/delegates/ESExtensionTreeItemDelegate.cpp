#include "ESExtensionTreeItemDelegate.h"

#include "ESSelectors.h"
#include "UnusedKeys.h"

namespace widgets {

QWidget* ESExtensionTreeItemDelegate::makeEditor(QWidget* parent, const QModelIndex& index) const
{
    if (depth(index) == 0)
        return ESTreeItemDelegate::makeEditor(parent, index);
    return new ESExtensionSelector(parent, unusedExtensions(index.parent()), storedText(index));
}

ProfileTreeItemDelegate::Outcome ESExtensionTreeItemDelegate::outcomeOf(
    const QModelIndex& index, const QVariant& entry) const
{
    return depth(index) == 0 ? ESTreeItemDelegate::outcomeOf(index, entry) : Outcome{entry, {}};
}

} // namespace widgets
