#pragma once

#include <QSortFilterProxyModel>

/// Shows the errors, the warnings, both or none of an ErrorListModel; rows of any other severity never.
/// Another choice resets the model: where errors and warnings alternate, announcing each row that comes or
/// goes would take minutes.
class ErrorListFilterProxyModel : public QSortFilterProxyModel {
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void setShowErrors(bool show);
    void setShowWarnings(bool show);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    void change(bool& flag, bool value);

    bool m_showWarnings = true;
    bool m_showErrors = true;
};
