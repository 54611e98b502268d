#pragma once

#include <memory>
#include <string>

class ProfileData;
class ProfileDataWrapper;

/// What the profile panel needs of the program around it: the catalogue, and the questions that belong to the
/// whole window.
class ProfileController {
public:
    using Pointer = std::shared_ptr<ProfileDataWrapper>;

    virtual ~ProfileController() = default;

    /// Both add to the catalogue.
    virtual Pointer newProfile() = 0;
    virtual Pointer copyProfile(const ProfileDataWrapper& original) = 0;
    /// Takes a profile that was added and never saved out of the catalogue.
    virtual void forgetProfile(const ProfileDataWrapper& profile) = 0;

    /// Whether the profile can be saved there without a question: nothing is there, or just what it was read
    /// from.
    virtual bool mayOverwrite(const ProfileDataWrapper& profile, const std::string& path) const = 0;

    /// Where profiles are saved. Where no folder is set the user is asked for one; "" when they give none.
    /// The catalogue is not read again.
    virtual std::string directoryForSaving() = 0;

    /// Save with their dialogs: under the profile's file name, and under one that the user is asked for.
    /// False when nothing was written, which the user knows then.
    virtual bool save(ProfileData& profile, const std::string& directory) = 0;
    virtual bool saveAs(ProfileData& profile, const std::string& directory) = 0;

    /// Reads the catalogue again and shows it in the window's list.
    virtual void reloadProfiles() = 0;
    /// Makes the profile that was read from this file the chosen one.
    virtual void selectProfile(const std::string& path) = 0;

    /// Asks whether a copy is to be saved instead of a read-only profile. Returns the copy, none if not.
    virtual Pointer askForCopy(const ProfileDataWrapper& readOnly) = 0;
};
