#include "ErrorListFilterProxyModel.h"

#include "ErrorListModel.h"
#include "EventLoopBudget.h"

#include <QElapsedTimer>
#include <QLocale>

#include <algorithm>
#include <utility>

namespace {

/// Milliseconds until rows that arrive in a sorted list are put in their places, and how many times as long
/// as the last time that took.
constexpr int mergePause = 200;
constexpr int pauseRatio = 10;

} // namespace

ErrorListFilterProxyModel::ErrorListFilterProxyModel(QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_arrangement(m_kinds, [this](int row) { return judge(row); })
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &ErrorListFilterProxyModel::work);
}

void ErrorListFilterProxyModel::setSourceModel(QAbstractItemModel* model)
{
    if (sourceModel())
        disconnect(sourceModel(), nullptr, this, nullptr);
    beginResetModel();
    // Not what the parent does, which would follow the source by itself.
    QAbstractProxyModel::setSourceModel(model); // NOLINT(bugprone-parent-virtual-call)
    m_errors = qobject_cast<ErrorListModel*>(model);
    m_kinds.restart(m_errors);
    m_arrangement.restart(m_errors, m_order, m_isFolded);
    endResetModel();
    if (!m_errors)
        return;
    connect(m_errors, &QAbstractItemModel::rowsInserted, this, &ErrorListFilterProxyModel::rowsArrived);
    connect(m_errors, &QAbstractItemModel::modelReset, this, &ErrorListFilterProxyModel::sourceReset);
    // Nobody is told, as with any proxy: the views may be going with it.
    connect(m_errors, &QObject::destroyed, this, [this] {
        m_errors = nullptr;
        m_kinds.restart(nullptr);
        m_arrangement.restart(nullptr, m_order, m_isFolded);
        m_timer.stop();
    });
    arrangeAnew();
}

void ErrorListFilterProxyModel::sourceReset()
{
    m_kinds.restart(m_errors);
    m_arrangement.closeGroups();
    arrangeAnew();
}

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
    flag = value;
    arrangeAnew();
}

void ErrorListFilterProxyModel::setFilter(const ErrorFilter& filter)
{
    m_filter = filter;
    arrangeAnew();
}

void ErrorListFilterProxyModel::setFolded(bool folded)
{
    if (folded == m_isFolded)
        return;
    constexpr int column = error_list::CountColumn;
    if (folded) {
        beginInsertColumns(QModelIndex(), column, column);
        m_isFolded = true;
        endInsertColumns();
    } else {
        beginRemoveColumns(QModelIndex(), column, column);
        m_isFolded = false;
        endRemoveColumns();
        if (m_order.column == column)
            m_order = {};
        m_arrangement.closeGroups();
    }
    arrangeAnew();
}

void ErrorListFilterProxyModel::setMuted(const sessions::KnownKinds* muted)
{
    m_kinds.setMuted(muted);
    arrangeAnew();
}

const sessions::Signature& ErrorListFilterProxyModel::signatureOf(int row)
{
    return m_kinds.signature(m_kinds.kindOf(sourceRow(row)));
}

void ErrorListFilterProxyModel::toggle(int group)
{
    m_arrangement.toggle(entry(group));
    publish();
}

void ErrorListFilterProxyModel::sort(int column, Qt::SortOrder order)
{
    const ErrorListArrangement::Order wanted{column, column >= 0 && order == Qt::DescendingOrder};
    if (column >= columnCount() || wanted == m_order)
        return;
    m_order = wanted;
    arrangeAnew();
}

bool ErrorListFilterProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    Q_UNUSED(sourceParent)
    const error_list::Row row = m_errors->row(sourceRow);
    switch (row.severity) {
    case error_list::SeverityError:
        return m_showErrors && m_filter.matches(row);
    case error_list::SeverityWarning:
        return m_showWarnings && m_filter.matches(row);
    default:
        return false;
    }
}

ErrorListArrangement::Verdict ErrorListFilterProxyModel::judge(int sourceRow)
{
    using Verdict = ErrorListArrangement::Verdict;
    if (!filterAcceptsRow(sourceRow, QModelIndex()))
        return Verdict::Hidden;
    if (m_kinds.hasMuted() && m_kinds.isMuted(m_kinds.kindOf(sourceRow)))
        return Verdict::Muted;
    // Where all are shown, they need not be counted once more.
    if (m_isFiltered) {
        const error_list::Row row = m_errors->row(sourceRow);
        m_shownFrames.add(row.severity, row.frame);
    }
    return Verdict::Shown;
}

void ErrorListFilterProxyModel::arrangeAnew()
{
    beginResetModel();
    m_isFiltered = !m_showErrors || !m_showWarnings || !m_filter.isEmpty() || m_kinds.hasMuted();
    m_shownFrames.clear();
    m_arrangement.restart(m_errors, m_order, m_isFolded);
    m_arrangement.work(QDeadlineTimer(m_stepTime));
    m_arrangement.showNew();
    if (m_arrangement.hasReplacement())
        m_arrangement.showReplacement();
    m_arrangement.takeGroupChange();
    // The view is to know what it gets at its reset.
    m_arrangement.isSettled() ? m_timer.stop() : m_timer.start(0);
    endResetModel();
    announceMuted();
}

