#pragma once

#include "Reports.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace checks {

/// The runs of a JSON report. Nothing, with the reason, if it is none; it comes from a file.
std::optional<std::vector<RunResult>> readJsonReport(std::string_view text, std::string& reason);

} // namespace checks
