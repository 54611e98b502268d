#pragma once

#include "ProfileTreeItemDelegate.h"

namespace widgets {

/// Edits the API rows that both OpenGL ES trees have; a subclass edits what is below them.
class ESTreeItemDelegate : public ProfileTreeItemDelegate {
    Q_OBJECT

public:
    using ProfileTreeItemDelegate::ProfileTreeItemDelegate;

protected:
    QWidget* makeEditor(QWidget* parent, const QModelIndex& index) const override;
    Outcome outcomeOf(const QModelIndex& index, const QVariant& entry) const override;
};

} // namespace widgets