void ErrorListFilterProxyModel::announceMuted()
{
    if (const int count = mutedCount(); std::exchange(m_announcedMuted, count) != count)
        Q_EMIT mutedCountChanged(count);
}

void ErrorListFilterProxyModel::rowsArrived()
{
    if (m_timer.isActive())
        return;
    // Groups and sorted rows are told of a few times a second.
    if (!isByArrival()) {
        m_timer.start(mergePause);
        return;
    }
    m_arrangement.work(QDeadlineTimer(m_stepTime));
    publish();
    if (!m_arrangement.isSettled())
        m_timer.start(0);
}

void ErrorListFilterProxyModel::work()
{
    // One list after the other, so that the window stays alive with many of them.
    if (!event_loop_budget::claimStep()) {
        m_timer.start(0);
        return;
    }
    QElapsedTimer time;
    time.start();
    m_arrangement.work(QDeadlineTimer(m_stepTime));
    const bool replaces = m_arrangement.hasReplacement();
    publish();
    if (m_arrangement.isSettled()) {
        Q_EMIT settled();
        return;
    }
    m_timer.start(replaces ? std::max(mergePause, pauseRatio * static_cast<int>(time.elapsed())) : 0);
}

void ErrorListFilterProxyModel::publish()
{
    if (const std::size_t count = m_arrangement.newCount(); count > 0) {
        const int first = rowCount();
        beginInsertRows(QModelIndex(), first, first + static_cast<int>(count) - 1);
        m_arrangement.showNew();
        endInsertRows();
    }
    if (m_arrangement.hasReplacement()) {
        beginResetModel();
        m_arrangement.showReplacement();
        m_arrangement.takeGroupChange();
        endResetModel();
    }
    announceMuted();
    if (m_arrangement.takeGroupChange() && rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

QModelIndex ErrorListFilterProxyModel::mapToSource(const QModelIndex& index) const
{
    if (!m_errors || !index.isValid() || index.row() >= rowCount())
        return {};
    // The column of counts has none.
    return m_errors->index(sourceRow(index.row()), index.column());
}

QModelIndex ErrorListFilterProxyModel::mapFromSource(const QModelIndex& index) const
{
    if (!m_errors || !index.isValid())
        return {};
    const int row = rowOf(index.row());
    return row < 0 ? QModelIndex() : createIndex(row, index.column());
}

QModelIndex ErrorListFilterProxyModel::index(int row, int column, const QModelIndex& parent) const
{
    return hasIndex(row, column, parent) ? createIndex(row, column) : QModelIndex();
}

QModelIndex ErrorListFilterProxyModel::parent(const QModelIndex& index) const
{
    Q_UNUSED(index)
    return {};
}

QModelIndex ErrorListFilterProxyModel::sibling(int row, int column, const QModelIndex& index) const
{
    return index.isValid() ? this->index(row, column) : QModelIndex();
}

int ErrorListFilterProxyModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_arrangement.shown().size());
}

int ErrorListFilterProxyModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() || !m_errors ? 0 : error_list::ColumnCount + (m_isFolded ? 1 : 0);
}

bool ErrorListFilterProxyModel::hasChildren(const QModelIndex& parent) const
{
    return !parent.isValid() && rowCount() > 0;
}

bool ErrorListFilterProxyModel::canFetchMore(const QModelIndex& parent) const
{
    Q_UNUSED(parent)
    return false;
}

void ErrorListFilterProxyModel::fetchMore(const QModelIndex& parent)
{
    Q_UNUSED(parent)
}

QVariant ErrorListFilterProxyModel::data(const QModelIndex& index, int role) const
{
    if (role == Qt::DisplayRole && index.isValid() && index.row() < rowCount()) {
        const ErrorListArrangement::Entry shown = entry(index.row());
        if (ErrorListArrangement::isGroup(shown))
            return groupText(shown, index.column());
    }
    const QModelIndex source = mapToSource(index);
    return source.isValid() ? source.data(role) : QVariant();
}

QVariant ErrorListFilterProxyModel::groupText(ErrorListArrangement::Entry group, int column) const
{
    const ErrorListGroups::Group& facts = m_arrangement.group(group);
    switch (column) {
    case error_list::FrameColumn:
        if (facts.firstFrame < 0)
            return QString();
        if (facts.firstFrame == facts.lastFrame)
            return QString::number(facts.firstFrame);
        return QStringLiteral("%1\u2013%2").arg(facts.firstFrame).arg(facts.lastFrame);
    case error_list::CountColumn: {
        const QChar mark = m_arrangement.isOpen(group) ? QChar(0x25BE) : QChar(0x25B8);
        return QStringLiteral("%1 %2").arg(mark).arg(QLocale().toString(facts.count));
    }
    default:
        return m_errors->index(static_cast<int>(facts.firstRow), column).data();
    }
}

QVariant ErrorListFilterProxyModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (!m_errors)
        return {};
    if (orientation == Qt::Horizontal && section == error_list::CountColumn && m_isFolded)
        return role == Qt::DisplayRole ? tr("Count") : QVariant();
    if (orientation == Qt::Horizontal)
        return m_errors->headerData(section, orientation, role);
    if (section < 0 || section >= rowCount())
        return {};
    return m_errors->headerData(sourceRow(section), orientation, role);
}

Qt::ItemFlags ErrorListFilterProxyModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren
                           : Qt::ItemFlags();
}
