#pragma once

#include "NamedValueSelector.h"
#include "ValueNames.h"

namespace widgets {

class ImageFormatSelectorItemDelegate : public NamedValueSelectorItemDelegate<value_names::glValue> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Formats and types of images, by their enumerants.
class ImageFormatSelector : public NamedValueSelector<ImageFormatSelectorItemDelegate> {
    Q_OBJECT

public:
    /// What the values are for, which decides the choices.
    enum class Use { ReadFormat, ReadType, CompressedTexture };

    ImageFormatSelector(QWidget* parent, Use use, const QString& current);

    /// The names of the choices; every name has a value.
    static QList<const char*> candidateNames(Use use);
};

} // namespace widgets
