#pragma once

#include "ErrorFilter.h"
#include "ErrorHistogram.h"
#include "ErrorKinds.h"
#include "ErrorListArrangement.h"

#include <QSortFilterProxyModel>
#include <QTimer>

class ErrorListModel;

/// Shows the rows of an ErrorListModel that the boxes of the severities and the filter let through, in the
/// order of arrival or sorted by a column; rows of any other severity never. In a folded list, the rows of a
/// kind are one group, with their count in a column of its own and the rows below it where it is open. Rows
/// of muted kinds are not shown.
///
/// The rows are found in steps of the event loop, which a QSortFilterProxyModel could not do, so everything
/// that it does for that is replaced here. Another choice resets the model at once, with what was found in
/// some milliseconds; more rows are told as they are found, and settled() when all are.
class ErrorListFilterProxyModel : public QSortFilterProxyModel {
    Q_OBJECT

public:
    explicit ErrorListFilterProxyModel(QObject* parent = nullptr);

    void setShowErrors(bool show);
    void setShowWarnings(bool show);
    void setFilter(const ErrorFilter& filter);
    const ErrorFilter& filter() const { return m_filter; }

    void setFolded(bool folded);
    bool isFolded() const { return m_isFolded; }
    /// The kinds whose rows are not shown, none for nobody. They must live longer; to be called again when
    /// they have changed.
    void setMuted(const sessions::KnownKinds* muted);
    /// Rows that are not shown for their kind alone.
    int mutedCount() const { return m_arrangement.mutedCount(); }
    /// Whether rows may be hidden, so that shownFrames() are counted.
    bool isFiltered() const { return m_isFiltered; }
    /// The frames of the rows that are found; in a folded list also of those in closed groups.
    const ErrorHistogram& shownFrames() const { return m_shownFrames; }
    /// What the kind of a row is known by.
    const sessions::Signature& signatureOf(int row);

    /// Milliseconds that a step of the work takes; with 0 it does as little as it can.
    void setStepTime(int milliseconds) { m_stepTime = milliseconds; }
    /// Whether everything is shown that is to be.
    bool isSettled() const { return !m_timer.isActive(); }
    /// Whether the rows are those of the source in their order.
    bool isByArrival() const { return m_arrangement.isByArrival(); }
    /// The row of the source that a row shows; of a group the first one.
    int sourceRow(int row) const { return static_cast<int>(m_arrangement.rowOf(entry(row))); }
    /// The row that shows one of the source, maybe as the group that it is in. -1 where none does.
    int rowOf(int sourceRow) const { return rowOfEntry(static_cast<ErrorListArrangement::Entry>(sourceRow)); }
    /// What a row shows, which is of use until the source is cleared.
    ErrorListArrangement::Entry entry(int row) const
    {
        return m_arrangement.shown()[static_cast<std::size_t>(row)];
    }
    int rowOfEntry(ErrorListArrangement::Entry entry) const { return m_arrangement.placeOf(entry); }
    bool isGroup(int row) const { return ErrorListArrangement::isGroup(entry(row)); }
    bool isOpen(int group) const { return m_arrangement.isOpen(entry(group)); }
    const ErrorListGroups::Group& group(int row) const { return m_arrangement.group(entry(row)); }
    /// Opens or closes a group.
    void toggle(int group);
    /// The list behind the filter, if it is one of errors.
    const ErrorListModel* errors() const { return m_errors; }

    void setSourceModel(QAbstractItemModel* model) override;
    QModelIndex mapToSource(const QModelIndex& index) const override;
    QModelIndex mapFromSource(const QModelIndex& index) const override;
    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    QModelIndex sibling(int row, int column, const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex& parent = QModelIndex()) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// Column -1 stands for the order of arrival.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

Q_SIGNALS:
    void mutedCountChanged(int count);
    /// All rows are found, after a time in which they were not.
    void settled();

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    ErrorListArrangement::Verdict judge(int sourceRow);
    QVariant groupText(ErrorListArrangement::Entry group, int column) const;
    void change(bool& flag, bool value);
    void sourceReset();
    void announceMuted();
    void arrangeAnew();
    void rowsArrived();
    void work();
    void publish();

    const ErrorListModel* m_errors = nullptr;
    bool m_showWarnings = true;
    bool m_showErrors = true;
    ErrorFilter m_filter;
    ErrorListArrangement::Order m_order;
    bool m_isFolded = false;
    ErrorKinds m_kinds;
    int m_announcedMuted = 0;
    bool m_isFiltered = false;
    ErrorHistogram m_shownFrames;
    int m_stepTime = 10;
    ErrorListArrangement m_arrangement;
    QTimer m_timer; ///< Runs while there is something to do.
};
