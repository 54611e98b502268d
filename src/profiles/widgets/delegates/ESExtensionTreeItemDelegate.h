#pragma once

#include "ESTreeItemDelegate.h"

namespace widgets {

/// Edits APIs and their extensions.
class ESExtensionTreeItemDelegate : public ESTreeItemDelegate {
    Q_OBJECT

public:
    using ESTreeItemDelegate::ESTreeItemDelegate;

protected:
    QWidget* makeEditor(QWidget* parent, const QModelIndex& index) const override;
    Outcome outcomeOf(const QModelIndex& index, const QVariant& entry) const override;
};

} // namespace widgets
