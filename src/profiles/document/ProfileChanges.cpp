#include "ProfileChanges.h"

#include "ProfileData.h"

#include <algorithm>
#include <set>

namespace {

/// The elements of one name that only one of the two lists has.
struct Difference {
    std::size_t onlyBefore = 0;
    std::size_t onlyAfter = 0;
};

std::size_t countNodes(std::vector<ProfileNode> before, const std::vector<ProfileNode>& after)
{
    std::map<std::string, Difference> differences;
    for (const ProfileNode& node : after) {
        const auto same = std::find(before.begin(), before.end(), node);
        if (same == before.end())
            ++differences[node.name].onlyAfter;
        else
            before.erase(same);
    }
    for (const ProfileNode& node : before)
        ++differences[node.name].onlyBefore;
    std::size_t changes = 0;
    for (const auto& [name, difference] : differences)
        changes += std::max(difference.onlyBefore, difference.onlyAfter);
    return changes;
}

std::vector<ProfileNode> nodesOf(const std::vector<std::string>& names)
{
    std::vector<ProfileNode> nodes;
    nodes.reserve(names.size());
    for (const std::string& name : names)
        nodes.push_back({"extension", name, {}});
    return nodes;
}

const std::vector<ProfileNode>& nodesOf(const std::vector<ProfileNode>& nodes)
{
    return nodes;
}

/// A section that only one of them has counts as one, together with what is in it.
template <typename Sections> std::size_t countSections(const Sections& before, const Sections& after)
{
    std::size_t changes = 0;
    for (const auto& [number, section] : before) {
        const auto found = after.find(number);
        changes += found == after.end() ? 1 : countNodes(nodesOf(section), nodesOf(found->second));
    }
    for (const auto& [number, section] : after)
        changes += before.contains(number) ? 0 : 1;
    return changes;
}

} // namespace

std::size_t countChanges(const ProfileData& before, const ProfileData& after)
{
    std::size_t changes = countSections(before.capabilities(), after.capabilities())
        + countSections(before.extensions(), after.extensions())
        + countSections(before.configs(), after.configs());
    for (const auto text : {&ProfileData::device, &ProfileData::renderer, &ProfileData::vendor})
        changes += (before.*text)() == (after.*text)() ? 0 : 1;
    return changes;
}
