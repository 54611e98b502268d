#pragma once

#include <string>

class ProfileData;

/// What work on profiles needs of the program around it: the questions and dialogs that belong to the whole
/// window.
class ProfileController {
public:
    virtual ~ProfileController() = default;

    /// Where profiles are saved. Where no folder is set the user is asked for one; "" when they give none.
    virtual std::string directoryForSaving() = 0;

    /// Asks whether a copy is to be saved instead of a read-only profile.
    virtual bool askForCopy() = 0;

    /// Asks whether the file of that name may be replaced although it is not the one that was loaded.
    virtual bool mayReplace(const std::string& fileName) = 0;

    /// Save with their dialogs: under the profile's file name, and under one that the user is asked for.
    /// False when nothing was written, which the user knows then.
    virtual bool save(ProfileData& profile, const std::string& directory) = 0;
    virtual bool saveAs(ProfileData& profile, const std::string& directory) = 0;
};
