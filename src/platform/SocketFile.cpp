#include "SocketFile.h"

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace platform {

#ifdef _WIN32

// Local servers are named pipes here: they leave no file, and their access rights are set elsewhere.
bool isOwnSocketFile(const std::string&)
{
    return true;
}
bool isOwnFile(const std::string&)
{
    return false;
}
std::pair<std::uint64_t, std::uint64_t> fileIdentity(const std::string&)
{
    return {};
}
unsigned int userId()
{
    return 0;
}
OwnerOnlyFiles::OwnerOnlyFiles() = default;
OwnerOnlyFiles::~OwnerOnlyFiles() = default;

#else

bool isOwnSocketFile(const std::string& path)
{
    struct stat status { };
    return lstat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode) && status.st_uid == geteuid();
}

bool isOwnFile(const std::string& path)
{
    struct stat status { };
    return lstat(path.c_str(), &status) == 0 && status.st_uid == geteuid();
}

std::pair<std::uint64_t, std::uint64_t> fileIdentity(const std::string& path)
{
    struct stat status { };
    return lstat(path.c_str(), &status) == 0
        ? std::pair<std::uint64_t, std::uint64_t>(status.st_dev, status.st_ino)
        : std::pair<std::uint64_t, std::uint64_t>();
}

unsigned int userId()
{
    return geteuid();
}

OwnerOnlyFiles::OwnerOnlyFiles()
    : m_before(umask(077))
{
}

OwnerOnlyFiles::~OwnerOnlyFiles()
{
    umask(static_cast<mode_t>(m_before));
}

#endif

} // namespace platform
