#pragma once

/// Looks a row up in an index, a map to pointers into the table, and copies it. False, with the row left as
/// it is, where the table has none.
template <typename Index, typename Row>
bool copyRow(const Index& index, const typename Index::key_type& sought, Row* row)
{
    const auto found = index.find(sought);
    if (found == index.end())
        return false;
    *row = *found->second;
    return true;
}
