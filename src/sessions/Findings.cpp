#include "Findings.h"

#include <algorithm>

namespace sessions {

using ui::messages::noFrame;

namespace {

constexpr std::size_t exampleLimit = 4096; // bytes
/// What a kind takes beside its texts.
constexpr std::size_t kindBytes = 256;

/// Records without a frame do not count.
void widen(Finding& finding, std::uint32_t first, std::uint32_t last)
{
    if (first == noFrame)
        return;
    if (finding.firstFrame == noFrame) {
        finding.firstFrame = first;
        finding.lastFrame = last;
    }
    finding.firstFrame = std::min(finding.firstFrame, first);
    finding.lastFrame = std::max(finding.lastFrame, last);
}

} // namespace

bool Findings::add(const Record& record)
{
    const std::optional<Occurrence> occurrence = occurrenceOf(record);
    if (!occurrence)
        return false;
    const SignatureView signature = signatureOf(
        occurrence->severity, occurrence->function, occurrence->code(), occurrence->text, m_buffer);
    const auto severity = static_cast<std::size_t>(signature.severity);
    ++m_counts.at(severity);
    if (Finding* finding = findOrMake(signature, occurrence->origin, occurrence->text)) {
        ++finding->count;
        widen(*finding, record.frame, record.frame);
    } else {
        ++m_others.at(severity);
    }
    return true;
}

void Findings::add(const Finding& finding)
{
    const auto severity = static_cast<std::size_t>(finding.signature.severity);
    m_counts.at(severity) += finding.count;
    if (Finding* mine = findOrMake(finding.signature, finding.origin, finding.example)) {
        mine->count += finding.count;
        widen(*mine, finding.firstFrame, finding.lastFrame);
    } else {
        m_others.at(severity) += finding.count;
    }
}

void Findings::addOthers(Severity severity, std::uint64_t count)
{
    m_counts.at(static_cast<std::size_t>(severity)) += count;
    m_others.at(static_cast<std::size_t>(severity)) += count;
}

Finding* Findings::findOrMake(const SignatureView& signature, Origin origin, std::string_view text)
{
    const auto place = m_places.find(signature);
    if (place != m_places.end())
        return &m_findings[place->second];
    const std::string_view example = cutText(text, exampleLimit);
    // The signature is kept twice, here and as the key.
    const std::size_t signatureSize =
        signature.function.size() + signature.code.size() + signature.text.size();
    const std::size_t bytes = kindBytes + 2 * signatureSize + example.size();
    if (m_findings.size() >= m_limits.kinds || m_bytes + bytes > m_limits.bytes)
        return nullptr;
    m_bytes += bytes;
    Finding finding;
    finding.signature = signature.copy();
    finding.origin = origin;
    finding.example = example;
    m_places.emplace(finding.signature, m_findings.size());
    m_findings.push_back(std::move(finding));
    return &m_findings.back();
}

std::vector<const Finding*> Findings::worstFirst() const
{
    std::vector<const Finding*> sorted;
    sorted.reserve(m_findings.size());
    for (const Finding& finding : m_findings)
        sorted.push_back(&finding);
    std::stable_sort(sorted.begin(), sorted.end(), [](const Finding* a, const Finding* b) {
        return a->signature.severity != b->signature.severity ? a->signature.severity < b->signature.severity
                                                              : a->count > b->count;
    });
    return sorted;
}

const Finding* Findings::find(const SignatureView& signature) const
{
    const auto place = m_places.find(signature);
    return place == m_places.end() ? nullptr : &m_findings[place->second];
}

} // namespace sessions
