#pragma once

#include "Occurrence.h"
#include "Record.h"
#include "Signature.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace sessions {

/// What a program did wrong in one way, however often.
struct Finding {
    Signature signature;
    Origin origin = Origin::Error;
    std::uint64_t count = 0;
    std::uint32_t firstFrame = ui::messages::noFrame;
    std::uint32_t lastFrame = ui::messages::noFrame;
    std::string example; ///< The text of the first one as it came, cut to some kilobytes.
};

/// Folds records to findings. It takes bounded memory: once there are too many kinds, or their texts are too
/// long, further kinds are only counted, by their severity.
class Findings {
public:
    struct Limits {
        std::size_t kinds = 20'000;
        std::size_t bytes = std::size_t{32} << 20U;
    };

    Findings() = default;
    explicit Findings(const Limits& limits)
        : m_limits(limits)
    {
    }

    /// Takes a record into account. False if it is no finding.
    bool add(const Record& record);
    /// Adds a finding as another list has it.
    void add(const Finding& finding);

    /// Counts what another list has no kinds for.
    void addOthers(Severity severity, std::uint64_t count);

    /// In the order in which they came.
    const std::vector<Finding>& all() const { return m_findings; }
    /// The worst first; of those that are equally bad, the most frequent.
    std::vector<const Finding*> worstFirst() const;
    const Finding* find(const SignatureView& signature) const;
    /// How many findings of a severity belong to no kind that is listed.
    std::uint64_t others(Severity severity) const { return m_others.at(static_cast<std::size_t>(severity)); }
    /// How many there were of a severity altogether.
    std::uint64_t count(Severity severity) const { return m_counts.at(static_cast<std::size_t>(severity)); }

private:
    Finding* findOrMake(const SignatureView& signature, Origin origin, std::string_view text);

    Limits m_limits;
    std::vector<Finding> m_findings;
    std::unordered_map<Signature, std::size_t, SignatureHash, SignatureEqual> m_places;
    std::size_t m_bytes = 0;
    std::array<std::uint64_t, 3> m_counts{};
    std::array<std::uint64_t, 3> m_others{};
    std::string m_buffer;
};

} // namespace sessions
