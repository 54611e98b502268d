#include "Verdict.h"

#include <algorithm>
#include <array>

namespace checks {

using launcher::FailOn;
using sessions::Severity;

namespace {

constexpr std::array severities{Severity::Error, Severity::Warning, Severity::Message};

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
    std::vector<sessions::Signature> gone = m_known.all();
    std::erase_if(gone, [&](const sessions::Signature& kind) {
        return std::any_of(runs.begin(), runs.end(),
            [&](const RunResult& run) { return run.findings.find(kind) != nullptr; });
    });
    return gone;
}

sessions::KnownKinds Verdict::newBaseline(const std::vector<RunResult>& runs, sessions::KnownKinds old) const
{
    sessions::KnownKinds found;
    for (const RunResult& run : runs) {
        for (const sessions::Finding& finding : run.findings.all()) {
            if (m_failOn == FailOn::Never || counts(finding.signature.severity))
                found.add(finding.signature);
        }
    }
    for (const sessions::Signature& kind : old.all()) {
        if (!found.contains(kind))
            old.remove(kind);
    }
    for (const sessions::Signature& kind : found.all())
        old.add(kind);
    return old;
}

} // namespace checks
