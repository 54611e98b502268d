#pragma once

#include "Context.h"

#include <string>

namespace layer {

/// Why a device does not link a program that the host has linked: what it uses is more than the device has.
/// Empty for one that is linked, and where the host cannot say what a program uses.
std::string linkRefusal(const Context& context, GLuint program);

} // namespace layer
