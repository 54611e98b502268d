#pragma once

#include "CheckOptions.h"
#include "RunResult.h"
#include "Verdict.h"

#include <string>
#include <vector>

namespace checks {

/// A check that is over.
struct Check {
    std::vector<std::string> program;
    std::vector<RunResult> runs; ///< In the order of the devices.
    Verdict verdict;

    /// What people call the program: the name of what was watched, such as "game" for `env LANG=C ./game`.
    /// Where that is not one, it is what was to be run.
    std::string name() const;
    /// Its file as far as that was named, else the first file of what was to be run.
    std::string file() const;
};

// One function a kind, each in a file of its own. The texts are UTF-8, whatever the program wrote.
std::string textReport(const Check& check);
/// A line for the check, one for each run, finding and fact; docs/check-report.schema.json describes them.
std::string jsonReport(const Check& check);
std::string junitReport(const Check& check);
std::string sarifReport(const Check& check);
std::string githubReport(const Check& check);
std::string markdownReport(const Check& check);

/// Writes the reports that are wanted. False if one cannot be written; the user has been told.
bool writeReports(const Check& check, const std::vector<launcher::ReportRequest>& requests);

} // namespace checks
