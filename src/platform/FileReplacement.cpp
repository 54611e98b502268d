#include "FileReplacement.h"

#include "FileErrors.h"

// What every system does the same way; the steps themselves are in a file for each system.
namespace platform {

namespace {

/// Bytes that a disk takes within some milliseconds.
constexpr std::size_t syncStep = 4U << 20U;

} // namespace

FileReplacement::FileReplacement(const std::filesystem::path& path, WhenTaken whenTaken)
{
    if (findTarget(path) && !claimTemporary(whenTaken))
        abandon();
}

FileReplacement::~FileReplacement()
{
    abandon();
}

bool FileReplacement::append(std::string_view bytes)
{
    m_unsynced += bytes.size();
    const bool due = m_unsynced >= syncStep;
    if (ready() && !(writeAll(bytes) && (!due || sync())))
        abandon();
    if (due)
        m_unsynced = 0;
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
