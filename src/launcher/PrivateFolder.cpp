#include "PrivateFolder.h"

#include "GuardedFile.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace launcher {

namespace {

constexpr std::string_view prefix = "corvale-run-";
constexpr const char* lockName = "lock";
/// A younger folder may belong to a launcher that has not locked it yet.
constexpr std::time_t youngestStale = 60; // seconds
constexpr std::size_t environmentLimit = 4U << 20U; // bytes

bool isLauncherDead(const std::string& folder)
{
    const Descriptor lock(open((folder + "/" + lockName).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    return !lock || flock(lock.number(), LOCK_EX | LOCK_NB) == 0;
}

void removeStale(const std::string& parent)
{
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(parent, error)) {
        const std::string path = entry.path().string();
        struct stat status { };
        if (!entry.path().filename().string().starts_with(prefix) || lstat(path.c_str(), &status) != 0
            || !S_ISDIR(status.st_mode) || status.st_uid != getuid()
            || status.st_mtime > std::time(nullptr) - youngestStale)
            continue;
        if (isLauncherDead(path) && !isInAnEnvironment(path))
            fs::remove_all(path, error);
    }
}

std::string folderOf(const char* variable)
{
    const char* value = std::getenv(variable);
    return value && *value == '/' ? value : "";
}

} // namespace

PrivateFolder::PrivateFolder()
{
    for (const std::string& parent : {folderOf("XDG_RUNTIME_DIR"), folderOf("TMPDIR"), std::string("/tmp")}) {
        if (!parent.empty() && makeIn(parent))
            return;
    }
}

PrivateFolder::~PrivateFolder()
{
    if (m_path.empty())
        return;
    unlink(socketPath().c_str());
    // A process that outlives us would no longer find an EGL at all without our file.
    std::error_code error;
    if (!isInAnEnvironment(m_path))
        fs::remove_all(m_path, error);
}

bool PrivateFolder::makeIn(const std::string& parent)
{
    removeStale(parent);
    std::string path = parent + "/" + std::string(prefix) + "XXXXXX";
    // A shorter one may be next.
    if (path.size() + std::string_view("/control").size() >= sizeof sockaddr_un::sun_path)
        return false;
    if (!mkdtemp(path.data()))
        return false;
    m_path = path;
    m_lock = Descriptor(open((m_path + "/" + lockName).c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0600));
    if (m_lock)
        flock(m_lock.number(), LOCK_EX | LOCK_NB);
    return true;
}

bool PrivateFolder::write(const std::string& name, const std::string& content) const
{
    std::ofstream file(m_path + "/" + name, std::ios::binary);
    file << content;
    file.close();
    return file.good();
}

bool isInAnEnvironment(const std::string& text)
{
    std::error_code error;
    const std::string own = std::to_string(getpid());
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc", error)) {
        const std::string process = entry.path().filename().string();
        if (process.find_first_not_of("0123456789") != std::string::npos || process == own)
            continue;
        const platform::FileBytes environment =
            platform::readFile(entry.path() / "environ", environmentLimit);
        if (environment.bytes.find(text) != std::string::npos)
            return true;
    }
    return false;
}

} // namespace launcher
