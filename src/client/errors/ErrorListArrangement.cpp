#include "ErrorListArrangement.h"

#include "ErrorListModel.h"

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

void ErrorListArrangement::restart(const ErrorListModel* model, Order order)
{
    m_model = model;
    m_order = order;
    m_scanned = 0;
    m_shown.clear();
    m_new.clear();
    m_accepted.clear();
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
            && !m_replacement);
}

void ErrorListArrangement::work(const QDeadlineTimer& deadline)
{
    if (!m_model)
        return;
    if (!m_sort)
        scan(deadline);
    if (m_sort || (m_scanned == m_model->rowCount() && !m_accepted.empty()))
        sort(deadline);
}

void ErrorListArrangement::scan(const QDeadlineTimer& deadline)
{
    Rows& found = isByArrival() ? m_new : m_accepted;
    const int count = m_model->rowCount();
    while (m_scanned < count) {
        const int end = std::min(count, m_scanned + stride);
        for (; m_scanned < end; ++m_scanned) {
            if (m_accepts(m_scanned))
                found.push_back(static_cast<Row>(m_scanned));
        }
        if (m_scanned < count && deadline.hasExpired())
            return;
    }
}

void ErrorListArrangement::beginSort()
{
    m_sort.emplace(
        std::exchange(m_accepted, {}), [this](Row row, std::uint32_t depth) { return key(row, depth); },
        [this](Row row) { return identity(row); });
    m_sortTaken = 0;
}

void ErrorListArrangement::sort(const QDeadlineTimer& deadline)
{
    if (!m_sort)
        beginSort();
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
    const auto isBefore = [this](Row left, Row right) {
        return StepwiseSort::isBefore(
            left, right, [this](Row row, std::uint32_t depth) { return key(row, depth); },
            [this](Row row) { return identity(row); });
    };
    const auto copyUpTo = [this](Rows::const_iterator end) {
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

int ErrorListArrangement::placeOf(Row row) const
{
    auto found = m_shown.end();
    if (!isByArrival())
        found = std::find(m_shown.begin(), m_shown.end(), row);
    else if (const auto at = std::lower_bound(m_shown.begin(), m_shown.end(), row);
             at != m_shown.end() && *at == row)
        found = at;
    return found == m_shown.end() ? -1 : static_cast<int>(found - m_shown.begin());
}

StepwiseSort::Key ErrorListArrangement::key(Row row, std::uint32_t depth) const
{
    const error_list::Row facts = m_model->row(static_cast<int>(row));
    StepwiseSort::Key key;
    switch (m_order.column) {
    case FrameColumn:
        // Rows without a frame come first.
        key.bytes = static_cast<std::uint64_t>(std::max<std::int64_t>(facts.frame, -1) + 1);
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

std::uint64_t ErrorListArrangement::identity(Row row) const
{
    const auto number = static_cast<int>(row);
    return m_order.column == FrameColumn
        ? static_cast<std::uint64_t>(std::max<std::int64_t>(m_model->row(number).frame, -1) + 1)
        : m_model->textNumber(number, static_cast<Column>(m_order.column));
}
