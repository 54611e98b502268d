#pragma once

#include "NamedValueSelector.h"
#include "ValueNames.h"

#include <cstdint>

// The selectors of the EGL tree.

namespace widgets {

class AttribSelectorItemDelegate : public NamedValueSelectorItemDelegate<value_names::eglAttribute> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Keys of EGL attributes.
class EGLAttribSelector : public NamedValueSelector<AttribSelectorItemDelegate> {
    Q_OBJECT

public:
    EGLAttribSelector(QWidget* parent, const QList<std::int32_t>& attribs, const QString& current);
};

class EGLEnumSelectorItemDelegate : public NamedValueSelectorItemDelegate<value_names::eglValue> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Values of EGL attributes; those that all attributes share have names.
class EGLEnumSelector : public NamedValueSelector<EGLEnumSelectorItemDelegate> {
    Q_OBJECT

public:
    EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, std::int32_t current);
    /// For a current value that may be any text.
    EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, const QString& current);
};

/// What is wrong with a config, for EGL_CONFIG_CAVEAT.
class EGLConfigCaveatSelector : public EGLEnumSelector {
    Q_OBJECT

public:
    EGLConfigCaveatSelector(QWidget* parent, const QString& current);
};

/// Kinds of transparency, for EGL_TRANSPARENT_TYPE.
class EGLTransparentTypeSelector : public EGLEnumSelector {
    Q_OBJECT

public:
    EGLTransparentTypeSelector(QWidget* parent, const QString& current);
};

/// Yes or no, for attributes that are either.
class EGLTrueFalseSelector : public EGLEnumSelector {
    Q_OBJECT

public:
    EGLTrueFalseSelector(QWidget* parent, const QString& current);
};

} // namespace widgets
