#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// Where a search has found something: entries by their serial numbers, in order, and how many matches each
/// has. Takes eight bytes an entry.
class FoundEntries {
public:
    /// Entries that are kept in all, of both ends of a console.
    static constexpr std::size_t mostEntries = 4'000'000;

    struct Place {
        std::uint64_t serial = 0;
        std::size_t number = 0; ///< Of a match in the entry, from 0 on.
    };

    void clear();
    /// Adds an entry behind all others.
    void add(std::uint64_t serial, std::size_t matches);

    std::size_t size() const { return m_entries.size(); }
    /// Number of all matches.
    std::uint64_t total() const { return m_total; }

    std::optional<Place> first() const;
    std::optional<Place> last() const;
    /// The match behind a place, which need not be one, or before it.
    std::optional<Place> next(const Place& place) const;
    std::optional<Place> previous(const Place& place) const;
    /// Number of matches before a place.
    std::uint64_t countBefore(const Place& place) const;
    bool contains(std::uint64_t serial) const;
    /// True when another entry could not be counted.
    bool isFull() const;

private:
    struct Entry {
        std::uint32_t serial; ///< Counted from m_base.
        std::uint32_t before; ///< Number of matches in the entries before it.
    };
    using Iterator = std::vector<Entry>::const_iterator;

    Iterator notBefore(std::uint64_t serial) const;
    std::uint64_t serialOf(Iterator entry) const { return m_base + entry->serial; }
    std::size_t matchesOf(Iterator entry) const;

    std::vector<Entry> m_entries;
    std::uint64_t m_base = 0;
    std::uint64_t m_total = 0;
};
