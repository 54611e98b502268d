#pragma once

#include <filesystem>
#include <string>

namespace platform {

/// What an errno value says.
std::string errorText(int number);

/// A path as UTF-8 text for messages; never throws, whatever the file system's encoding is.
std::string readablePath(const std::filesystem::path& path);

} // namespace platform
