#pragma once

#include "GenericValueSelector.h"
#include "GenericValueSelectorItemDelegate.h"

namespace widgets {

class EGLEnumSelectorItemDelegate : public GenericValueSelectorItemDelegate {
    Q_OBJECT

public:
    using GenericValueSelectorItemDelegate::GenericValueSelectorItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
};

/// Values of EGL attributes; those that all attributes share have names.
class EGLEnumSelector : public GenericValueSelector {
    Q_OBJECT

public:
    EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, std::int32_t current);
    /// For a current value that may be any text.
    EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, const QString& current);

    QString displayText(const QString& value) const override;
};

} // namespace widgets
