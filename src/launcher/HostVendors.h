#pragma once

#include <string>
#include <vector>

namespace launcher {

/// The EGL vendor libraries of the host in the order in which libglvnd would try them, without the layer's
/// own. Each is a path, or a name for the loader to find.
std::vector<std::string> hostVendors(const std::string& layerLibrary);

/// A vendor's file for libglvnd that names a library by its path, in UTF-8.
std::string vendorFile(const std::string& library);

} // namespace launcher
