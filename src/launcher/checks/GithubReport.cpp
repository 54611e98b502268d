#include "Reports.h"
#include "Wording.h"

#include <map>

namespace checks {

using sessions::Severity;

namespace {

/// A workflow shows no more of a kind in one step.
constexpr int mostOfALevel = 10;

/// Values of properties also escape what ends them.
std::string escaped(const std::string& text, bool isProperty)
{
    std::string result;
    for (const char c : text) {
        if (c == '%')
            result += "%25";
        else if (c == '\n')
            result += "%0A";
        else if (isProperty && c == ':')
            result += "%3A";
        else if (isProperty && c == ',')
            result += "%2C";
        else
            result += c;
    }
    return result;
}

std::string annotation(const std::string& level, const std::string& title, const std::string& text)
{
    return "::" + level + " title=" + escaped(title, true) + "::" + escaped(text, false) + "\n";
}

std::string levelOf(const Check& check, const sessions::Finding& finding)
{
    if (!check.verdict.fails(finding))
        return "notice";
    return finding.signature.severity == Severity::Error ? "error" : "warning";
}

} // namespace

std::string githubReport(const Check& check)
{
    std::string report;
    std::map<std::string, int> counts;
    std::size_t left = 0;
    for (const RunResult& run : check.runs) {
        if (const std::string bad = badEnd(run); !bad.empty() && ++counts["error"] < mostOfALevel)
            report += annotation(
                "error", resultOf(run, check.verdict) + " on " + oneLine(run.deviceName()), cleanText(bad));
    }
    for (const SharedFinding& shared : sharedFindings(check.runs, check.verdict)) {
        const sessions::Finding& finding = shared.finding;
        const std::string level = levelOf(check, finding);
        // The last one of a level is for the rest.
        if (++counts[level] >= mostOfALevel) {
            ++left;
            continue;
        }
        std::string text = cleanText(finding.example) + "\n" + counted(finding.count, "time");
        if (const std::string where = frames(finding); !where.empty())
            text += ", " + where;
        if (check.runs.size() > 1)
            text += ", on " + counted(shared.devices.size(), "device");
        report += annotation(level, title(finding.signature), text);
    }
    if (left > 0)
        report += annotation(
            "notice", "More findings", counted(left, "kind") + " more are in the summary of the check.");
    return report;
}

} // namespace checks
