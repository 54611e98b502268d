#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

class QDeadlineTimer;

/// Sorts numbered items in steps, by keys of any length, of which eight bytes are looked at at a time. Equal
/// items keep the order of their numbers. The smallest items are in their place first.
class StepwiseSort {
public:
    struct Key {
        std::uint64_t bytes = 0;
        /// Whether the key goes on at the next depth.
        bool hasMore = false;
    };
    /// The bytes of an item's key at a depth: 0 for the first eight bytes, 1 for the next eight, and so on.
    using KeyOf = std::function<Key(std::uint32_t item, std::uint32_t depth)>;
    /// Items of the same identity have equal keys. Others may have so too.
    using IdentityOf = std::function<std::uint64_t(std::uint32_t item)>;

    StepwiseSort(const std::vector<std::uint32_t>& items, KeyOf keyOf, IdentityOf identityOf);

    /// Works until the time is over; each step of it takes some milliseconds at most.
    void work(const QDeadlineTimer& deadline);
    bool isDone() const { return m_ranges.empty(); }
    /// So many items from the front are in their place.
    std::size_t sortedCount() const { return m_ranges.empty() ? m_items.size() : m_ranges.back().begin; }
    std::uint32_t item(std::size_t place) const { return m_items[place].item; }

    /// Whether an item comes before another in the order of such keys.
    static bool isBefore(
        std::uint32_t left, std::uint32_t right, const KeyOf& keyOf, const IdentityOf& identityOf);

private:
    struct Item {
        std::uint64_t bytes;
        std::uint32_t item;
        bool hasMore;
    };
    /// Items whose keys are equal up to a depth.
    struct Range {
        std::size_t begin;
        std::size_t end;
        std::uint32_t depth;
        std::size_t loaded; ///< Up to here the items have their bytes of this depth.
    };

    Key keyAt(std::uint32_t item, std::uint32_t depth) const;
    bool load(const QDeadlineTimer& deadline);
    void partition();
    void sortSmall();
    void splitEqual(const Range& range);

    std::vector<Item> m_items;
    KeyOf m_keyOf;
    IdentityOf m_identityOf;
    /// What is left to be sorted, the front at the end.
    std::vector<Range> m_ranges;
};
