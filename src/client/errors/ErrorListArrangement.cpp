#include "ErrorListArrangement.h"

#include "ErrorListModel.h"
#include "TextSearch.h"

#include <algorithm>
#include <utility>

using namespace error_list;

namespace {

/// Rows between two looks at the clock.
constexpr int stride = 256;

/// Eight letters of a text as a number that orders like them.
StepwiseSort::Key letters(std::string_view text, std::uint32_t depth)
{
    constexpr std::size_t width = 8;
    const std::size_t start = depth * width;
    StepwiseSort::Key key;
    for (std::size_t i = start; i < start + width; ++i)
        key.bytes = key.bytes << 8U | (i < text.size() ? static_cast<unsigned char>(foldCase(text[i])) : 0U);
    key.hasMore = text.size() > start + width;
    return key;
}

} // namespace

void ErrorListArrangement::restart(const ErrorListModel* model, Order order, bool isFolded)
{
    m_model = model;
    m_order = order;
    m_isFolded = isFolded;
    m_scanned = 0;
    m_mutedCount = 0;
    m_shown.clear();
    m_new.clear();
    m_accepted.clear();
    if (isFolded)
        m_groups.clear();
    m_groupOrder.clear();
    m_areGroupsStale = false;
    m_hasGroupChange = false;
    m_sort.reset();
    m_isFirstSort = true;
    m_merged.clear();
    m_mergedShown = 0;
    m_replacement.reset();
}

bool ErrorListArrangement::isSettled() const
{
    return !m_model
        || (m_scanned == m_model->rowCount() && m_new.empty() && m_accepted.empty() && !m_sort
            && !m_areGroupsStale && !m_replacement);
}

void ErrorListArrangement::work(const QDeadlineTimer& deadline)
{
    if (!m_model)
        return;
    if (!m_sort)
        scan(deadline);
    if (m_scanned < m_model->rowCount() && !m_sort)
        return;
    if (m_isFolded)
        arrangeGroups(deadline);
    else if (m_sort || !m_accepted.empty())
        sortRows(deadline);
}

void ErrorListArrangement::scan(const QDeadlineTimer& deadline)
{
    const int count = m_model->rowCount();
    while (m_scanned < count) {
        const int end = std::min(count, m_scanned + stride);
        for (; m_scanned < end; ++m_scanned) {
            const Verdict verdict = m_judge(m_scanned);
            if (verdict == Verdict::Shown)
                accept(static_cast<Row>(m_scanned));
            else if (verdict == Verdict::Muted)
                ++m_mutedCount;
        }
        if (m_scanned < count && deadline.hasExpired())
            return;
    }
}

void ErrorListArrangement::accept(Row row)
{
    if (!m_isFolded) {
        (isByArrival() ? m_new : m_accepted).push_back(row);
        return;
    }
    const auto number = static_cast<int>(row);
    const Kind kind = m_kinds.kindOf(number);
    const bool isNew = m_groups.add(row, kind, m_model->row(number).frame);
    m_hasGroupChange = true;
    if (needsGroupOrder()) {
        m_areGroupsStale = true;
    } else if (isNew) {
        m_groupOrder.push_back(kind);
        m_new.push_back(groupBit | kind);
    }
}

/// All groups each time, in contrast to rows: which one comes where changes with their counts.
void ErrorListArrangement::arrangeGroups(const QDeadlineTimer& deadline)
{
    if (!m_areGroupsStale)
        return;
    if (m_order.column < 0) {
        m_groupOrder = m_groups.kinds();
        replaceGroups();
        return;
    }
    if (!m_sort)
        beginSort(m_groups.kinds());
    m_sort->work(deadline);
    if (!m_sort->isDone())
        return;
    m_groupOrder.clear();
    for (std::size_t i = 0; i < m_sort->sortedCount(); ++i)
        m_groupOrder.push_back(m_sort->item(i));
    m_sort.reset();
    replaceGroups();
}

/// With the rows of open groups below them.
void ErrorListArrangement::replaceGroups()
{
    m_areGroupsStale = false;
    const auto rows = m_groups.openRows();
    Entries entries;
    for (const Kind kind : m_groupOrder) {
        entries.push_back(groupBit | kind);
        if (const auto open = rows.find(kind); open != rows.end())
            entries.insert(entries.end(), open->second.begin(), open->second.end());
    }
    m_new.clear();
    if (entries != m_shown)
        m_replacement = std::move(entries);
}

void ErrorListArrangement::toggle(Entry group)
{
    m_groups.toggle(kindOf(group));
    if (isSettled())
        replaceGroups();
    else
        m_areGroupsStale = true;
}

void ErrorListArrangement::beginSort(const std::vector<std::uint32_t>& items)
{
    m_sort.emplace(
        items, [this](std::uint32_t item, std::uint32_t depth) { return key(item, depth); },
        [this](std::uint32_t item) { return identity(item); });
    m_sortTaken = 0;
}

