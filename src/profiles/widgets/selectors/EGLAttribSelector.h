#pragma once

#include "NamedValueSelector.h"

namespace widgets {

class AttribSelectorItemDelegate : public NamedValueSelectorItemDelegate<eglAttribName> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Keys of EGL attributes.
class EGLAttribSelector : public NamedValueSelector<eglAttribName, AttribSelectorItemDelegate> {
    Q_OBJECT

public:
    EGLAttribSelector(QWidget* parent, const QList<std::int32_t>& attribs, const QString& current);
};

} // namespace widgets
