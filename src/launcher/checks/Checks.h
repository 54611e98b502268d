#pragma once

#include "Options.h"

namespace checks {

/// Runs a check and tells what came of it. Returns the exit code; for a program that was killed, that of a
/// shell.
int runCheck(const launcher::Options& options);

} // namespace checks
