#pragma once

#include "GenericValueSelector.h"
#include "GenericValueSelectorItemDelegate.h"

namespace widgets {

class APISelectorItemDelegate : public GenericValueSelectorItemDelegate {
    Q_OBJECT

public:
    using GenericValueSelectorItemDelegate::GenericValueSelectorItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
};

/// Versions of OpenGL ES.
class ESAPISelector : public GenericValueSelector {
    Q_OBJECT

public:
    ESAPISelector(QWidget* parent, const QList<std::int32_t>& versions, const QString& current);

    QString displayText(const QString& value) const override;
};

} // namespace widgets
