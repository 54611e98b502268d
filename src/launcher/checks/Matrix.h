#pragma once

#include "Options.h"
#include "RunResult.h"

#include <optional>
#include <string>
#include <vector>

namespace checks {

/// The profiles on which the program is to run, with patterns replaced by what fits them. Nothing if one of
/// them is not to be had; the user has been told. Empty if none was named.
std::optional<std::vector<std::string>> chosenProfiles(const launcher::CheckOptions& options);

/// Runs the program on each profile, each in a process of its own, some at a time. The files of a run have
/// the profile's name in theirs.
std::vector<RunResult> runMatrix(const launcher::Options& options, const std::vector<std::string>& profiles);

} // namespace checks
