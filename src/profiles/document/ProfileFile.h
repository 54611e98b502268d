#pragma once

#include <filesystem>
#include <optional>
#include <string>

class ProfileData;

namespace profile_file {

/// Why a profile could not be saved.
struct Failure {
    /// The file or the folder could not be opened for writing at all.
    bool notOpened = false;
    /// Readable text, which names the file if there is a name.
    std::string reason;
};

/// A file name made of the text that a profile goes by.
std::string nameFrom(std::string text);

/// The profile's file name, else one made of its display name; throws as ProfileData::displayName() does.
std::string nameForSaving(const ProfileData& profile);

/// The absolute path under which a profile with that file name is saved in the directory.
std::filesystem::path pathFor(const std::string& directory, const std::string& fileName);

/// Why a file with this content could not be loaded again as it is, for example because of a node without a
/// name; empty when nothing speaks against saving.
std::string whyNotSavable(const ProfileData& profile);

/// Why no profile can have a file of that name, as readable text; empty when one can.
std::string whyNoFileName(const std::string& name);

/// Puts the profile into its file as a whole or not at all, and never anywhere but into the directory itself.
std::optional<Failure> write(const ProfileData& profile, const std::string& directory);

} // namespace profile_file
