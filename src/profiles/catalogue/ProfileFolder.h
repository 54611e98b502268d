#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class ProfileDataWrapper;

/// What tells whether a file is still the one that was read.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = -1;
    /// Nanoseconds; the second one moves even when a program sets the first one back.
    std::int64_t modified = 0;
    std::int64_t changed = 0;

    /// Follows links; a stamp of size -1, which equals no file's, when there is nothing to stamp.
    static FileStamp of(const std::filesystem::path& path);
    bool operator==(const FileStamp&) const = default;
};

/// The user's profiles: the regular files of one folder, without its subfolders, hidden files and temporary
/// files of interrupted saves.
class ProfileFolder {
public:
    using Pointer = std::shared_ptr<ProfileDataWrapper>;

    /// A file that could not be loaded, or the folder when that could not be read.
    struct BrokenFile {
        std::string file; ///< Its name without the folder.
        std::string reason;
    };

    /// Reads the folder again, or another one; an empty path and one where nothing is have no profiles.
    /// A file that is there under several names is listed once. Files whose content did not change keep their
    /// wrapper with its unsaved edits, and so do those whose content is what the wrapper holds, as after a
    /// save. What was added and is not found saved stays behind the files; what left the disk goes.
    void read(const std::filesystem::path& folder);

    /// Adds a profile that has no file yet.
    void add(Pointer profile);
    /// Takes such a profile out again.
    void remove(const ProfileDataWrapper& profile);

    /// Whether nothing is at the path, or the very file that the profile was read from, with the same
    /// content.
    bool mayOverwrite(const ProfileDataWrapper& profile, const std::filesystem::path& path) const;

    /// In the order of the file names; what was added is behind.
    const std::vector<Pointer>& profiles() const { return m_profiles; }
    const std::vector<BrokenFile>& brokenFiles() const { return m_brokenFiles; }

    /// The profile that was read from this file; nothing for a file that was not read.
    Pointer findFile(const std::filesystem::path& path) const;

private:
    struct Entry {
        FileStamp stamp;
        /// Of the bytes; the stamp changes with the permissions alone.
        std::optional<std::size_t> digest;
        Pointer profile;
    };

    std::vector<std::filesystem::path> list(const std::filesystem::path& folder);
    Entry load(const std::filesystem::path& path) const;
    Pointer wrapperWith(const std::filesystem::path& path, const ProfileDataWrapper& loaded) const;

    /// What was read, by path without links.
    std::map<std::string, Entry> m_files;
    std::vector<Pointer> m_profiles;
    std::vector<Pointer> m_unsaved;
    std::vector<BrokenFile> m_brokenFiles;
};
