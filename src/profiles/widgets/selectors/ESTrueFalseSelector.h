#pragma once

#include "NamedValueSelector.h"

namespace widgets {

class ESTrueFalseSelectorItemDelegate : public NamedValueSelectorItemDelegate<glTruthName> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Yes or no as the GL says it, stored as 1 or 0.
class ESTrueFalseSelector : public NamedValueSelector<glTruthName, ESTrueFalseSelectorItemDelegate> {
    Q_OBJECT

public:
    ESTrueFalseSelector(QWidget* parent, const QString& current);
};

} // namespace widgets
