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

/// The absolute path under which a profile with that file name is saved in the directory.
std::filesystem::path pathFor(const std::string& directory, const std::string& fileName);

/// Puts the profile into its file as a whole or not at all, and never anywhere but into the directory itself.
std::optional<Failure> write(const ProfileData& profile, const std::string& directory);

} // namespace profile_file
