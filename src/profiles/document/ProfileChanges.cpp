#include "ProfileChanges.h"

#include "ProfileData.h"

#include <algorithm>
#include <set>

namespace {

/// The elements of one name that only one of the two lists has.
struct Difference {
    std::vector<ProfileNode> onlyBefore;
    std::vector<ProfileNode> onlyAfter;
};

std::size_t countNodes(std::vector<ProfileNode> before, const std::vector<ProfileNode>& after)
{
    std::map<std::string, Difference> differences;
    for (const ProfileNode& node : after) {
        const auto same = std::find(before.begin(), before.end(), node);
        if (same == before.end())
            differences[node.name].onlyAfter.push_back(node);
        else
            before.erase(same);
    }
    for (const ProfileNode& node : before)
        differences[node.name].onlyBefore.push_back(node);
    std::size_t changes = 0;
    for (const auto& [name, difference] : differences) {
        const auto& [old, changed] = difference;
        changes += std::max(old.size(), changed.size());
        // Each part that was changed counts.
        for (std::size_t i = 0; i < std::min(old.size(), changed.size()); ++i) {
            if (!old[i].children.empty() && !changed[i].children.empty())
                changes += std::max<std::size_t>(countNodes(old[i].children, changed[i].children), 1) - 1;
        }
    }
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
