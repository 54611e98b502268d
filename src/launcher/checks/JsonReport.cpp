#include "JsonReport.h"

#include "Wording.h"

#include <array>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace checks {

using nlohmann::json;
using nlohmann::ordered_json;
using sessions::Finding;
using sessions::Origin;
using sessions::Severity;

namespace {

using End = RunResult::End;

constexpr std::array<std::pair<End, const char*>, 6> endNames{
    {{End::NotRun, "not run"}, {End::Unwatchable, "not watchable"}, {End::Exited, "exited"},
        {End::Killed, "killed"}, {End::TimeOver, "time limit"}, {End::FramesDone, "frames done"}}};
constexpr std::array origins{Origin::GlError, Origin::Error, Origin::Warning, Origin::DebugMessage};
constexpr std::array severities{Severity::Error, Severity::Warning, Severity::Message};
constexpr int version = 1;
/// What is nested may take many times as much memory. Lines of ours are far below.
constexpr std::size_t lineLimit = std::size_t{4} << 20U; // bytes

std::string lineOf(const ordered_json& value)
{
    return value.dump(-1, ' ', false, json::error_handler_t::replace) + "\n";
}

ordered_json frameOf(std::uint32_t frame)
{
    return frame == ui::messages::noFrame ? ordered_json() : ordered_json(frame);
}

std::string head(const Check& check)
{
    return lineOf({{"type", "check"}, {"version", version}, {"program", check.program},
        {"runs", check.runs.size()}, {"status", check.verdict.status(check.runs)}});
}

std::string runLine(const Check& check, std::size_t number)
{
    const RunResult& run = check.runs[number];
    ordered_json counts;
    ordered_json others;
    for (const Severity severity : severities) {
        counts[std::string(sessions::severityName(severity))] = run.findings.count(severity);
        others[std::string(sessions::severityName(severity))] = run.findings.others(severity);
    }
    const char* end = endNames.at(static_cast<std::size_t>(run.end)).second;
    return lineOf({{"type", "run"}, {"run", number}, {"device", run.device}, {"program", run.program},
        {"result", resultOf(run, check.verdict)}, {"status", check.verdict.status(run)}, {"end", end},
        {"number", run.number}, {"failure", run.failure}, {"watched", run.isWatched},
        {"byForce", run.isHardEnd}, {"frames", run.frames}, {"milliseconds", run.time.count()},
        {"counts", counts}, {"notListed", others}});
}

std::string findingLine(const Check& check, std::size_t run, const Finding& finding)
{
    const sessions::Signature& signature = finding.signature;
    return lineOf(
        {{"type", "finding"}, {"run", run}, {"severity", sessions::severityName(signature.severity)},
            {"origin", sessions::originName(finding.origin)}, {"function", signature.function},
            {"code", signature.code}, {"text", signature.text}, {"example", finding.example},
            {"count", finding.count}, {"firstFrame", frameOf(finding.firstFrame)},
            {"lastFrame", frameOf(finding.lastFrame)}, {"known", check.verdict.isKnown(finding)},
            {"fails", check.verdict.fails(finding)}});
}

/// Reads one line after the other. A value that is missing or of another kind ends it by an exception of
/// json.
class Reader {
public:
    void take(const json& line)
    {
        const std::string type = line.at("type");
        if (type == "check") {
            if (line.at("version") != version)
                throw std::runtime_error("it is of a later version");
            m_hasHead = true;
        } else if (!m_hasHead) {
            throw std::runtime_error("it does not begin as a report of a check");
        } else if (type == "run") {
            takeRun(line);
        } else if (type == "finding") {
            runOf(line).findings.add(findingOf(line));
        } else if (type == "fact") {
            runOf(line).facts.add(line.at("name"), line.at("value").get<std::string>());
        }
    }
    bool hasHead() const { return m_hasHead; }
    std::vector<RunResult> takeRuns() { return std::move(m_runs); }

private:
    RunResult& runOf(const json& line)
    {
        const auto number = line.at("run").get<std::size_t>();
        if (number >= m_runs.size())
            throw std::runtime_error("there is no run " + std::to_string(number));
        return m_runs[number];
    }
    void takeRun(const json& line)
    {
        constexpr std::size_t mostRuns = 10'000;
        RunResult run;
        run.device = line.at("device");
        run.program = line.value("program", std::string());
        const std::string end = line.at("end");
        for (const auto& [value, name] : endNames) {
            if (end == name)
                run.end = value;
        }
        run.number = line.at("number");
        run.failure = line.at("failure");
        run.isWatched = line.at("watched");
        run.isHardEnd = line.at("byForce");
        run.frames = line.at("frames");
        run.time = std::chrono::milliseconds(line.at("milliseconds").get<std::int64_t>());
        for (const Severity severity : severities)
            run.findings.addOthers(severity,
                line.at("notListed").value(std::string(sessions::severityName(severity)), std::uint64_t{0}));
        if (m_runs.size() >= mostRuns)
            throw std::runtime_error("there are too many runs");
        m_runs.push_back(std::move(run));
    }
    static std::uint32_t frameOf(const json& value)
    {
        return value.is_null() ? ui::messages::noFrame : value.get<std::uint32_t>();
    }
    static Finding findingOf(const json& line)
    {
        Finding finding;
        const auto severity = sessions::severityOfName(line.at("severity").get<std::string>());
        if (!severity)
            throw std::runtime_error("there is no such severity");
        finding.signature = {*severity, line.at("function"), line.at("code"), line.at("text")};
        for (const Origin origin : origins) {
            if (line.at("origin") == sessions::originName(origin))
                finding.origin = origin;
        }
        finding.example = line.at("example");
        finding.count = line.at("count");
        finding.firstFrame = frameOf(line.at("firstFrame"));
        finding.lastFrame = frameOf(line.at("lastFrame"));
        return finding;
    }

    std::vector<RunResult> m_runs;
    bool m_hasHead = false;
};

} // namespace

std::string jsonReport(const Check& check)
{
    std::string report = head(check);
    for (std::size_t run = 0; run < check.runs.size(); ++run) {
        report += runLine(check, run);
        for (const Finding* finding : check.runs[run].findings.worstFirst())
            report += findingLine(check, run, *finding);
        for (const auto& [name, value] : check.runs[run].facts.all())
            report += lineOf({{"type", "fact"}, {"run", run}, {"name", name}, {"value", value}});
    }
    for (const sessions::Signature& kind : check.verdict.gone(check.runs))
        report += lineOf({{"type", "gone"}, {"severity", sessions::severityName(kind.severity)},
            {"function", kind.function}, {"code", kind.code}, {"text", kind.text}});
    return report;
}

std::optional<std::vector<RunResult>> readJsonReport(std::string_view text, std::string& reason)
{
    Reader reader;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        try {
            if (line.size() > lineLimit)
                throw std::runtime_error("it is too long");
            if (!line.empty())
                reader.take(json::parse(line));
        } catch (const json::exception&) {
            reason = "line " + std::to_string(number) + ": it is no line of such a report";
            return std::nullopt;
        } catch (const std::runtime_error& error) {
            reason = "line " + std::to_string(number) + ": " + oneLine(error.what());
            return std::nullopt;
        }
    }
    if (!reader.hasHead()) {
        reason = "it is empty";
        return std::nullopt;
    }
    return reader.takeRuns();
}

} // namespace checks
