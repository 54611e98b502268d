#pragma once

#include "ProfileData.h"

#include <optional>
#include <string>
#include <vector>

namespace launcher {

/// The profile whose device the program is to see.
struct ProfileChoice {
    /// Why there is none though one is wanted, as whole lines for the user; empty otherwise.
    std::string refusal;
    /// What the user should know, as a sentence; empty for nothing.
    std::string warning;
    /// None for the machine as it is.
    std::optional<ProfileData> profile;
    /// Whether contexts are refused on a machine that lacks what the profile has.
    bool isStrict = false;
};

/// The profile of that name or file; without one, that which the window's user has chosen. Profiles are those
/// of the window, by their keys or display names; "Host" is none. The preferences are only read.
ProfileChoice chooseProfile(const std::optional<std::string>& wanted);

/// The keys of all profiles whose names fit a pattern of fnmatch(); "Host" is not among them.
std::vector<std::string> profilesLike(const std::string& pattern);

/// The names of the profiles in lines, "Host" first.
std::string profileList();

} // namespace launcher
