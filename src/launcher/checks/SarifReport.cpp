#include "Hash.h"
#include "Reports.h"
#include "Wording.h"

#include <map>
#include <nlohmann/json.hpp>

namespace checks {

using nlohmann::ordered_json;
using sessions::Severity;

namespace {

std::string levelOf(Severity severity)
{
    return severity == Severity::Error ? "error" : severity == Severity::Warning ? "warning" : "note";
}

/// A rule is a code, such as GL_INVALID_ENUM.
std::string ruleOf(const sessions::Signature& signature)
{
    return signature.code.empty() ? std::string(sessions::severityName(signature.severity))
                                  : oneLine(signature.code);
}

/// The same for the same kind, whatever built this program.
std::string fingerprint(const sessions::Signature& signature)
{
    const std::string kind = std::string(sessions::severityName(signature.severity)) + "\t"
        + signature.function + "\t" + signature.code + "\t" + signature.text;
    return std::to_string(platform::fnv1(kind));
}

/// Such as the characters of a path that a URI may have.
std::string uriOf(const std::string& path)
{
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string uri = path.starts_with('/') ? "file://" : "";
    for (const char c : path) {
        const auto code = static_cast<unsigned char>(c);
        if (plain.find(c) != std::string_view::npos)
            uri += c;
        else
            uri.append("%").append(1, digits[code >> 4U]).append(1, digits[code & 0xFU]);
    }
    return uri;
}

ordered_json resultOf(const Check& check, const SharedFinding& shared, std::size_t rule)
{
    const sessions::Finding& finding = shared.finding;
    const sessions::Signature& signature = finding.signature;
    std::string text = title(signature) + ": " + cleanText(finding.example);
    if (const std::string where = frames(finding); !where.empty())
        text += "\n" + where;
    ordered_json result{{"ruleId", ruleOf(signature)}, {"ruleIndex", rule},
        {"level", levelOf(signature.severity)}, {"message", {{"text", text}}},
        {"locations",
            ordered_json::array(
                {{{"physicalLocation", {{"artifactLocation", {{"uri", uriOf(check.file())}}}}},
                    {"logicalLocations",
                        ordered_json::array(
                            {{{"name", signature.function.empty() ? "?" : oneLine(signature.function)},
                                {"kind", "function"}}})}}})},
        {"occurrenceCount", finding.count},
        {"partialFingerprints", {{"findingSignature/v1", fingerprint(signature)}}},
        {"properties", {{"devices", shared.devices}, {"fails", check.verdict.fails(finding)}}}};
    if (check.verdict.isKnown(finding)) {
        result["baselineState"] = "unchanged";
        result["suppressions"] =
            ordered_json::array({{{"kind", "external"}, {"justification", "in the baseline"}}});
    }
    return result;
}

ordered_json invocationOf(const Check& check, const RunResult& run)
{
    ordered_json invocation{{"executionSuccessful", run.programStatus() == 0 && run.isWatched},
        {"exitCode", run.programStatus()}, {"properties", {{"device", run.deviceName()}}}};
    if (const std::string bad = badEnd(run); !bad.empty())
        invocation["toolExecutionNotifications"] =
            ordered_json::array({{{"level", check.verdict.status(run) == 0 ? "note" : "error"},
                {"message", {{"text", oneLine(bad)}}}}});
    return invocation;
}

} // namespace

std::string sarifReport(const Check& check)
{
    std::map<std::string, std::size_t> places;
    ordered_json rules = ordered_json::array();
    ordered_json results = ordered_json::array();
    for (const SharedFinding& shared : sharedFindings(check.runs, check.verdict)) {
        const std::string rule = ruleOf(shared.finding.signature);
        const auto [place, isNew] = places.emplace(rule, places.size());
        if (isNew)
            rules.push_back({{"id", rule}, {"shortDescription", {{"text", rule + " was reported"}}}});
        results.push_back(resultOf(check, shared, place->second));
    }
    ordered_json invocations = ordered_json::array();
    for (const RunResult& run : check.runs)
        invocations.push_back(invocationOf(check, run));
    const ordered_json report{{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
        {"version", "2.1.0"},
        {"runs",
            ordered_json::array(
                {{{"tool",
                      {{"driver",
                          {{"name", "corvale-run"}, {"version", CORVALE_VERSION}, {"rules", rules}}}}},
                    {"invocations", invocations}, {"results", results}}})}};
    return report.dump(1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

} // namespace checks
