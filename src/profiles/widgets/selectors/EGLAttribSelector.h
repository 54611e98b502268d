#pragma once

#include "GenericValueSelector.h"
#include "GenericValueSelectorItemDelegate.h"

namespace widgets {

class AttribSelectorItemDelegate : public GenericValueSelectorItemDelegate {
    Q_OBJECT

public:
    using GenericValueSelectorItemDelegate::GenericValueSelectorItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
};

/// Keys of EGL attributes.
class EGLAttribSelector : public GenericValueSelector {
    Q_OBJECT

public:
    EGLAttribSelector(QWidget* parent, const QList<std::int32_t>& attribs, const QString& current);

    QString displayText(const QString& value) const override;
};

} // namespace widgets
