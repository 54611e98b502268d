#pragma once

#include "ProfileData.h"

#include <string>
#include <string_view>

#include <tinyxml2.h>

/// Fills a profile from a document.
class ProfileReader {
public:
    explicit ProfileReader(ProfileData& profile)
        : m_profile(profile)
    {
    }

    /// Why it cannot be read, as readable text; empty when it was read. After a failure the profile is
    /// half-filled and good for nothing.
    std::string read(std::string_view document);

private:
    void readProfile(const tinyxml2::XMLElement& profile);
    void readApi(const tinyxml2::XMLElement& api, int version);
    void readEgl(const tinyxml2::XMLElement& egl);

    ProfileData& m_profile;
};
