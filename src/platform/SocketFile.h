#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace platform {

/// True when the path names a socket file (the link itself is looked at, not its target) that belongs to the
/// user of this process. Such a file is what a crashed run of this program leaves behind. Always true where
/// sockets are no files.
bool isOwnSocketFile(const std::string& path);

/// True when a file of any kind belongs to the user of this process, looked at as above.
bool isOwnFile(const std::string& path);

/// Device and inode number of the file at a path, looked at as above; zeros where there is none.
std::pair<std::uint64_t, std::uint64_t> fileIdentity(const std::string& path);

/// The number of the user of this process; 0 where users have none.
unsigned int userId();

/// While it lives, files are created for their owner alone (umask 077), so that only the user can connect to
/// a socket that is made meanwhile.
class OwnerOnlyFiles {
public:
    OwnerOnlyFiles();
    ~OwnerOnlyFiles();
    OwnerOnlyFiles(const OwnerOnlyFiles&) = delete;
    OwnerOnlyFiles& operator=(const OwnerOnlyFiles&) = delete;

private:
    unsigned int m_before = 0;
};

} // namespace platform
