#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

/// The enumerants of the Khronos OpenGL ES registry and the maker's own, both ways. Nothing is allocated and
/// every look-up takes logarithmic time. Both ways come from one snapshot of the registry.
namespace gl {

/// Values are given as signed or as unsigned 32-bit numbers; both ways name the same bits.
constexpr std::int64_t leastValue = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t greatestValue = std::numeric_limits<std::uint32_t>::max();

constexpr bool isValue(std::int64_t number)
{
    return number >= leastValue && number <= greatestValue;
}

/// The name of an enumerant value, such as "GL_DEBUG_TYPE_ERROR"; "" for a value that no enumerant has. One
/// name is fixed for each value that several share; 0 is "GL_NONE", 1 is "GL_MAP_READ_BIT".
const char* enumerantName(std::int32_t value);

/// The value of an enumerant name, matched exactly and with case; every alias of a value is known.
std::optional<std::int32_t> enumerantValue(std::string_view name);

/// The name of a GL error code, such as "GL_INVALID_ENUM"; "" for a code that is none of the eight errors.
const char* errorName(std::uint32_t code);

} // namespace gl
