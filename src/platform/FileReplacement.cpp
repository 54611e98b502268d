#include "FileReplacement.h"

#include "FileErrors.h"

// What every system does the same way; the steps themselves are in a file for each system.
namespace platform {

FileReplacement::FileReplacement(const std::filesystem::path& path)
{
    if (findTarget(path) && !claimTemporary())
        abandon();
}

FileReplacement::~FileReplacement()
{
    abandon();
}

bool FileReplacement::append(std::string_view bytes)
{
    if (ready() && !writeAll(bytes))
        abandon();
    return ready();
}

FileResult FileReplacement::commit(std::string_view bytes)
{
    if (ready() && !(keepAttributes() && writeAll(bytes) && sync() && moveIntoPlace()))
        abandon();
    return FileResult{m_reason};
}

bool FileReplacement::fail(const std::string& what, int errorNumber)
{
    m_reason = "Cannot " + what + ' ' + readablePath(m_target) + ": " + errorText(errorNumber);
    return false;
}

FileResult replaceFile(const std::filesystem::path& path, std::string_view bytes)
{
    return FileReplacement(path).commit(bytes);
}

} // namespace platform
