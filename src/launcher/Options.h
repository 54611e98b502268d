#pragma once

#include "CheckOptions.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace launcher {

/// Exit codes of the launcher itself.
namespace exit_code {
inline constexpr int nothingWatched = 1; ///< --require, and no process has connected.
inline constexpr int notMade = 1; ///< --make-profile, and there is no profile.
inline constexpr int wrongArguments = 2;
inline constexpr int notRun = 126;
inline constexpr int notFound = 127;
} // namespace exit_code

/// How the layer gets between the program and its driver.
enum class Via { Vendor, Preload };

/// What the arguments ask for.
struct Options {
    enum class Request { Run, Check, Compare, ListProfiles, MakeProfile, Answer, Refuse };

    Request request = Request::Run;
    std::string text; ///< Whole lines for standard output (Answer) or standard error (Refuse).

    std::string name; ///< Of the tab; empty to take it from the program's arguments.
    Via via = Via::Vendor;
    bool noErrors = false;
    std::string log; ///< Path; empty for none.
    std::string session; ///< Path; empty for none.
    bool quiet = false;
    bool require = false;
    bool showOutput = false;
    std::optional<std::string> profile; ///< A name or a path; without, the one that the window has chosen.
    std::string made; ///< Path of the profile that is to be made.
    CheckOptions check;
    std::chrono::milliseconds timeLimit{}; ///< Zero for none.
    std::uint32_t frameLimit = 0; ///< Zero for none.
    std::vector<std::string> program; ///< With its arguments.
};

Options readOptions(int argc, char* const* argv);

} // namespace launcher
