#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

/// The EGL enumerants that frame-buffer configurations use: attributes and symbolic values.
namespace egl {

/// The value of an enumerant name such as "EGL_NONE", matched exactly and with case.
std::optional<std::int32_t> enumerantValue(std::string_view name);

/// The name under which the editor shows a value, such as "EGL_NONE"; "" for a value that has none. Only the
/// seven values that attributes of any kind may take have one: bits would be ambiguous.
const char* symbolicName(std::int32_t value);

/// The value of one of those seven names.
std::optional<std::int32_t> symbolicValue(std::string_view name);

/// The names of the bits of a mask such as "EGL_SURFACE_TYPE"; none for an attribute that is no mask.
std::span<const std::string_view> bitNames(std::string_view attribute);

} // namespace egl
