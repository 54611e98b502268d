#include "ProfileFolder.h"

#include "FileErrors.h"
#include "GuardedFile.h"
#include "Limits.h"
#include "ProfileData.h"
#include "ProfileDataWrapper.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <algorithm>
#include <functional>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

/// What is left of an interrupted save is no profile, and hidden files belong to other programs.
bool isCandidate(const fs::directory_entry& entry)
{
    const std::string name = entry.path().filename().string();
    std::error_code error;
    return entry.is_regular_file(error) && !name.starts_with('.') && !name.ends_with(".tmp");
}

/// Whether a save of that profile gives what was loaded. An edited profile may hold the same in another way,
/// with its extensions out of order for example.
bool isSaved(const ProfileData& profile, const ProfileData& loaded)
{
    try {
        return profile == loaded || readProfile(writeProfile(profile)) == loaded;
    } catch (const ProfileError&) {
        return false;
    }
}

/// Nothing when the file cannot be read.
std::optional<std::size_t> digestOf(const fs::path& path)
{
    const platform::FileBytes file = platform::readFile(path, platform::limits::fileSize);
    return file.ok ? std::optional(std::hash<std::string>()(file.bytes)) : std::nullopt;
}

} // namespace

FileStamp FileStamp::of(const fs::path& path)
{
    FileStamp stamp;
    struct stat status { };
    if (stat(path.c_str(), &status) != 0)
        return stamp;
    const auto nanoseconds = [](const timespec& time) {
        return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
    };
    stamp.device = status.st_dev;
    stamp.inode = status.st_ino;
    stamp.size = status.st_size;
    stamp.modified = nanoseconds(status.st_mtim);
    stamp.changed = nanoseconds(status.st_ctim);
    return stamp;
}

void ProfileFolder::read(const fs::path& folder)
{
    m_brokenFiles.clear();
    std::map<std::string, Entry> files;
    std::vector<Pointer> profiles;
    for (const fs::path& file : list(folder)) {
        try {
            const fs::path path = fs::canonical(file);
            if (files.contains(path.string()))
                continue;
            const Entry entry = load(path);
            files.emplace(path.string(), entry);
            profiles.push_back(entry.profile);
        } catch (const ProfileError& error) {
            m_brokenFiles.push_back({platform::readablePath(file.filename()), error.reason()});
        } catch (const fs::filesystem_error& error) {
            m_brokenFiles.push_back({platform::readablePath(file.filename()), error.code().message()});
        }
    }
    m_files = std::move(files);
    std::erase_if(m_unsaved, [&profiles](const Pointer& profile) {
        return std::find(profiles.begin(), profiles.end(), profile) != profiles.end();
    });
    profiles.insert(profiles.end(), m_unsaved.begin(), m_unsaved.end());
    m_profiles = std::move(profiles);
}

std::vector<fs::path> ProfileFolder::list(const fs::path& folder)
{
    std::vector<fs::path> files;
    if (folder.empty())
        return files;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (isCandidate(*entry))
            files.push_back(entry->path());
    }
    if (error && error != std::errc::no_such_file_or_directory)
        m_brokenFiles.push_back({platform::readablePath(folder), error.message()});
    std::sort(files.begin(), files.end());
    return files;
}

ProfileFolder::Entry ProfileFolder::load(const fs::path& path) const
{
    // Taken before the file is read, so that what changes meanwhile is seen the next time.
    const FileStamp stamp = FileStamp::of(path);
    const auto before = m_files.find(path.string());
    if (before != m_files.end() && before->second.stamp == stamp)
        return before->second;
    // Taken before as well: then it never is that of a later content than the profile's.
    const std::optional<std::size_t> digest = digestOf(path);
    if (before != m_files.end() && digest && before->second.stamp.size == stamp.size
        && before->second.digest == digest)
        return Entry{stamp, digest, before->second.profile};
    const Pointer loaded = ProfileDataWrapper::fromFile(path.string(), true);
    const Pointer same = wrapperWith(path, *loaded);
    return Entry{stamp, digest, same ? same : loaded};
}

/// The wrapper that holds what was loaded, as it does when it has just been saved there.
ProfileFolder::Pointer ProfileFolder::wrapperWith(
    const fs::path& path, const ProfileDataWrapper& loaded) const
{
    const auto found = std::find_if(m_unsaved.begin(), m_unsaved.end(), [&](const Pointer& profile) {
        return profile->data().fileName() == path.filename() && isSaved(profile->data(), loaded.data());
    });
    if (found != m_unsaved.end())
        return *found;
    const auto before = m_files.find(path.string());
    if (before != m_files.end() && isSaved(before->second.profile->data(), loaded.data()))
        return before->second.profile;
    return nullptr;
}

void ProfileFolder::add(Pointer profile)
{
    m_unsaved.push_back(profile);
    m_profiles.push_back(std::move(profile));
}

void ProfileFolder::remove(const ProfileDataWrapper& profile)
{
    const auto isIt = [&profile](const Pointer& other) {
        return other.get() == &profile;
    };
    std::erase_if(m_profiles, isIt);
    std::erase_if(m_unsaved, isIt);
}

bool ProfileFolder::mayOverwrite(const ProfileDataWrapper& profile, const fs::path& path) const
{
    std::error_code error;
    if (!fs::exists(fs::symlink_status(path, error)))
        return true;
    const auto found = m_files.find(fs::canonical(path, error).string());
    if (error || found == m_files.end() || found->second.profile.get() != &profile)
        return false;
    const Entry& entry = found->second;
    return FileStamp::of(path) == entry.stamp || (entry.digest && digestOf(path) == entry.digest);
}

ProfileFolder::Pointer ProfileFolder::findFile(const fs::path& path) const
{
    std::error_code error;
    const fs::path canonical = fs::canonical(path, error);
    const auto found = m_files.find(canonical.string());
    return error || found == m_files.end() ? nullptr : found->second.profile;
}
