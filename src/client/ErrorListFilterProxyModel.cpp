#include "ErrorListFilterProxyModel.h"

#include "ErrorListModel.h"

void ErrorListFilterProxyModel::setShowErrors(bool show)
{
    if (m_showErrors == show)
        return;
    m_showErrors = show;
    invalidateFilter();
}

void ErrorListFilterProxyModel::setShowWarnings(bool show)
{
    if (m_showWarnings == show)
        return;
    m_showWarnings = show;
    invalidateFilter();
}

bool ErrorListFilterProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    Q_UNUSED(sourceParent)
    const auto* errors = qobject_cast<const ErrorListModel*>(sourceModel());
    if (errors == nullptr)
        return false;
    switch (errors->severity(sourceRow)) {
    case errorList::SeverityError:
        return m_showErrors;
    case errorList::SeverityWarning:
        return m_showWarnings;
    default:
        return false;
    }
}
