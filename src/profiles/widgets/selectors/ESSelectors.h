#pragma once

#include "NamedValueSelector.h"
#include "ValueNames.h"

#include <cstdint>

// The selectors of the OpenGL ES trees, but for those of image formats.

namespace widgets {

class APISelectorItemDelegate : public NamedValueSelectorItemDelegate<value_names::esApi> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Versions of OpenGL ES.
class ESAPISelector : public NamedValueSelector<APISelectorItemDelegate> {
    Q_OBJECT

public:
    ESAPISelector(QWidget* parent, const QList<std::int32_t>& versions, const QString& current);
};

class CapabilitySelectorItemDelegate : public NamedValueSelectorItemDelegate<value_names::esCapability> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Keys of capabilities, by their element names.
class ESCapabilitySelector : public NamedValueSelector<CapabilitySelectorItemDelegate> {
    Q_OBJECT

public:
    using NamedValueSelector::NamedValueSelector;
};

/// Names of OpenGL ES extensions, with "GL_".
class ESExtensionSelector : public GenericValueSelector {
    Q_OBJECT

public:
    using GenericValueSelector::GenericValueSelector;
};

class ESTrueFalseSelectorItemDelegate : public NamedValueSelectorItemDelegate<value_names::glBoolean> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Yes or no as the GL says it, stored as 1 or 0.
class ESTrueFalseSelector : public NamedValueSelector<ESTrueFalseSelectorItemDelegate> {
    Q_OBJECT

public:
    ESTrueFalseSelector(QWidget* parent, const QString& current);
};

class ShaderBinaryFormatSelectorItemDelegate : public NamedValueSelectorItemDelegate<value_names::glValue> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Formats of compiled shaders, by their enumerants.
class ShaderBinaryFormatSelector : public NamedValueSelector<ShaderBinaryFormatSelectorItemDelegate> {
    Q_OBJECT

public:
    ShaderBinaryFormatSelector(QWidget* parent, const QString& current);

    /// The names of the choices; every name has a value.
    static QList<const char*> candidateNames();
};

} // namespace widgets
