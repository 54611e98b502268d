#pragma once

#include "GenericValueSelector.h"
#include "GenericValueSelectorItemDelegate.h"

namespace widgets {

class ImageFormatSelectorItemDelegate : public GenericValueSelectorItemDelegate {
    Q_OBJECT

public:
    using GenericValueSelectorItemDelegate::GenericValueSelectorItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
};

/// Formats and types of images, by their enumerants.
class ImageFormatSelector : public GenericValueSelector {
    Q_OBJECT

public:
    /// What the values are for, which decides the choices.
    enum class Use { ReadFormat, ReadType, CompressedTexture };

    ImageFormatSelector(QWidget* parent, Use use, const QString& current);

    /// The names of the choices; every name has a value.
    static QList<const char*> candidateNames(Use use);

    QString displayText(const QString& value) const override;
};

} // namespace widgets
