#pragma once

#include "Findings.h"
#include "RunFacts.h"

#include <string>
#include <utility>
#include <vector>

namespace checks {

/// A name with what it was and is; empty for what is only on the other side.
struct FactChange {
    std::string name;
    std::string before;
    std::string after;
};

/// What differs between two runs. sessions::Findings are those of the runs, which outlive this.
struct RunComparison {
    std::vector<const sessions::Finding*> added; ///< The worst first, as all lists.
    std::vector<const sessions::Finding*> gone;
    std::vector<std::pair<const sessions::Finding*, const sessions::Finding*>>
        changed; ///< In their counts: before, after.
    std::vector<FactChange> facts; ///< By name.

    bool isEqual() const { return added.empty() && gone.empty() && changed.empty() && facts.empty(); }
};

RunComparison compare(const sessions::Findings& before, const RunFacts& factsBefore,
    const sessions::Findings& after, const RunFacts& factsAfter);

/// Of two lists of words with blanks between, such as extensions: " -gone +new", or nothing where the texts
/// are no lists.
std::string wordChanges(const std::string& before, const std::string& after);

} // namespace checks
