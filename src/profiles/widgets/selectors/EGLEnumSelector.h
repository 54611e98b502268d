#pragma once

#include "NamedValueSelector.h"

namespace widgets {

class EGLEnumSelectorItemDelegate : public NamedValueSelectorItemDelegate<eglValueName> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Values of EGL attributes; those that all attributes share have names.
class EGLEnumSelector : public NamedValueSelector<eglValueName, EGLEnumSelectorItemDelegate> {
    Q_OBJECT

public:
    EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, std::int32_t current);
    /// For a current value that may be any text.
    EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, const QString& current);
};

} // namespace widgets
