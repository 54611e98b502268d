#pragma once

class ProfileData;

namespace host_query {

class HostDisplay;

/// Puts the configs with their attributes and the strings of EGL into the profile.
void addConfigs(const HostDisplay& display, ProfileData& profile);

} // namespace host_query
