#pragma once

#include "NamedValueSelector.h"

namespace widgets {

class ShaderBinaryFormatSelectorItemDelegate : public NamedValueSelectorItemDelegate<glValueName> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Formats of compiled shaders, by their enumerants.
class ShaderBinaryFormatSelector
    : public NamedValueSelector<glValueName, ShaderBinaryFormatSelectorItemDelegate> {
    Q_OBJECT

public:
    ShaderBinaryFormatSelector(QWidget* parent, const QString& current);

    /// The names of the choices; every name has a value.
    static QList<const char*> candidateNames();
};

} // namespace widgets
