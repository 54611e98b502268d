#pragma once

#include "Options.h"

#include <map>
#include <string>
#include <variant>

namespace launcher {

class PrivateFolder;

/// What changes in the program's environment so that the layer gets into it.
using Changes = std::map<std::string, std::string>;

/// Why a program cannot be watched, as a sentence without an end.
struct Unwatchable {
    std::string reason;
};

/// Finds the layer's library and the host's, writes what libglvnd is to find into the folder, and says what
/// the program's environment needs.
std::variant<Changes, Unwatchable> layerSetup(const Options& options, const PrivateFolder& folder);

} // namespace launcher
