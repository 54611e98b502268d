#pragma once

#include "Device.h"

#include <string>
#include <string_view>

namespace layer {

/// Why a device does not compile a shader: the version of the language that it asks for, or an extension that
/// it requires. Empty for one that is compiled.
std::string shaderRefusal(const device::Table& table, const device::Api& api, std::string_view source);

/// A shader that no driver compiles, with a reason that stands in its log.
std::string failingShader(std::string_view reason);

} // namespace layer
