#pragma once

#include "ErrorKinds.h"

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// The rows of a folded error list, by their kinds.
class ErrorListGroups {
public:
    using Kind = ErrorKinds::Kind;
    using Row = std::uint32_t;

    struct Group {
        Row firstRow = 0;
        std::uint32_t count = 0;
        std::int32_t firstFrame = -1; ///< Negative where no row has a frame.
        std::int32_t lastFrame = -1;
    };

    /// Removes all rows. Which groups are open is kept.
    void clear();
    /// Adds a row behind all others. True where it is the first of its kind.
    bool add(Row row, Kind kind, std::int32_t frame);
    /// A group that has rows.
    const Group& group(Kind kind) const { return m_groups[kind]; }
    bool contains(Kind kind) const { return kind < m_groups.size() && m_groups[kind].count > 0; }
    /// Those that have rows, in the order of their first rows.
    const std::vector<Kind>& kinds() const { return m_kinds; }

    void toggle(Kind kind);
    bool isOpen(Kind kind) const { return m_open.contains(kind); }
    bool hasOpen() const { return !m_open.empty(); }
    void closeAll() { m_open.clear(); }
    /// The rows of each open group, in their order.
    std::unordered_map<Kind, std::vector<Row>> openRows() const;

private:
    struct Member {
        Row row;
        Kind kind;
    };

    std::vector<Group> m_groups; ///< By kind.
    std::vector<Kind> m_kinds;
    std::vector<Member> m_members;
    std::unordered_set<Kind> m_open;
};
