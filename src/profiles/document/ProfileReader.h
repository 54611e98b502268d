#pragma once

#include "ProfileData.h"

#include <stdexcept>
#include <string>
#include <string_view>

/// Why a profile could not be loaded. what() is the whole text for the user, reason() its inner part.
class ProfileError : public std::runtime_error {
public:
    /// The text is `what`, followed by the reason in parentheses where there is one.
    ProfileError(const std::string& what, const std::string& reason);
    const std::string& reason() const { return m_reason; }

private:
    std::string m_reason;
};

/// All throw ProfileError.
ProfileData readProfile(std::string_view xml);
/// The profile as it is read from what a save of it writes.
ProfileData readWritten(const ProfileData& profile);
ProfileData readProfileFile(const std::string& path);
