#include "FileErrors.h"
#include "FileReplacement.h"

#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr int maximumLinks = 40;
constexpr int maximumClaims = 100;
constexpr std::chrono::seconds lockPatience{5};
constexpr std::chrono::milliseconds lockPause{1};
constexpr mode_t permissionBits = 07777;

/// Waits for the lock with limits: a process that is stopped in the middle must not stop others for ever.
/// File systems without locks must do without.
bool lockPatiently(int descriptor, std::chrono::seconds patience)
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return errno == ENOLCK || errno == ENOTSUP || errno == ENOSYS;
        if (std::chrono::steady_clock::now() >= deadline) {
            errno = EBUSY;
            return false;
        }
        std::this_thread::sleep_for(lockPause);
    }
    return true;
}

std::filesystem::path folderOf(const std::filesystem::path& path)
{
    return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

/// Some file systems cannot sync a folder, and a folder may be writable without being readable: both are no
/// failure.
bool syncFolder(const std::filesystem::path& folder)
{
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return errno == EACCES;
    const bool ok = fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    const int errorNumber = errno;
    close(descriptor);
    errno = errorNumber;
    return ok;
}

} // namespace

bool FileReplacement::findTarget(const std::filesystem::path& path)
{
    m_target = path;
    if (!path.has_filename())
        return fail("replace", EINVAL);
    std::error_code error;
    for (int links = 0; std::filesystem::is_symlink(m_target, error); ++links) {
        if (links == maximumLinks)
            return fail("replace", ELOOP);
        // An absolute link replaces the whole path here, a relative one only the name.
        m_target = m_target.parent_path() / std::filesystem::read_symlink(m_target, error);
        if (error)
            return fail("replace", error.value());
    }
    m_temporary = m_target;
    m_temporary += ".tmp";

    struct stat status { };
    if (stat(m_target.c_str(), &status) != 0)
        return errno == ENOENT || fail("replace", errno);
    if (!S_ISREG(status.st_mode))
        return fail("replace", S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    // The move would go through, but who takes the right to write from a file means its content to stay.
    if (faccessat(AT_FDCWD, m_target.c_str(), W_OK, AT_EACCESS) != 0)
        return fail("replace", errno);
    m_hasOld = true;
    m_mode = status.st_mode & permissionBits;
    m_owner = status.st_uid;
    m_group = status.st_gid;
    return true;
}

/// Opens, locks and empties the temporary file. While we waited for the lock, its former owner may have moved
/// the file away; then the lock is on the wrong file, and it starts
/// anew, though not for ever.
bool FileReplacement::claimTemporary(WhenTaken whenTaken)
{
    const auto patience = whenTaken == WhenTaken::Wait ? lockPatience : std::chrono::seconds(0);
    const mode_t creationMode = m_hasOld ? 0600 : 0666;
    for (int claims = 0; claims < maximumClaims; ++claims) {
        const int descriptor = open(m_temporary.c_str(),
            O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, creationMode);
        if (descriptor < 0)
            return fail("write", errno);
        struct stat opened { };
        struct stat named { };
        const bool locked =
            fstat(descriptor, &opened) == 0 && S_ISREG(opened.st_mode) && lockPatiently(descriptor, patience);
        if (!locked) {
            const int errorNumber = S_ISREG(opened.st_mode) ? errno : EINVAL;
            close(descriptor);
            fail("write", errorNumber);
            m_isTaken = errorNumber == EBUSY;
            if (m_isTaken)
                m_reason = "Cannot write " + readablePath(m_target) + ": it is being written already";
            return false;
        }
        if (lstat(m_temporary.c_str(), &named) == 0 && named.st_ino == opened.st_ino
            && named.st_dev == opened.st_dev) {
            m_descriptor = descriptor;
            return ftruncate(descriptor, 0) == 0 || fail("write", errno);
        }
        close(descriptor);
    }
    return fail("write", EBUSY);
}

bool FileReplacement::keepAttributes()
{
    if (!m_hasOld)
        return true;
    struct stat status { };
    if (fstat(m_descriptor, &status) != 0)
        return fail("write", errno);
    // Only the superuser may give files away; for everybody else a file of one's own is the best there is.
    if ((status.st_uid != m_owner || status.st_gid != m_group) && fchown(m_descriptor, m_owner, m_group) != 0
        && errno != EPERM)
        return fail("write", errno);
    // File systems without permissions refuse this; the file is the owner's alone then.
    if ((status.st_mode & permissionBits) != m_mode && fchmod(m_descriptor, m_mode) != 0 && errno != EPERM)
        return fail("write", errno);
    return true;
}

bool FileReplacement::writeAll(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(m_descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return fail("write", errno);
        if (written > 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool FileReplacement::sync()
{
    if (fsync(m_descriptor) != 0)
        return fail("write", errno);
    // Network file systems report late errors on close; the lock has to outlive it, so a duplicate is closed.
    const int duplicate = fcntl(m_descriptor, F_DUPFD_CLOEXEC, 0);
    if (duplicate >= 0 && close(duplicate) != 0)
        return fail("write", errno);
    return true;
}

bool FileReplacement::moveIntoPlace()
{
    if (rename(m_temporary.c_str(), m_target.c_str()) != 0)
        return fail("replace", errno);
    close(m_descriptor);
    m_descriptor = -1;
    return syncFolder(folderOf(m_target)) || fail("sync the folder of", errno);
}

void FileReplacement::abandon()
{
    if (m_descriptor < 0)
        return;
    // The lock is ours, so the file of that name is ours too.
    unlink(m_temporary.c_str());
    close(m_descriptor);
    m_descriptor = -1;
}

} // namespace platform
