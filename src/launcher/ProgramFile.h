#pragma once

#include <optional>
#include <string>

namespace launcher {

/// The file that execvp() would run for a name: the name itself if it has a slash, else the first executable
/// one in PATH. Empty if there is none.
std::string findProgram(const std::string& name);

/// Why the layer cannot get into a program file, as a sentence without an end; nothing if it can, or if the
/// file cannot be read. Of a script its interpreter counts.
std::optional<std::string> whyUnwatchable(const std::string& path);

} // namespace launcher
