#pragma once

class ProfileData;

namespace host_query {

class HostDisplay;

/// Puts what the current context of a version reports into the section of the profile. Versions are such as
/// 11 for 1.1; sections have the numbers of profiles. What depends on the framebuffer that is drawn into is
/// no property of a device and is left out.
void addApi(const HostDisplay& display, int version, int section, ProfileData& profile);

} // namespace host_query
