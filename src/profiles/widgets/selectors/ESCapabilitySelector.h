#pragma once

#include "GenericValueSelector.h"
#include "GenericValueSelectorItemDelegate.h"

namespace widgets {

class CapabilitySelectorItemDelegate : public GenericValueSelectorItemDelegate {
    Q_OBJECT

public:
    using GenericValueSelectorItemDelegate::GenericValueSelectorItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
};

/// Keys of capabilities, by their element names.
class ESCapabilitySelector : public GenericValueSelector {
    Q_OBJECT

public:
    ESCapabilitySelector(QWidget* parent, const QStringList& xmlNames, const QString& current);

    QString displayText(const QString& value) const override;
};

} // namespace widgets
