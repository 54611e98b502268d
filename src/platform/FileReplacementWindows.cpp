#include "FileErrors.h"
#include "FileReplacement.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>

namespace platform {

bool FileReplacement::findTarget(const std::filesystem::path& path)
{
    std::error_code error;
    m_target = path;
    const std::filesystem::file_status status = std::filesystem::status(m_target, error);
    m_hasOld = std::filesystem::exists(status);
    if (!path.has_filename() || (m_hasOld && !std::filesystem::is_regular_file(status)))
        return fail("replace", EINVAL);
    m_temporary = m_target;
    m_temporary += L".tmp";
    return true;
}

/// Nobody else may open the file meanwhile; that is the lock.
bool FileReplacement::claimTemporary(WhenTaken /*whenTaken*/)
{
    const errno_t error = _wsopen_s(&m_descriptor, m_temporary.c_str(),
        _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY, _SH_DENYRW, _S_IREAD | _S_IWRITE);
    return error == 0 || fail("write", error);
}

bool FileReplacement::keepAttributes()
{
    return true;
}

bool FileReplacement::writeAll(std::string_view bytes)
{
    constexpr std::size_t largest = std::numeric_limits<int>::max();
    while (!bytes.empty()) {
        const int written =
            _write(m_descriptor, bytes.data(), static_cast<unsigned int>(std::min(bytes.size(), largest)));
        if (written <= 0)
            return fail("write", written < 0 ? errno : ENOSPC);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool FileReplacement::sync()
{
    return _commit(m_descriptor) == 0 || fail("write", errno);
}

bool FileReplacement::moveIntoPlace()
{
    const bool closed = _close(m_descriptor) == 0;
    m_descriptor = -1;
    if (closed
        && MoveFileExW(
            m_temporary.c_str(), m_target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return true;
    DeleteFileW(m_temporary.c_str());
    return fail("replace", EACCES);
}

void FileReplacement::abandon()
{
    if (m_descriptor < 0)
        return;
    _close(m_descriptor);
    m_descriptor = -1;
    DeleteFileW(m_temporary.c_str());
}

} // namespace platform
