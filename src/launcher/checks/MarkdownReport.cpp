#include "Reports.h"
#include "Wording.h"

namespace checks {

using sessions::Severity;

namespace {

/// A job summary has room for a megabyte.
constexpr std::size_t sizeLimit = 900'000;

/// As plain text in a cell of a table.
std::string cell(std::string_view text)
{
    std::string result;
    for (const char c : oneLine(text)) {
        if (c == '<')
            result += "&lt;";
        else if (c == '&')
            result += "&amp;";
        else if (std::string_view("\\`*_{}[]|#>~$@!").find(c) != std::string_view::npos)
            result.append("\\").push_back(c);
        else
            result += c;
    }
    return result;
}

} // namespace

std::string markdownReport(const Check& check)
{
    std::string report = "### Check of " + cell(check.name()) + "\n\n"
        + "| Device | Result | Errors | Warnings | Messages | Frames | Time |\n"
        + "| --- | --- | --: | --: | --: | --: | --: |\n";
    for (const RunResult& run : check.runs) {
        report += "| " + cell(run.deviceName()) + " | " + resultOf(run, check.verdict) + " |";
        for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Message})
            report += " " + grouped(run.findings.count(severity)) + " |";
        report += " " + grouped(run.frames) + " | " + seconds(run.time) + " |\n";
    }
    for (const RunResult& run : check.runs) {
        if (const std::string bad = badEnd(run); !bad.empty())
            report += "\n" + cell(run.deviceName()) + ": " + cell(bad) + "\n";
    }
    const std::vector<SharedFinding> shared = sharedFindings(check.runs, check.verdict);
    if (!shared.empty())
        report += "\n| Severity | Count | Finding | Frames | Text | Devices |\n| --- | --: | --- | --- | --- "
                  "| --: |\n";
    std::size_t left = shared.size();
    for (const SharedFinding& entry : shared) {
        const sessions::Finding& finding = entry.finding;
        const std::string line = "| " + std::string(sessions::severityName(finding.signature.severity))
            + (check.verdict.isKnown(finding) ? " (known)" : "") + " | " + grouped(finding.count) + " | "
            + cell(title(finding.signature)) + " | " + frames(finding) + " | " + cell(finding.example) + " | "
            + std::to_string(entry.devices.size()) + " |\n";
        if (report.size() + line.size() > sizeLimit)
            break;
        report += line;
        --left;
    }
    if (left > 0)
        report += "\n" + counted(left, "kind") + " more did not fit.\n";
    const std::vector<sessions::Signature> gone = check.verdict.gone(check.runs);
    if (!gone.empty())
        report += "\n" + counted(gone.size(), "known kind") + " not found any more.\n";
    return report;
}

} // namespace checks
