#pragma once

#include "GenericValueSelector.h"
#include "GenericValueSelectorItemDelegate.h"
#include "ValueNames.h"

namespace widgets {

/// The list delegate of a selector whose values have names.
template <QString (*nameOf)(const QString&)>
class NamedValueSelectorItemDelegate : public GenericValueSelectorItemDelegate {
public:
    using GenericValueSelectorItemDelegate::GenericValueSelectorItemDelegate;

    QString displayText(const QVariant& value, const QLocale& /*locale*/) const override
    {
        return nameOf(value.toString());
    }
};

/// A selector that shows values by their names, as its list does.
template <QString (*nameOf)(const QString&), typename Delegate>
class NamedValueSelector : public GenericValueSelector {
public:
    NamedValueSelector(QWidget* parent, const QStringList& values, const QString& current)
        : GenericValueSelector(parent, values, current)
    {
        setItemDelegate(new Delegate(this));
    }

    QString displayText(const QString& value) const override { return nameOf(value); }
};

} // namespace widgets
