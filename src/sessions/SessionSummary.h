#pragma once

#include "Findings.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace sessions {

/// A rendering context as its record describes it, with names that users read.
struct ContextFacts {
    std::int32_t number = 0;
    bool isStrict = true;
    std::string esVersion;
    std::string glslEsVersion;
    std::string glVersion;
    std::string glslVersion;

    bool operator==(const ContextFacts&) const = default;
};

/// What a program can know of an extension of OpenGL ES.
enum class Support : std::uint8_t { Yes, NotOnHost, NotEmulated };

/// "supported", "not supported by the host system", "not supported by Corvale".
std::string_view supportName(Support support);

/// What a session amounts to, so that two can be compared. It takes bounded memory.
class SessionSummary {
public:
    /// Contexts that are kept one by one.
    static constexpr std::size_t contextLimit = 500;

    void add(const Record& record);

    const Findings& findings() const { return m_findings; }
    const std::vector<ContextFacts>& contexts() const { return m_contexts; }
    /// Of all contexts together, by name; the best support counts.
    const std::map<std::string, Support, std::less<>>& extensions() const { return m_extensions; }
    std::uint64_t recordCount() const { return m_recordCount; }
    std::uint64_t contextCount() const { return m_contextCount; }

private:
    void addContext(const Record& record);
    void addExtensions(const Record& record, std::size_t list, Support support);

    Findings m_findings;
    std::vector<ContextFacts> m_contexts;
    std::map<std::string, Support, std::less<>> m_extensions;
    std::uint64_t m_recordCount = 0;
    std::uint64_t m_contextCount = 0;
};

} // namespace sessions
