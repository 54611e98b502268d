#pragma once

#include "GenericValueSelector.h"
#include "GenericValueSelectorItemDelegate.h"

namespace widgets {

class ShaderBinaryFormatSelectorItemDelegate : public GenericValueSelectorItemDelegate {
    Q_OBJECT

public:
    using GenericValueSelectorItemDelegate::GenericValueSelectorItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
};

/// Formats of compiled shaders, by their enumerants.
class ShaderBinaryFormatSelector : public GenericValueSelector {
    Q_OBJECT

public:
    ShaderBinaryFormatSelector(QWidget* parent, const QString& current);

    /// The names of the choices; every name has a value.
    static QList<const char*> candidateNames();

    QString displayText(const QString& value) const override;
};

} // namespace widgets
