#include "FoundEntries.h"

#include <algorithm>
#include <limits>

void FoundEntries::clear()
{
    *this = FoundEntries();
}

void FoundEntries::add(std::uint64_t serial, std::size_t matches)
{
    if (m_entries.empty())
        m_base = serial;
    m_entries.push_back({static_cast<std::uint32_t>(serial - m_base), static_cast<std::uint32_t>(m_total)});
    m_total += matches;
}

FoundEntries::Iterator FoundEntries::notBefore(std::uint64_t serial) const
{
    const std::uint64_t wanted = serial < m_base ? 0 : serial - m_base;
    return std::lower_bound(m_entries.begin(), m_entries.end(), wanted,
        [](const Entry& entry, std::uint64_t value) { return entry.serial < value; });
}

std::size_t FoundEntries::matchesOf(Iterator entry) const
{
    const std::uint64_t end = entry + 1 == m_entries.end() ? m_total : (entry + 1)->before;
    return static_cast<std::size_t>(end - entry->before);
}

std::optional<FoundEntries::Place> FoundEntries::first() const
{
    if (m_entries.empty())
        return {};
    return Place{serialOf(m_entries.begin()), 0};
}

std::optional<FoundEntries::Place> FoundEntries::last() const
{
    if (m_entries.empty())
        return {};
    const Iterator entry = m_entries.end() - 1;
    return Place{serialOf(entry), matchesOf(entry) - 1};
}

std::optional<FoundEntries::Place> FoundEntries::next(const Place& place) const
{
    Iterator entry = notBefore(place.serial);
    if (entry != m_entries.end() && serialOf(entry) == place.serial) {
        if (place.number + 1 < matchesOf(entry))
            return Place{place.serial, place.number + 1};
        ++entry;
    }
    if (entry == m_entries.end())
        return {};
    return Place{serialOf(entry), 0};
}

std::optional<FoundEntries::Place> FoundEntries::previous(const Place& place) const
{
    Iterator entry = notBefore(place.serial);
    if (entry != m_entries.end() && serialOf(entry) == place.serial && place.number > 0)
        return Place{place.serial, place.number - 1};
    if (entry == m_entries.begin())
        return {};
    --entry;
    return Place{serialOf(entry), matchesOf(entry) - 1};
}

std::uint64_t FoundEntries::countBefore(const Place& place) const
{
    const Iterator entry = notBefore(place.serial);
    if (entry == m_entries.end())
        return m_total;
    return entry->before + (serialOf(entry) == place.serial ? place.number : 0);
}

bool FoundEntries::contains(std::uint64_t serial) const
{
    const Iterator entry = notBefore(serial);
    return entry != m_entries.end() && serialOf(entry) == serial;
}

bool FoundEntries::isFull() const
{
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max() / 2;
    return m_total > most || (!m_entries.empty() && m_entries.back().serial > most);
}
