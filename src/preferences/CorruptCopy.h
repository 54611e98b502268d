#pragma once

#include "FileReplacement.h"

#include <filesystem>
#include <string_view>

/// Keeps the content of a preference file that could not be parsed, beside it as `<file>.corrupt`, before it
/// is replaced. Earlier copies stay: then it is `<file>.corrupt.2` and so on, and after a few of them the
/// last is overwritten. The copy's path is stored in the last argument.
platform::FileResult keepCorruptCopy(
    const std::filesystem::path& file, std::string_view content, std::filesystem::path& copy);
