#pragma once

#include "GenericValueSelector.h"
#include "GenericValueSelectorItemDelegate.h"

#include <string>
#include <string_view>

namespace widgets {

/// One of the functions of value_names.
using NameOf = std::string (*)(std::string_view);

/// The list delegate of a selector whose values have names.
template <NameOf nameOf> class NamedValueSelectorItemDelegate : public GenericValueSelectorItemDelegate {
public:
    using GenericValueSelectorItemDelegate::GenericValueSelectorItemDelegate;

    static QString shownName(const QString& value)
    {
        return QString::fromStdString(nameOf(value.toStdString()));
    }

    QString displayText(const QVariant& value, const QLocale& /*locale*/) const override
    {
        return shownName(value.toString());
    }
};

/// A selector that shows values by the names that its list delegate gives them.
template <typename Delegate> class NamedValueSelector : public GenericValueSelector {
public:
    NamedValueSelector(QWidget* parent, const QStringList& values, const QString& current)
        : GenericValueSelector(parent, values, current)
    {
        setItemDelegate(new Delegate(this));
    }

    QString displayText(const QString& value) const override { return Delegate::shownName(value); }
};

} // namespace widgets
