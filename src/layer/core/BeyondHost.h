#pragma once

#include "Context.h"
#include "Device.h"

#include <string>
#include <string_view>
#include <vector>

namespace layer {

/// What a device has and the host has not.
struct BeyondHost {
    std::vector<std::string> limits; ///< "GL_MAX_TEXTURE_SIZE is 32768 (16384 here)"
    std::vector<std::string> others; ///< Extensions, compressed formats, configs.
};

/// Compares a version of a device with the host, whose context is current and has these extensions.
BeyondHost beyondHost(Host& host, int hostVersion, std::string_view hostExtensions, const device::Api& api);

/// Whether a text of words has a word.
bool hasWord(std::string_view words, std::string_view wanted);
/// The first number of the form "3.2" in a text, as 32; 0 without one.
int versionIn(std::string_view text);

} // namespace layer
