#include "Checks.h"

#include "CheckRun.h"
#include "FileReplacement.h"
#include "HeadlessDisplay.h"
#include "Matrix.h"
#include "Reports.h"
#include "Summary.h"
#include "Wording.h"

#include <cstdio>
#include <utility>

namespace checks {

namespace {

int refuse(const std::string& text)
{
    std::fprintf(stderr, "corvale-run: %s.\n", text.c_str());
    return launcher::exit_code::wrongArguments;
}

/// The files that a check reads first and writes at last.
struct Baselines {
    sessions::KnownKinds known;
    sessions::KnownKinds old; ///< What is to be written anew.
};

/// Whoever waits for a long run should not learn at its end that a file cannot be written. Empty if all can.
std::string whyUnwritable(const launcher::CheckOptions& options)
{
    std::vector<std::string> paths;
    for (const launcher::ReportRequest& request : options.reports)
        paths.push_back(request.path);
    paths.push_back(options.newBaseline);
    for (const std::string& path : paths) {
        if (path.empty() || path == "-")
            continue;
        const platform::FileReplacement trial(path);
        if (!trial.ready())
            return fileFault("Cannot write", path, trial.reason());
    }
    return {};
}

std::string readBaselines(const launcher::CheckOptions& options, Baselines& baselines)
{
    if (!options.baseline.empty() && !baselines.known.read(options.baseline))
        return fileFault("Cannot read the baseline", options.baseline, baselines.known.reason());
    if (!options.newBaseline.empty() && !baselines.old.read(options.newBaseline, true))
        return fileFault("Cannot replace", options.newBaseline, baselines.old.reason());
    return {};
}

std::vector<RunResult> runAll(const launcher::Options& options, const std::vector<std::string>& profiles)
{
    if (profiles.size() > 1)
        return runMatrix(options, profiles);
    launcher::Options own = options;
    if (!profiles.empty())
        own.profile = profiles.front();
    std::vector<RunResult> runs;
    runs.push_back(runOnce(own));
    return runs;
}

/// Writes what is to be written; false if something could not be.
bool finish(const launcher::Options& options, const Baselines& baselines, Check& check)
{
    bool isWritten = true;
    if (!options.check.newBaseline.empty()) {
        sessions::KnownKinds baseline = check.verdict.newBaseline(check.runs, baselines.old);
        isWritten = baseline.write(options.check.newBaseline);
        if (!isWritten)
            refuse(fileFault("Cannot write the baseline", options.check.newBaseline, baseline.reason()));
        check.verdict = Verdict(options.check.failOn, std::move(baseline));
    }
    isWritten = writeReports(check, options.check.reports) && isWritten;
    if (!options.quiet)
        std::fputs(summary(check, Screen::ofErrors()).c_str(), stderr);
    return isWritten;
}

} // namespace

int runCheck(const launcher::Options& options)
{
    Baselines baselines;
    for (const std::string& why : {whyUnwritable(options.check), readBaselines(options.check, baselines)}) {
        if (!why.empty())
            return refuse(why);
    }
    const auto profiles = chosenProfiles(options.check);
    if (!profiles)
        return launcher::exit_code::wrongArguments;
    HeadlessDisplay display;
    if (options.check.headless) {
        if (!display.start(*options.check.headless))
            return refuse("There is no display for the program: " + display.reason());
        if (!options.quiet)
            std::fprintf(stderr, "corvale-run: The display is %s.\n", display.description().c_str());
    }
    Check check{options.program, runAll(options, *profiles), Verdict(options.check.failOn, baselines.known)};
    const bool isWritten = finish(options, baselines, check);
    const int status = check.verdict.status(check.runs);
    return status == 0 && !isWritten ? launcher::exit_code::wrongArguments : status;
}

} // namespace checks
