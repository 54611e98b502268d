#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The EGL enumerants that frame-buffer configurations use: attributes and symbolic values.
namespace egl {

/// The value of an enumerant name such as "EGL_NONE", matched exactly and with case.
std::optional<std::int32_t> enumerantValue(std::string_view name);

} // namespace egl
