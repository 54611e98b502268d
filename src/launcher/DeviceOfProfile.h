#pragma once

#include "DeviceTable.h"

#include <string>
#include <vector>

class ProfileData;

namespace launcher {

/// The device that a profile describes.
struct Device {
    layer::device::Table table;
    /// What of the profile could not be understood and is left out, for the user.
    std::vector<std::string> misread;
};

Device deviceOf(const ProfileData& profile, bool isStrict);

} // namespace launcher
