#include "Verdict.h"

#include <algorithm>
#include <array>

namespace checks {

using launcher::FailOn;
using sessions::Severity;

namespace {

constexpr std::array severities{Severity::Error, Severity::Warning, Severity::Message};

/// Those of some kinds that were in no run.
std::vector<sessions::Signature> absent(
    std::vector<sessions::Signature> kinds, const std::vector<RunResult>& runs)
{
    std::erase_if(kinds, [&](const sessions::Signature& kind) {
        return std::any_of(runs.begin(), runs.end(),
            [&](const RunResult& run) { return run.findings.find(kind) != nullptr; });
    });
    return kinds;
}

} // namespace

bool Verdict::counts(Severity severity) const
{
    return m_failOn != FailOn::Never && static_cast<int>(severity) <= static_cast<int>(m_failOn);
}

bool Verdict::hasFailing(const RunResult& run) const
{
    const auto& findings = run.findings.all();
    return std::any_of(
               findings.begin(), findings.end(), [this](const auto& finding) { return fails(finding); })
        || std::any_of(severities.begin(), severities.end(),
            [&](Severity severity) { return counts(severity) && run.findings.others(severity) > 0; });
}

int Verdict::status(const RunResult& run) const
{
    if (run.end == RunResult::End::Unwatchable)
        return exit_code::nothingWatched;
    if (const int status = run.programStatus(); status != 0)
        return status;
    if (run.end == RunResult::End::TimeOver)
        return exit_code::timeOver;
    if (hasFailing(run))
        return exit_code::found;
    return run.isWatched ? 0 : exit_code::nothingWatched;
}

int Verdict::status(const std::vector<RunResult>& runs) const
{
    // The program's own status says most, and what was found more than that nothing could be.
    constexpr std::array ownInOrder{exit_code::timeOver, exit_code::found, exit_code::nothingWatched};
    for (const RunResult& run : runs) {
        if (run.programStatus() != 0)
            return run.programStatus();
    }
    for (const int code : ownInOrder) {
        if (std::any_of(runs.begin(), runs.end(), [&](const auto& run) { return status(run) == code; }))
            return code;
    }
    return 0;
}

std::vector<sessions::Signature> Verdict::gone(const std::vector<RunResult>& runs) const
{
    return absent(m_known.all(), runs);
}

sessions::KnownKinds Verdict::newBaseline(const std::vector<RunResult>& runs, sessions::KnownKinds old) const
{
    // A run that did not come to its end, or was not seen, may have had them yet.
    const bool areWhole = std::all_of(runs.begin(), runs.end(), [this](const RunResult& run) {
        const int code = status(run);
        return run.isWatched && (code == 0 || code == exit_code::found);
    });
    if (areWhole) {
        for (const sessions::Signature& kind : absent(old.all(), runs))
            old.remove(kind);
    }
    for (const RunResult& run : runs) {
        for (const sessions::Finding& finding : run.findings.all()) {
            if (m_failOn == FailOn::Never || counts(finding.signature.severity))
                old.add(finding.signature);
        }
    }
    return old;
}

} // namespace checks
