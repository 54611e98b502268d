#include "ErrorListFilterProxyModel.h"

#include "ErrorListModel.h"

void ErrorListFilterProxyModel::setShowErrors(bool show)
{
    change(m_showErrors, show);
}

void ErrorListFilterProxyModel::setShowWarnings(bool show)
{
    change(m_showWarnings, show);
}

void ErrorListFilterProxyModel::change(bool& flag, bool value)
{
    if (flag == value)
        return;
    beginResetModel();
    flag = value;
    {
        // Only the reset is announced.
        const QSignalBlocker quiet(this);
        invalidate();
    }
    endResetModel();
}

bool ErrorListFilterProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    Q_UNUSED(sourceParent)
    const auto* errors = qobject_cast<const ErrorListModel*>(sourceModel());
    if (!errors)
        return false;
    switch (errors->severity(sourceRow)) {
    case error_list::SeverityError:
        return m_showErrors;
    case error_list::SeverityWarning:
        return m_showWarnings;
    default:
        return false;
    }
}
