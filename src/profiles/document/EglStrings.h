#pragma once

#include <string>
#include <vector>

class ProfileData;

/// What a device answers to eglQueryString(), as the section of EGL has it beside the configurations. A text
/// is empty and the list is empty where the profile does not say.
struct EglStrings {
    std::string vendor;
    std::string version;
    std::vector<std::string> extensions;

    bool operator==(const EglStrings&) const = default;
};

/// Looks into the document that the profile was read from.
EglStrings eglStrings(const ProfileData& profile);

/// Gives them to a profile that was not read from a document.
void setEglStrings(ProfileData& profile, const EglStrings& strings);
