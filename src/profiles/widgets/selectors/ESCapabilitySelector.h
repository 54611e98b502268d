#pragma once

#include "NamedValueSelector.h"

namespace widgets {

class CapabilitySelectorItemDelegate : public NamedValueSelectorItemDelegate<capabilityName> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Keys of capabilities, by their element names.
class ESCapabilitySelector : public NamedValueSelector<capabilityName, CapabilitySelectorItemDelegate> {
    Q_OBJECT

public:
    ESCapabilitySelector(QWidget* parent, const QStringList& xmlNames, const QString& current);
};

} // namespace widgets
