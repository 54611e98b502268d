#pragma once

#include "ProfileData.h"

#include <optional>
#include <string>
#include <vector>

namespace host_query {

/// What this machine can do.
struct HostProfile {
    std::optional<ProfileData> profile; ///< None where there is no OpenGL ES.
    /// What could not be asked for, as sentences.
    std::vector<std::string> problems;
};

/// Asks EGL and every version of OpenGL ES, each in a process of its own. To be called while there is one
/// thread.
HostProfile askHost();

} // namespace host_query
