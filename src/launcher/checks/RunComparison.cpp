#include "RunComparison.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>

namespace checks {

namespace {

std::set<std::string> wordsOf(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

void compareFacts(const RunFacts& before, const RunFacts& after, std::vector<FactChange>& changes)
{
    for (const auto& [name, value] : before.all()) {
        const auto now = after.all().find(name);
        if (now == after.all().end())
            changes.push_back({name, value, {}});
        else if (now->second != value)
            changes.push_back({name, value, now->second});
    }
    for (const auto& [name, value] : after.all()) {
        if (before.all().find(name) == before.all().end())
            changes.push_back({name, {}, value});
    }
    std::stable_sort(changes.begin(), changes.end(),
        [](const FactChange& a, const FactChange& b) { return a.name < b.name; });
}

} // namespace

RunComparison compare(const sessions::Findings& before, const RunFacts& factsBefore,
    const sessions::Findings& after, const RunFacts& factsAfter)
{
    RunComparison result;
    for (const sessions::Finding* finding : after.worstFirst()) {
        const sessions::Finding* old = before.find(finding->signature);
        if (!old)
            result.added.push_back(finding);
        else if (old->count != finding->count)
            result.changed.emplace_back(old, finding);
    }
    for (const sessions::Finding* finding : before.worstFirst()) {
        if (!after.find(finding->signature))
            result.gone.push_back(finding);
    }
    compareFacts(factsBefore, factsAfter, result.facts);
    return result;
}

std::string wordChanges(const std::string& before, const std::string& after)
{
    const std::set<std::string> old = wordsOf(before);
    const std::set<std::string> now = wordsOf(after);
    constexpr std::size_t fewest = 3; // words of a list
    if (old.size() + now.size() < fewest)
        return {};
    std::string text;
    for (const std::string& word : old)
        text += now.contains(word) ? "" : " -" + word;
    for (const std::string& word : now)
        text += old.contains(word) ? "" : " +" + word;
    return text;
}

} // namespace checks