void ErrorListArrangement::sortRows(const QDeadlineTimer& deadline)
{
    if (!m_sort)
        beginSort(std::exchange(m_accepted, {}));
    m_sort->work(deadline);
    if (!m_isFirstSort) {
        if (m_sort->isDone())
            merge(deadline);
        return;
    }
    for (; m_sortTaken < m_sort->sortedCount(); ++m_sortTaken)
        m_new.push_back(m_sort->item(m_sortTaken));
    if (m_sort->isDone()) {
        m_sort.reset();
        m_isFirstSort = false;
    }
}

/// Rows that arrived after the first sort, into those that are shown.
void ErrorListArrangement::merge(const QDeadlineTimer& deadline)
{
    const StepwiseSort::KeyOf keyOf = [this](Row row, std::uint32_t depth) {
        return key(row, depth);
    };
    const StepwiseSort::IdentityOf identityOf = [this](Row row) {
        return identity(row);
    };
    const auto isBefore = [&](Row left, Row right) {
        return StepwiseSort::isBefore(left, right, keyOf, identityOf);
    };
    const auto copyUpTo = [this](Entries::const_iterator end) {
        const auto from = m_shown.cbegin() + static_cast<std::ptrdiff_t>(m_mergedShown);
        m_merged.insert(m_merged.end(), from, end);
        m_mergedShown = static_cast<std::size_t>(end - m_shown.cbegin());
    };
    while (m_sortTaken < m_sort->sortedCount()) {
        const Row row = m_sort->item(m_sortTaken++);
        const auto from = m_shown.cbegin() + static_cast<std::ptrdiff_t>(m_mergedShown);
        copyUpTo(std::upper_bound(from, m_shown.cend(), row, isBefore));
        m_merged.push_back(row);
        if (m_sortTaken % stride == 0 && deadline.hasExpired())
            return;
    }
    copyUpTo(m_shown.cend());
    m_replacement = std::exchange(m_merged, {});
    m_mergedShown = 0;
    m_sort.reset();
}

void ErrorListArrangement::showNew()
{
    m_shown.insert(m_shown.end(), m_new.begin(), m_new.end());
    m_new.clear();
}

void ErrorListArrangement::showReplacement()
{
    m_shown = std::move(*m_replacement);
    m_replacement.reset();
}

int ErrorListArrangement::placeOf(Entry entry) const
{
    if (!m_isFolded)
        return isGroup(entry) && m_groups.contains(kindOf(entry)) ? find(group(entry).firstRow) : find(entry);
    const int place = find(entry);
    if (place >= 0 || isGroup(entry) || !m_model || static_cast<int>(entry) >= m_model->rowCount())
        return place;
    return find(groupBit | m_kinds.kindOf(static_cast<int>(entry)));
}

int ErrorListArrangement::find(Entry entry) const
{
    auto found = m_shown.end();
    if (!isByArrival())
        found = std::find(m_shown.begin(), m_shown.end(), entry);
    else if (const auto at = std::lower_bound(m_shown.begin(), m_shown.end(), entry);
             at != m_shown.end() && *at == entry)
        found = at;
    return found == m_shown.end() ? -1 : static_cast<int>(found - m_shown.begin());
}

/// Items are rows, or kinds in a folded list, of which the first row tells the texts.
StepwiseSort::Key ErrorListArrangement::key(std::uint32_t item, std::uint32_t depth) const
{
    StepwiseSort::Key key;
    const Row row = m_isFolded ? m_groups.group(item).firstRow : item;
    const error_list::Row facts = m_model->row(static_cast<int>(row));
    switch (m_order.column) {
    case FrameColumn:
    case CountColumn:
        key.bytes = number(item);
        break;
    case FunctionColumn:
        key = letters(facts.function, depth);
        break;
    case CodeColumn:
        key = letters(facts.code, depth);
        break;
    default:
        key = letters(facts.description, depth);
        break;
    }
    if (m_order.isDescending)
        key.bytes = ~key.bytes;
    return key;
}

std::uint64_t ErrorListArrangement::identity(std::uint32_t item) const
{
    if (m_order.column == FrameColumn || m_order.column == CountColumn)
        return number(item);
    const Row row = m_isFolded ? m_groups.group(item).firstRow : item;
    return m_model->textNumber(static_cast<int>(row), static_cast<Column>(m_order.column));
}

/// The count, or the frame, of which none comes first.
std::uint64_t ErrorListArrangement::number(std::uint32_t item) const
{
    if (m_order.column == CountColumn)
        return m_isFolded ? m_groups.group(item).count : 1;
    const qint32 frame =
        m_isFolded ? m_groups.group(item).firstFrame : m_model->row(static_cast<int>(item)).frame;
    return static_cast<std::uint64_t>(std::max<std::int64_t>(frame, -1) + 1);
}
