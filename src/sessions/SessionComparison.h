#pragma once

#include "SessionSummary.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sessions {

/// What is in one session, in the other, or in both but not alike.
enum class Change : std::uint8_t { New, Gone, Changed };

/// "new", "gone", "changed".
std::string_view changeName(Change change);

struct FindingChange {
    Change change = Change::New;
    Finding finding; ///< As in the second session, or in the first one if it is gone.
    std::uint64_t before = 0; ///< How often in the first session, and in the second.
    std::uint64_t after = 0;
};

/// A fact of both sessions, side by side. It is the same in both unless there is a change.
struct FactPair {
    std::string what;
    std::string before; ///< Empty where the session has no such thing.
    std::string after;
    std::optional<Change> change = {};
    bool isList = false; ///< Of names with blanks between, without those that both sessions have.
};

/// A change on a line: "3.0 -> 3.1", or "-gone +new" of lists, and of long texts word by word.
std::string changeText(const FactPair& pair);

/// How a second session differs from a first one. Findings are the same when their signatures are; one that
/// is in both has changed when it came another number of times. Contexts are paired by their numbers.
class SessionComparison {
public:
    SessionComparison() = default;
    SessionComparison(const SessionSummary& before, const SessionSummary& after);

    /// New ones first, then gone and changed ones; of each the worst first, and the most frequent.
    const std::vector<FindingChange>& findings() const { return m_findings; }
    /// How many findings there are of a change.
    std::size_t count(Change change) const { return m_counts.at(static_cast<std::size_t>(change)); }
    /// Findings that came as often in both.
    std::size_t sameFindings() const { return m_sameFindings; }
    /// Their number, and what is known of each. Lists are only there where they differ.
    const std::vector<FactPair>& contexts() const { return m_contexts; }
    /// Those of OpenGL ES, of all contexts together.
    const std::vector<FactPair>& extensions() const { return m_extensions; }
    /// What the system reports say.
    const std::vector<FactPair>& values() const { return m_values; }
    /// The profiles.
    const FactPair& device() const { return m_device; }
    /// Whether nothing differs.
    bool isEqual() const;

    /// All of it as lines of text, without what is the same.
    std::string toText(std::string_view nameBefore, std::string_view nameAfter) const;

private:
    void compareFindings(const Findings& before, const Findings& after);
    void compareContexts(const DeviceFacts& before, const DeviceFacts& after);
    void compareContext(const ContextFacts* before, const ContextFacts* after);

    std::vector<FindingChange> m_findings;
    std::array<std::size_t, 3> m_counts{};
    std::size_t m_sameFindings = 0;
    std::vector<FactPair> m_contexts;
    std::vector<FactPair> m_extensions;
    std::vector<FactPair> m_values;
    FactPair m_device;
};

/// "error glDrawArrays GL_INVALID_OPERATION: text", without what is not known.
std::string signatureLine(const SignatureView& signature);

} // namespace sessions
