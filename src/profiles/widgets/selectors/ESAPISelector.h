#pragma once

#include "NamedValueSelector.h"

namespace widgets {

class APISelectorItemDelegate : public NamedValueSelectorItemDelegate<apiName> {
    Q_OBJECT

public:
    using NamedValueSelectorItemDelegate::NamedValueSelectorItemDelegate;
};

/// Versions of OpenGL ES.
class ESAPISelector : public NamedValueSelector<apiName, APISelectorItemDelegate> {
    Q_OBJECT

public:
    ESAPISelector(QWidget* parent, const QList<std::int32_t>& versions, const QString& current);
};

} // namespace widgets
