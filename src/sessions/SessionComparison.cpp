#include "SessionComparison.h"

#include <algorithm>
#include <utility>

namespace sessions {

namespace {

FactPair pairOf(std::string what, std::string before, std::string after)
{
    FactPair pair{std::move(what), std::move(before), std::move(after), std::nullopt};
    if (pair.before.empty() && !pair.after.empty())
        pair.change = Change::New;
    else if (!pair.before.empty() && pair.after.empty())
        pair.change = Change::Gone;
    else if (pair.before != pair.after)
        pair.change = Change::Changed;
    return pair;
}

/// Findings that no list of kinds has room for, as one.
void addOthers(std::vector<FindingChange>& changes, const Findings& before, const Findings& after)
{
    for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Message}) {
        if (before.others(severity) != after.others(severity))
            changes.push_back({Change::Changed, {severity, {}, {}, "(further kinds)"},
                before.others(severity), after.others(severity)});
    }
}

void appendPairs(std::string& text, std::string_view title, const std::vector<FactPair>& pairs)
{
    bool isFirst = true;
    for (const FactPair& pair : pairs) {
        if (!pair.change)
            continue;
        if (std::exchange(isFirst, false))
            text.append("\n").append(title).append("\n");
        text.append("  ").append(changeName(*pair.change)).append(": ").append(pair.what);
        if (*pair.change == Change::Changed)
            text.append(": ").append(pair.before).append(" -> ").append(pair.after);
        else
            text.append(": ").append(pair.before).append(pair.after);
        text += '\n';
    }
}

} // namespace

std::string_view changeName(Change change)
{
    switch (change) {
    case Change::New:
        return "new";
    case Change::Gone:
        return "gone";
    case Change::Changed:
        return "changed";
    }
    return {};
}

std::string signatureLine(const SignatureView& signature)
{
    std::string line(severityName(signature.severity));
    for (const std::string_view part : {signature.function, signature.code}) {
        if (!part.empty())
            line.append(" ").append(part);
    }
    return line.append(": ").append(signature.text);
}

SessionComparison::SessionComparison(const SessionSummary& before, const SessionSummary& after)
{
    compareFindings(before.findings(), after.findings());
    compareContexts(before, after);
    compareExtensions(before, after);
}

void SessionComparison::compareFindings(const Findings& before, const Findings& after)
{
    for (const Finding& finding : after.all()) {
        const Finding* former = before.find(finding.signature);
        if (former && former->count == finding.count)
            ++m_sameFindings;
        else
            m_findings.push_back({former ? Change::Changed : Change::New, finding.signature,
                former ? former->count : 0, finding.count});
    }
    for (const Finding& finding : before.all()) {
        if (!after.find(finding.signature))
            m_findings.push_back({Change::Gone, finding.signature, finding.count, 0});
    }
    addOthers(m_findings, before, after);
    std::stable_sort(
        m_findings.begin(), m_findings.end(), [](const FindingChange& a, const FindingChange& b) {
            return std::pair(a.change, a.signature.severity) < std::pair(b.change, b.signature.severity);
        });
    for (const FindingChange& finding : m_findings)
        ++m_counts.at(static_cast<std::size_t>(finding.change));
}

void SessionComparison::compareContexts(const SessionSummary& before, const SessionSummary& after)
{
    m_contexts.push_back(
        pairOf("Contexts", std::to_string(before.contextCount()), std::to_string(after.contextCount())));
    const std::size_t count = std::max(before.contexts().size(), after.contexts().size());
    for (std::size_t i = 0; i < count; ++i) {
        const ContextFacts none{0, true, {}, {}, {}, {}};
        const bool hasBefore = i < before.contexts().size();
        const bool hasAfter = i < after.contexts().size();
        const ContextFacts& a = hasBefore ? before.contexts()[i] : none;
        const ContextFacts& b = hasAfter ? after.contexts()[i] : none;
        const std::string start = "Context " + std::to_string(hasAfter ? b.number : a.number) + ", ";
        const auto mode = [](const ContextFacts& facts, bool isThere) {
            return std::string(!isThere ? "" : facts.isStrict ? "strict" : "loose");
        };
        m_contexts.push_back(pairOf(start + "OpenGL ES", a.esVersion, b.esVersion));
        m_contexts.push_back(pairOf(start + "GLSL ES", a.glslEsVersion, b.glslEsVersion));
        m_contexts.push_back(pairOf(start + "OpenGL of the host", a.glVersion, b.glVersion));
        m_contexts.push_back(pairOf(start + "GLSL of the host", a.glslVersion, b.glslVersion));
        m_contexts.push_back(pairOf(start + "mode", mode(a, hasBefore), mode(b, hasAfter)));
    }
}

void SessionComparison::compareExtensions(const SessionSummary& before, const SessionSummary& after)
{
    auto a = before.extensions().begin();
    auto b = after.extensions().begin();
    while (a != before.extensions().end() || b != after.extensions().end()) {
        const bool takesA =
            a != before.extensions().end() && (b == after.extensions().end() || a->first <= b->first);
        const bool takesB =
            b != after.extensions().end() && (a == before.extensions().end() || b->first <= a->first);
        m_extensions.push_back(
            pairOf(takesA ? a->first : b->first, std::string(takesA ? supportName(a->second) : ""),
                std::string(takesB ? supportName(b->second) : "")));
        if (takesA)
            ++a;
        if (takesB)
            ++b;
    }
}

bool SessionComparison::isEqual() const
{
    const auto isSame = [](const FactPair& pair) {
        return !pair.change;
    };
    return m_findings.empty() && std::all_of(m_contexts.begin(), m_contexts.end(), isSame)
        && std::all_of(m_extensions.begin(), m_extensions.end(), isSame);
}

std::string SessionComparison::toText(std::string_view nameBefore, std::string_view nameAfter) const
{
    std::string text;
    text.append("Before: ").append(nameBefore).append("\nAfter:  ").append(nameAfter).append("\n");
    if (isEqual())
        return text += "\nNothing differs.\n";
    if (!m_findings.empty())
        text += "\nFindings\n";
    for (const FindingChange& finding : m_findings) {
        text.append("  ").append(changeName(finding.change)).append(": ");
        if (finding.change == Change::Changed)
            text += std::to_string(finding.before) + " -> " + std::to_string(finding.after);
        else
            text += std::to_string(finding.before + finding.after);
        text.append(" x ").append(signatureLine(finding.signature)).append("\n");
    }
    appendPairs(text, "Contexts", m_contexts);
    appendPairs(text, "Extensions", m_extensions);
    return text;
}

} // namespace sessions
