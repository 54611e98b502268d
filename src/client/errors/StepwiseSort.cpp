#include "StepwiseSort.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <array>
#include <limits>
#include <tuple>
#include <utility>

namespace {

/// Items that are sorted in one go, in about a millisecond.
constexpr std::size_t smallRange = 16384;

/// The depth of items whose keys are equal to their end: what is left to order them by is their number.
constexpr std::uint32_t lastDepth = std::numeric_limits<std::uint32_t>::max();

/// Items between two looks at the clock.
constexpr std::size_t stride = 4096;

} // namespace

StepwiseSort::StepwiseSort(const std::vector<std::uint32_t>& items, KeyOf keyOf, IdentityOf identityOf)
    : m_keyOf(std::move(keyOf))
    , m_identityOf(std::move(identityOf))
{
    m_items.reserve(items.size());
    for (const std::uint32_t item : items)
        m_items.push_back({0, item, false});
    if (!m_items.empty())
        m_ranges.push_back({0, m_items.size(), 0, 0});
}

void StepwiseSort::work(const QDeadlineTimer& deadline)
{
    while (!m_ranges.empty() && load(deadline)) {
        const Range& range = m_ranges.back();
        if (range.end - range.begin <= smallRange)
            sortSmall();
        else
            partition();
        if (deadline.hasExpired())
            return;
    }
}

bool StepwiseSort::isBefore(
    std::uint32_t left, std::uint32_t right, const KeyOf& keyOf, const IdentityOf& identityOf)
{
    if (identityOf(left) == identityOf(right))
        return left < right;
    for (std::uint32_t depth = 0;; ++depth) {
        const Key leftKey = keyOf(left, depth);
        const Key rightKey = keyOf(right, depth);
        if (leftKey.bytes != rightKey.bytes)
            return leftKey.bytes < rightKey.bytes;
        if (!leftKey.hasMore && !rightKey.hasMore)
            return left < right;
    }
}

StepwiseSort::Key StepwiseSort::keyAt(std::uint32_t item, std::uint32_t depth) const
{
    return depth == lastDepth ? Key{item, false} : m_keyOf(item, depth);
}

/// Reads the keys of the first range at its depth. False where the time is over before that is done.
bool StepwiseSort::load(const QDeadlineTimer& deadline)
{
    Range& range = m_ranges.back();
    while (range.loaded < range.end) {
        const std::size_t end = std::min(range.end, range.loaded + stride);
        for (; range.loaded < end; ++range.loaded) {
            Item& item = m_items[range.loaded];
            const Key key = keyAt(item.item, range.depth);
            item.bytes = key.bytes;
            item.hasMore = key.hasMore;
        }
        if (range.loaded < range.end && deadline.hasExpired())
            return false;
    }
    return true;
}

void StepwiseSort::sortSmall()
{
    const Range range = m_ranges.back();
    m_ranges.pop_back();
    const auto begin = m_items.begin() + static_cast<std::ptrdiff_t>(range.begin);
    const auto end = m_items.begin() + static_cast<std::ptrdiff_t>(range.end);
    std::sort(begin, end, [](const Item& left, const Item& right) {
        return std::tie(left.bytes, left.item) < std::tie(right.bytes, right.item);
    });
    // From behind, so that the front comes to the end of the list.
    std::size_t last = range.end;
    while (last > range.begin) {
        std::size_t first = last - 1;
        bool hasMore = m_items[first].hasMore;
        while (first > range.begin && m_items[first - 1].bytes == m_items[last - 1].bytes)
            hasMore = m_items[--first].hasMore || hasMore;
        if (hasMore && last - first > 1)
            splitEqual({first, last, range.depth, first});
        last = first;
    }
}

/// In items below, equal to and above a middle one. Takes some nanoseconds an item.
void StepwiseSort::partition()
{
    const Range range = m_ranges.back();
    m_ranges.pop_back();
    const auto at = [this](std::size_t place) {
        return m_items[place].bytes;
    };
    const std::size_t size = range.end - range.begin;
    std::array<std::uint64_t, 5> samples{};
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = at(range.begin + size / samples.size() * i + size / (2 * samples.size()));
    std::sort(samples.begin(), samples.end());
    const std::uint64_t middle = samples[samples.size() / 2];

    std::size_t below = range.begin;
    std::size_t above = range.end;
    bool hasMore = false;
    for (std::size_t place = range.begin; place < above;) {
        if (at(place) < middle) {
            std::swap(m_items[place++], m_items[below++]);
        } else if (at(place) > middle) {
            std::swap(m_items[place], m_items[--above]);
        } else {
            hasMore = m_items[place++].hasMore || hasMore;
        }
    }
    if (above < range.end)
        m_ranges.push_back({above, range.end, range.depth, range.end});
    if (hasMore)
        splitEqual({below, above, range.depth, below});
    else
        m_ranges.push_back({below, above, lastDepth, below});
    if (range.begin < below)
        m_ranges.push_back({range.begin, below, range.depth, below});
}

/// Items whose keys are equal so far, and some of which go on.
void StepwiseSort::splitEqual(const Range& range)
{
    const std::uint64_t identity = m_identityOf(m_items[range.begin].item);
    bool isAlike = true;
    for (std::size_t place = range.begin + 1; isAlike && place < range.end; ++place)
        isAlike = m_identityOf(m_items[place].item) == identity;
    m_ranges.push_back({range.begin, range.end, isAlike ? lastDepth : range.depth + 1, range.begin});
}
