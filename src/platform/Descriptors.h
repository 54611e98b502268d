#pragma once

#include <cstddef>

namespace platform {

/// Raises the soft limit of open file descriptors to the hard limit, at most to a few thousand. Returns the
/// soft limit that is in force afterwards, in descriptors; 0 where the system has no such limit.
std::size_t raiseDescriptorLimit();

} // namespace platform
