#pragma once

#include <string>

namespace launcher {

/// Writes what this machine can do as a profile into a file, which is replaced as a whole or not at all; to
/// standard output for "-". Returns the exit code and has told on standard error what went wrong.
int makeProfile(const std::string& path);

} // namespace launcher
