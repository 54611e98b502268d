#include "Comparer.h"

#include "GuardedFile.h"
#include "JsonReport.h"
#include "Options.h"
#include "SessionComparison.h"
#include "SessionReader.h"
#include "Wording.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <vector>

namespace checks {

namespace {

using sessions::Change;
using sessions::FactPair;
using sessions::FindingChange;
using sessions::SessionComparison;
using sessions::SessionReader;
using sessions::SessionRecord;

constexpr std::size_t reportLimit = std::size_t{512} << 20U; // bytes

int refuse(const std::string& path, const std::string& reason)
{
    std::fprintf(stderr, "corvale-run: %s.\n", fileFault("Cannot read", path, reason).c_str());
    return launcher::exit_code::wrongArguments;
}

/// The processes of a session on one device are taken together.
std::vector<RunResult> runsOf(const std::string& path, SessionReader& reader)
{
    std::vector<RunResult> runs;
    std::vector<std::size_t> runOfClient;
    for (const sessions::SessionClient& client : reader.clients()) {
        const auto run = std::find_if(
            runs.begin(), runs.end(), [&](const RunResult& known) { return known.device == client.device; });
        runOfClient.push_back(static_cast<std::size_t>(run - runs.begin()));
        if (run == runs.end())
            runs.emplace_back().device = client.device;
    }
    for (std::size_t block = 0; block < reader.blockCount(); ++block) {
        reader.read(
            block, [&](const SessionRecord& record) { runs[runOfClient[record.client]].add(record.record); });
    }
    if (!reader.damage().empty())
        std::fprintf(stderr, "corvale-run: %s: %s\n", path.c_str(), reader.damage().c_str());
    return runs;
}

std::optional<std::vector<RunResult>> readRuns(const std::string& path, std::string& reason)
{
    SessionReader session;
    if (session.open(path))
        return runsOf(path, session);
    const platform::FileBytes file = platform::readFile(path, reportLimit);
    reason = file.reason;
    if (!file.ok)
        return std::nullopt;
    if (file.bytes.starts_with(sessions::format::magic)) {
        reason = session.reason();
        return std::nullopt;
    }
    auto runs = readJsonReport(file.bytes, reason);
    if (!runs)
        reason = "it is neither a session nor a JSON report: " + reason;
    return runs;
}

void print(const FindingChange& change)
{
    const bool isChanged = change.change == Change::Changed;
    std::string line(changeName(change.change));
    line.resize(std::max(line.size(), changeName(Change::Changed).size()), ' ');
    line += "  " + (isChanged ? grouped(change.before) + " -> " : "");
    line += grouped(change.change == Change::Gone ? change.before : change.after) + " x  ";
    line += title(change.finding.signature);
    if (const std::string where = frames(change.finding); !where.empty())
        line += ", " + where;
    std::printf("  %s\n             %s\n", line.c_str(), oneLine(change.finding.example).c_str());
}

void print(const std::vector<FactPair>& facts)
{
    for (const FactPair& fact : facts) {
        if (fact.change)
            std::printf("  %s: %s\n", oneLine(fact.what).c_str(), oneLine(changeText(fact)).c_str());
    }
}

/// There may be a hundred, of which many have changed in one way.
void printExtensions(const std::vector<FactPair>& extensions)
{
    std::map<std::string, std::string> changed;
    for (const FactPair& extension : extensions) {
        const auto shown = [](const std::string& support) {
            return support.empty() ? std::string("absent") : support;
        };
        if (extension.change)
            changed[shown(extension.before) + " -> " + shown(extension.after)] += " " + extension.what;
    }
    for (const auto& [how, names] : changed)
        std::printf("  Extensions, %s:%s\n", how.c_str(), oneLine(names).c_str());
}

bool printDifferences(const RunResult& before, const RunResult& after)
{
    const SessionComparison comparison(before, after);
    if (comparison.isEqual())
        return false;
    std::printf("%s", oneLine(before.deviceName()).c_str());
    if (comparison.device().change)
        std::printf(" -> %s", oneLine(after.deviceName()).c_str());
    std::printf(":\n");
    for (const FindingChange& finding : comparison.findings())
        print(finding);
    print(comparison.contexts());
    printExtensions(comparison.extensions());
    print(comparison.values());
    return true;
}

/// Runs that belong together have one device, unless there is only one on each side.
bool compareRuns(const std::vector<RunResult>& before, const std::vector<RunResult>& after)
{
    if (before.size() == 1 && after.size() == 1)
        return printDifferences(before.front(), after.front());
    const auto find = [](const std::vector<RunResult>& runs, const std::string& device) {
        return std::find_if(
            runs.begin(), runs.end(), [&](const RunResult& run) { return run.device == device; });
    };
    bool differs = false;
    for (const RunResult& run : before) {
        const auto other = find(after, run.device);
        if (other != after.end()) {
            differs = printDifferences(run, *other) || differs;
            continue;
        }
        std::printf("%s: only in the first\n", oneLine(run.deviceName()).c_str());
        differs = true;
    }
    for (const RunResult& run : after) {
        if (find(before, run.device) != before.end())
            continue;
        std::printf("%s: only in the second\n", oneLine(run.deviceName()).c_str());
        differs = true;
    }
    return differs;
}

} // namespace

int compareFiles(const std::string& before, const std::string& after)
{
    std::string reason;
    const auto first = readRuns(before, reason);
    if (!first)
        return refuse(before, reason);
    const auto second = readRuns(after, reason);
    if (!second)
        return refuse(after, reason);
    if (compareRuns(*first, *second))
        return exit_code::found;
    std::printf("Nothing differs.\n");
    return 0;
}

} // namespace checks
