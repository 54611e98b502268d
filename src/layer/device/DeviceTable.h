#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// One device that a program is to see in place of the machine, without the XML that it was described in. The
/// launcher writes it into a file for the layer.
namespace layer::device {

/// Integers are exact; GL_MAX_SERVER_WAIT_TIMEOUT needs 64 bits.
using Number = std::variant<std::int64_t, double>;

/// What the device reports in contexts of one version of OpenGL ES.
struct Api {
    int version = 0; ///< Major times ten plus minor: 10, 11, 20, 30, 31 or 32.
    std::vector<std::string> extensions;
    /// By the enumerant of the query: one number, the ends of a range, or the values of a list in order. A
    /// list may be empty.
    std::map<std::uint32_t, std::vector<Number>> capabilities;
    /// By the enumerant of glGetString(), such as GL_VERSION, where they are not made of the version.
    std::map<std::uint32_t, std::string> texts;
    /// By the types of shader and precision: the range's two logarithms and the precision's.
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::array<std::int32_t, 3>> precisions;
    /// By the internal format: the sample counts that it has, the largest first.
    std::map<std::uint32_t, std::vector<std::int32_t>> sampleCounts;

    bool operator==(const Api&) const = default;
};

/// The attributes of an EGL config, EGL_CONFIG_ID among them.
using Config = std::map<std::int32_t, std::int32_t>;

struct Table {
    std::string name; ///< What the user knows the device by.
    std::string vendor; ///< GL_VENDOR
    std::string renderer; ///< GL_RENDERER
    bool strict = false; ///< No contexts on a machine that lacks what the device has.
    std::vector<Api> apis; ///< By rising version.
    std::vector<Config> configs; ///< In the order in which eglGetConfigs() returns them.
    /// By the enumerant of eglQueryString(); the machine answers for what is not here.
    std::map<std::int32_t, std::string> eglTexts;

    bool operator==(const Table&) const = default;
};

/// The table as lines of text.
std::string toText(const Table& table);

/// Reads what toText() wrote. Null for a text that is not whole and right, with the line and the reason in
/// `why`.
std::optional<Table> fromText(std::string_view text, std::string* why);

} // namespace layer::device
