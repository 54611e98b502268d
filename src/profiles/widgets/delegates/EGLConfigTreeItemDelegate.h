#pragma once

#include "ProfileTreeItemDelegate.h"

namespace widgets {

/// Edits EGL configs, their attributes and the attributes' values.
class EGLConfigTreeItemDelegate : public ProfileTreeItemDelegate {
    Q_OBJECT

public:
    using ProfileTreeItemDelegate::ProfileTreeItemDelegate;

protected:
    QWidget* makeEditor(QWidget* parent, const QModelIndex& index) const override;
    Outcome outcomeOf(const QModelIndex& index, const QVariant& entry) const override;

private:
    static Outcome outcomeOfId(const QModelIndex& config, const QString& entry);
};

} // namespace widgets
