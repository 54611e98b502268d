#include "ErrorListGroups.h"

#include <algorithm>

void ErrorListGroups::clear()
{
    m_groups.clear();
    m_kinds.clear();
    m_members.clear();
}

bool ErrorListGroups::add(Row row, Kind kind, std::int32_t frame)
{
    m_members.push_back({row, kind});
    if (kind >= m_groups.size())
        m_groups.resize(kind + std::size_t(1));
    Group& group = m_groups[kind];
    const bool isFirst = group.count++ == 0;
    if (isFirst) {
        group.firstRow = row;
        m_kinds.push_back(kind);
    }
    if (frame >= 0) {
        group.firstFrame = group.firstFrame < 0 ? frame : std::min(group.firstFrame, frame);
        group.lastFrame = std::max(group.lastFrame, frame);
    }
    return isFirst;
}

void ErrorListGroups::toggle(Kind kind)
{
    if (m_open.erase(kind) == 0)
        m_open.insert(kind);
}

std::unordered_map<ErrorListGroups::Kind, std::vector<ErrorListGroups::Row>> ErrorListGroups::openRows() const
{
    std::unordered_map<Kind, std::vector<Row>> rows;
    if (m_open.empty())
        return rows;
    std::vector<std::vector<Row>*> wanted(m_groups.size());
    for (const Kind kind : m_open) {
        if (contains(kind))
            wanted[kind] = &rows[kind];
    }
    for (const Member& member : m_members) {
        if (wanted[member.kind])
            wanted[member.kind]->push_back(member.row);
    }
    return rows;
}
