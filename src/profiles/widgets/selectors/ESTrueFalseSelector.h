#pragma once

#include "GenericValueSelector.h"
#include "GenericValueSelectorItemDelegate.h"

namespace widgets {

class ESTrueFalseSelectorItemDelegate : public GenericValueSelectorItemDelegate {
    Q_OBJECT

public:
    using GenericValueSelectorItemDelegate::GenericValueSelectorItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
};

/// Yes or no as the GL says it, stored as 1 or 0.
class ESTrueFalseSelector : public GenericValueSelector {
    Q_OBJECT

public:
    ESTrueFalseSelector(QWidget* parent, const QString& current);

    QString displayText(const QString& value) const override;
};

} // namespace widgets
