#pragma once

#include "Record.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace sessions {

/// A rendering context as its record describes it.
struct ContextFacts {
    std::string name; ///< "context 1"; of several with that number, the second is "context 1 (2)".
    std::map<std::string, std::string> parts; ///< Such as "OpenGL ES" with "3.1"; see context_part.
};

/// Names of what is known of a context.
namespace context_part {
inline constexpr std::string_view mode = "mode";
inline constexpr std::string_view es = "OpenGL ES";
inline constexpr std::string_view glslEs = "GLSL ES";
inline constexpr std::string_view gl = "OpenGL of the host";
inline constexpr std::string_view glsl = "GLSL of the host";
// Lists, with blanks between the names.
inline constexpr std::string_view extensions = "extensions";
inline constexpr std::string_view notOnHost = "extensions that the host lacks";
inline constexpr std::string_view notOffered = "extensions that are not offered";
inline constexpr std::string_view hostExtensions = "extensions of the host";

inline constexpr std::array values{es, glslEs, gl, glsl, mode};
inline constexpr std::array lists{extensions, notOnHost, notOffered, hostExtensions};
} // namespace context_part

/// What a program's run tells of its device: the contexts that it made and the system report, as names and
/// values in English. It takes bounded memory: long texts are cut, and what is too much is left out.
class DeviceFacts {
public:
    /// False if the record tells nothing of that kind.
    bool add(const Record& record);
    /// One of all(). Their order does not matter, but that of contexts.
    void add(const std::string& name, const std::string& value);

    /// In the order in which they were made; of very many, the first ones.
    const std::vector<ContextFacts>& contexts() const { return m_contexts; }
    /// Of all that were made.
    std::uint64_t contextCount() const { return m_contextCount; }
    /// What the system report says.
    const std::map<std::string, std::string>& values() const { return m_values; }

    /// Everything by name, such as "context 1: OpenGL ES".
    std::map<std::string, std::string> all() const;

private:
    void addContext(const Record& record);
    void addValue(std::string_view name, std::string_view value);
    void set(std::map<std::string, std::string>& facts, std::size_t limit, std::string_view name,
        std::string_view value);
    /// Null where there are too many.
    ContextFacts* newContext(std::string name);
    ContextFacts* contextNamed(std::string_view name);

    std::vector<ContextFacts> m_contexts;
    std::uint64_t m_contextCount = 0;
    std::map<std::string, unsigned int> m_contextsOfNumber; ///< By the names that they would have alone.
    std::map<std::string, std::string> m_values;
    std::size_t m_bytes = 0;
};

} // namespace sessions
