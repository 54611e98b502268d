#pragma once

#include "Options.h"

#include <map>
#include <string>
#include <variant>

namespace launcher {

class PrivateFolder;
struct Device;

/// What changes in the program's environment so that the layer gets into it.
using Changes = std::map<std::string, std::string>;

/// Why a program cannot be watched, as a sentence without an end.
struct Unwatchable {
    std::string reason;
};

/// Finds the layer's library and the host's, writes what libglvnd and the layer are to find into the folder,
/// and says what the program's environment needs. Without a device the program sees the machine.
std::variant<Changes, Unwatchable> layerSetup(
    const Options& options, bool isStrict, const Device* device, const PrivateFolder& folder);

} // namespace launcher
