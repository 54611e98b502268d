#pragma once

#include "BuiltinProfiles.h"
#include "ProfileFolder.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class Preferences;
class ProfileDataWrapper;

/// The profiles that the user can choose from: the read-only ones that are compiled in, and those in the
/// profiles directory.
class ProfileCatalogue {
public:
    using Pointer = std::shared_ptr<ProfileDataWrapper>;
    using BrokenFile = ProfileFolder::BrokenFile;

    /// Reads both lists. The preferences must outlive the catalogue.
    explicit ProfileCatalogue(Preferences& preferences,
        std::span<const builtin_profiles::TextEntry> builtins = builtin_profiles::documents());

    /// Reads the profiles directory again; ProfileFolder::read() tells which profiles stay.
    void reload();

    /// In natural order of their display names.
    const std::vector<Pointer>& builtinProfiles() const { return m_builtins; }
    /// In the order of their file names; new and copied ones are behind until they are saved and reloaded.
    const std::vector<Pointer>& userProfiles() const { return m_folder.profiles(); }
    /// What could not be loaded, built-in documents first.
    std::vector<BrokenFile> brokenFiles() const;

    /// The first profile with that key, built-in profiles first. The empty key is nobody's: it stands for
    /// the choice of no profile, and new profiles have it until they are saved.
    Pointer find(std::string_view key) const;
    /// The user's profile that was read from this file.
    Pointer findFile(const std::string& path) const;

    bool contains(const ProfileDataWrapper& profile) const;

    /// Adds a profile with placeholder strings and no file name.
    Pointer newProfile();
    /// Adds a writable copy, named after its original. Throws as ProfileData::displayName() does.
    Pointer copyProfile(const ProfileDataWrapper& original);
    /// Takes a profile that was added and never saved out again.
    void forget(const ProfileDataWrapper& profile) { m_folder.remove(profile); }

    /// Whether nothing is at the path, or just what the profile was read from.
    bool mayOverwrite(const ProfileDataWrapper& profile, const std::string& path) const
    {
        return m_folder.mayOverwrite(profile, path);
    }

    /// Keeps the key of the chosen profile, or "" for none, in the preferences.
    void rememberCurrent(const std::string& key);
    /// The profile that was remembered, if it is there.
    Pointer current() const;

    /// The folder of the user's profiles, "" where none is set.
    std::string profilesDirectory() const;

private:
    void loadBuiltins(std::span<const builtin_profiles::TextEntry> documents);

    Preferences& m_preferences;
    std::vector<Pointer> m_builtins;
    std::vector<BrokenFile> m_brokenBuiltins;
    ProfileFolder m_folder;
};
