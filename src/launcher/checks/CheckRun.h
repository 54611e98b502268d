#pragma once

#include "Options.h"
#include "RunResult.h"

namespace checks {

/// Runs the program once, to its end, and folds what its processes report.
RunResult runOnce(const launcher::Options& options);

} // namespace checks
