#include "SessionComparison.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <utility>

namespace sessions {

namespace {

using Facts = std::map<std::string, std::string>;

FactPair pairOf(std::string what, std::string before, std::string after)
{
    FactPair pair{std::move(what), std::move(before), std::move(after)};
    if (pair.before.empty() && !pair.after.empty())
        pair.change = Change::New;
    else if (!pair.before.empty() && pair.after.empty())
        pair.change = Change::Gone;
    else if (pair.before != pair.after)
        pair.change = Change::Changed;
    return pair;
}

/// All names of two sessions with their values side by side.
std::vector<FactPair> pairsOf(const Facts& before, const Facts& after)
{
    std::vector<FactPair> pairs;
    auto a = before.begin();
    auto b = after.begin();
    while (a != before.end() || b != after.end()) {
        const bool takesA = a != before.end() && (b == after.end() || a->first <= b->first);
        const bool takesB = b != after.end() && (a == before.end() || b->first <= a->first);
        pairs.push_back(
            pairOf(takesA ? a->first : b->first, takesA ? a->second : "", takesB ? b->second : ""));
        std::advance(a, takesA ? 1 : 0);
        std::advance(b, takesB ? 1 : 0);
    }
    return pairs;
}

std::set<std::string> wordsOf(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// The words of a text that another has not.
std::string wordsWithout(const std::string& text, const std::string& other)
{
    const std::set<std::string> others = wordsOf(other);
    std::string result;
    for (const std::string& word : wordsOf(text)) {
        if (!others.contains(word))
            result += (result.empty() ? "" : " ") + word;
    }
    return result;
}

/// The names in a list of all contexts, each with a value. Names that are there keep theirs.
void addNames(const DeviceFacts& facts, std::string_view list, const std::string& value, Facts& names)
{
    std::set<std::string_view> seen; // Mostly all contexts have the same.
    for (const ContextFacts& context : facts.contexts()) {
        const auto place = context.parts.find(std::string(list));
        if (place == context.parts.end() || !seen.insert(place->second).second)
            continue;
        for (const std::string& name : wordsOf(place->second))
            names.try_emplace(name, value);
    }
}

/// What a program can know of each extension; the best support counts.
Facts extensionsOf(const DeviceFacts& facts)
{
    Facts names;
    addNames(facts, context_part::extensions, "supported", names);
    addNames(facts, context_part::notOnHost, "not supported by the host system", names);
    addNames(facts, context_part::notOffered, "not supported by Corvale", names);
    return names;
}

/// Contexts by their names, in an order for readers.
std::vector<std::string> contextNames(const DeviceFacts& before, const DeviceFacts& after)
{
    std::set<std::pair<std::size_t, std::string>> names;
    for (const DeviceFacts* facts : {&before, &after}) {
        for (const ContextFacts& context : facts->contexts())
            names.emplace(context.name.size(), context.name);
    }
    std::vector<std::string> sorted;
    sorted.reserve(names.size());
    for (const auto& entry : names)
        sorted.push_back(entry.second);
    return sorted;
}

std::map<std::string_view, const ContextFacts*> contextsByName(const DeviceFacts& facts)
{
    std::map<std::string_view, const ContextFacts*> contexts;
    for (const ContextFacts& context : facts.contexts())
        contexts[context.name] = &context;
    return contexts;
}

/// Findings that no list of kinds has room for, as one.
void addOthers(std::vector<FindingChange>& changes, const Findings& before, const Findings& after)
{
    for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Message}) {
        if (before.others(severity) == after.others(severity))
            continue;
        Finding others;
        others.signature = {severity, {}, {}, "(further kinds)"};
        others.count = after.others(severity);
        changes.push_back({Change::Changed, others, before.others(severity), after.others(severity)});
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
            text.append(": ").append(changeText(pair));
        else
            text.append(": ").append(pair.before).append(pair.after);
        text += '\n';
    }
}

bool isSame(const FactPair& pair)
{
    return !pair.change;
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

std::string changeText(const FactPair& pair)
{
    constexpr std::size_t longest = 300; // bytes of two texts that can be compared at a glance
    if (!pair.isList && pair.before.size() + pair.after.size() <= longest) {
        const auto shown = [](const std::string& value) {
            return value.empty() ? "(nothing)" : value;
        };
        return shown(pair.before) + " -> " + shown(pair.after);
    }
    const std::set<std::string> old = wordsOf(pair.before);
    const std::set<std::string> now = wordsOf(pair.after);
    std::string text;
    for (const std::string& word : old)
        text += now.contains(word) ? "" : (text.empty() ? "-" : " -") + word;
    for (const std::string& word : now)
        text += old.contains(word) ? "" : (text.empty() ? "+" : " +") + word;
    return text;
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
    : m_extensions(pairsOf(extensionsOf(before.facts), extensionsOf(after.facts)))
    , m_values(pairsOf(before.facts.values(), after.facts.values()))
    , m_device(pairOf("Device", before.device, after.device))
{
    compareFindings(before.findings, after.findings);
    compareContexts(before.facts, after.facts);
}

void SessionComparison::compareFindings(const Findings& before, const Findings& after)
{
    for (const Finding* finding : after.worstFirst()) {
        const Finding* former = before.find(finding->signature);
        if (former && former->count == finding->count)
            ++m_sameFindings;
        else
            m_findings.push_back({former ? Change::Changed : Change::New, *finding,
                former ? former->count : 0, finding->count});
    }
    for (const Finding* finding : before.worstFirst()) {
        if (!after.find(finding->signature))
            m_findings.push_back({Change::Gone, *finding, finding->count, 0});
    }
    addOthers(m_findings, before, after);
    std::stable_sort(
        m_findings.begin(), m_findings.end(), [](const FindingChange& a, const FindingChange& b) {
            return std::pair(a.change, a.finding.signature.severity)
                < std::pair(b.change, b.finding.signature.severity);
        });
    for (const FindingChange& finding : m_findings)
        ++m_counts.at(static_cast<std::size_t>(finding.change));
}

void SessionComparison::compareContexts(const DeviceFacts& before, const DeviceFacts& after)
{
    m_contexts.push_back(
        pairOf("Contexts", std::to_string(before.contextCount()), std::to_string(after.contextCount())));
    const auto formers = contextsByName(before);
    const auto latters = contextsByName(after);
    const auto find = [](const auto& contexts, const std::string& name) {
        const auto place = contexts.find(name);
        return place == contexts.end() ? nullptr : place->second;
    };
    for (const std::string& name : contextNames(before, after))
        compareContext(find(formers, name), find(latters, name));
}

void SessionComparison::compareContext(const ContextFacts* before, const ContextFacts* after)
{
    std::string start = (after ? after : before)->name + ", ";
    start.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(start.front())));
    const auto part = [](const ContextFacts* context, std::string_view name) -> const std::string* {
        const auto place = context ? context->parts.find(std::string(name)) : Facts::const_iterator();
        return context && place != context->parts.end() ? &place->second : nullptr;
    };
    const auto addPair = [&](std::string_view name, bool isList) {
        const std::string* a = part(before, name);
        const std::string* b = part(after, name);
        // A report of an older version may know less of a context, which is no change of it.
        if ((before && after && (!a || !b)) || (isList && (!a || !b || *a == *b)))
            return;
        FactPair pair = pairOf(start + std::string(name),
            isList  ? wordsWithout(*a, *b)
                : a ? *a
                    : "",
            isList  ? wordsWithout(*b, *a)
                : b ? *b
                    : "");
        pair.isList = isList;
        if (!isList || pair.change)
            m_contexts.push_back(std::move(pair));
    };
    for (const std::string_view name : context_part::values)
        addPair(name, false);
    for (const std::string_view name : context_part::lists)
        addPair(name, true);
}

bool SessionComparison::isEqual() const
{
    return m_findings.empty() && isSame(m_device) && std::all_of(m_contexts.begin(), m_contexts.end(), isSame)
        && std::all_of(m_extensions.begin(), m_extensions.end(), isSame)
        && std::all_of(m_values.begin(), m_values.end(), isSame);
}

std::string SessionComparison::toText(std::string_view nameBefore, std::string_view nameAfter) const
{
    std::string text;
    text.append("Before: ").append(nameBefore).append("\nAfter:  ").append(nameAfter).append("\n");
    if (isEqual())
        return text += "\nNothing differs.\n";
    if (!m_findings.empty())
        text += "\nFindings\n";
    for (const FindingChange& change : m_findings) {
        text.append("  ").append(changeName(change.change)).append(": ");
        if (change.change == Change::Changed)
            text += std::to_string(change.before) + " -> " + std::to_string(change.after);
        else
            text += std::to_string(change.before + change.after);
        text.append(" x ").append(signatureLine(change.finding.signature)).append("\n");
    }
    appendPairs(text, "Contexts", m_contexts);
    appendPairs(text, "Extensions", m_extensions);
    appendPairs(text, "Device", {m_device});
    appendPairs(text, "System report", m_values);
    return text;
}

} // namespace sessions
