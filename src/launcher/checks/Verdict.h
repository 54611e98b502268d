#pragma once

#include "CheckOptions.h"
#include "KnownKinds.h"
#include "RunResult.h"

#include <cstdint>
#include <vector>

namespace checks {

/// Exit codes of checks.
namespace exit_code {
inline constexpr int found = 3;
inline constexpr int nothingWatched = 4;
inline constexpr int timeOver = 124;
} // namespace exit_code

/// Decides what lets a check fail.
class Verdict {
public:
    Verdict(launcher::FailOn failOn, sessions::KnownKinds known)
        : m_failOn(failOn)
        , m_known(std::move(known))
    {
    }

    bool counts(sessions::Severity severity) const;
    bool isKnown(const sessions::Finding& finding) const { return m_known.contains(finding.signature); }
    bool fails(const sessions::Finding& finding) const
    {
        return counts(finding.signature.severity) && !isKnown(finding);
    }
    /// Whether anything in a run does, also what was only counted.
    bool hasFailing(const RunResult& run) const;

    /// The exit code of a run, and of several: the worst of theirs.
    int status(const RunResult& run) const;
    int status(const std::vector<RunResult>& runs) const;

    /// Kinds that are known and were in no run.
    std::vector<sessions::Signature> gone(const std::vector<RunResult>& runs) const;
    /// The baseline that would let these runs pass. Of the old one it keeps what was in any of them; all of
    /// it unless every run was seen and came to a good end.
    sessions::KnownKinds newBaseline(const std::vector<RunResult>& runs, sessions::KnownKinds old) const;

private:
    launcher::FailOn m_failOn;
    sessions::KnownKinds m_known;
};

} // namespace checks
