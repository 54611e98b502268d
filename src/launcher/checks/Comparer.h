#pragma once

#include <string>

namespace checks {

/// Prints what differs between two sessions or JSON reports. 0 if nothing does, 3 if something does, 2 if one
/// cannot be read.
int compareFiles(const std::string& before, const std::string& after);

} // namespace checks
