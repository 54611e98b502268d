#pragma once

#include "Options.h"

namespace demo {

/// Plays as many clients as the options ask for, and returns the program's exit code. A single client that
/// plays a crash does not return.
int run(const Options& options);

} // namespace demo
