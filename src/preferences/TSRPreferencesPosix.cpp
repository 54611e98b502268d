#include "TSRPreferencesPosix.h"

#include "FileErrors.h"
#include "FileReplacement.h"
#include "GuardedFile.h"
#include "Limits.h"
#include "PropertyList.h"

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// A memory stream and the file that it shall become.
struct PosixFile : TSRPreferencesFile {
    PosixFile() = default;
    ~PosixFile() override
    {
        closeStream();
        std::free(buffer);
    }
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;

    bool closeStream()
    {
        const bool closed = !stream || std::fclose(stream) == 0;
        stream = nullptr;
        return closed;
    }

    std::optional<platform::FileReplacement> replacement;
    char* buffer = nullptr;
    std::size_t size = 0;
};

std::string_view environment(const char* variable)
{
    const char* value = std::getenv(variable);
    return value ? value : "";
}

/// Relative paths in these variables count as none, so that nothing depends on the working directory.
std::optional<fs::path> absolute(std::string_view path)
{
    return path.starts_with('/') ? std::optional<fs::path>(path) : std::nullopt;
}

std::optional<fs::path> homeConfiguration()
{
    const std::optional<fs::path> home = absolute(environment("HOME"));
    return home ? std::optional(*home / ".config") : std::nullopt;
}

/// The folder that ours is in.
std::optional<fs::path> parentFolder(int folderKind)
{
    if (folderKind == TSRPreferencesImpl::allUsers) {
        const std::string_view folders = environment("XDG_CONFIG_DIRS");
        const std::optional<fs::path> shared = absolute(folders.substr(0, folders.find(':')));
        return shared ? shared : fs::path("/etc/xdg");
    }
    const std::optional<fs::path> own = absolute(environment("XDG_CONFIG_HOME"));
    return own ? own : homeConfiguration();
}

std::string failure(const char* what, const fs::path& path)
{
    const int errorNumber = errno;
    return std::string("Cannot ") + what + ' ' + platform::readablePath(path) + ": "
        + platform::errorText(errorNumber);
}

std::FILE* openInPlace(const fs::path& path)
{
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0666);
    struct stat status { };
    if (descriptor < 0)
        return nullptr;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && ftruncate(descriptor, 0) == 0) {
        if (std::FILE* stream = fdopen(descriptor, "wb"))
            return stream;
    }
    ::close(descriptor);
    return nullptr;
}

} // namespace

bool TSRPreferencesPosix::folderPath(std::string& path, int folderKind)
{
    const std::optional<fs::path> parent = parentFolder(folderKind);
    if (parent)
        path = (*parent / folderName).native();
    return parent.has_value();
}

std::unique_ptr<TSRPreferencesFile> TSRPreferencesPosix::open(
    const std::string& storeName, Mode mode, int folderKind, bool atomic, std::string& error)
{
    auto file = std::make_unique<PosixFile>();
    error = openFailure;
    m_openFailureReason.clear();
    m_isTaken = false;
    std::string folder;
    if (!folderPath(folder, folderKind)) {
        m_openFailureReason = "There is no folder for preferences: set HOME to your home folder";
        return file;
    }
    file->path = fs::path(folder) / (storeName + ".plist");
    if (mode == Mode::Read) {
        file->stream = openForReading(file->path, folderKind);
    } else if (!atomic) {
        file->stream = openInPlace(file->path);
        if (!file->stream)
            m_openFailureReason = failure("write", file->path);
    } else {
        file->replacement.emplace(file->path, whenTaken());
        if (file->replacement->ready())
            file->stream = open_memstream(&file->buffer, &file->size);
        m_replacing = file->stream != nullptr;
        m_openFailureReason = file->replacement->reason();
        m_isTaken = file->replacement->isTaken();
        if (!m_replacing && m_openFailureReason.empty())
            m_openFailureReason = failure("write", file->path);
    }
    return file;
}

platform::FileReplacement::WhenTaken TSRPreferencesPosix::whenTaken() const
{
    return m_waits ? platform::FileReplacement::WhenTaken::Wait
                   : platform::FileReplacement::WhenTaken::Refuse;
}

std::FILE* TSRPreferencesPosix::openForReading(const fs::path& path, int folderKind)
{
    platform::OpenedFile opened = platform::openForReading(path, platform::limits::fileSize);
    if (opened.absent && !m_replacing) {
        const std::string reason = createFile(path, folderKind);
        opened = platform::openForReading(path, platform::limits::fileSize);
        if (opened.absent && !reason.empty())
            opened.reason = reason;
    }
    m_openFailureReason = opened.reason;
    return opened.stream.release();
}

/// Our folder is made as well, and of its missing parents the user's configuration folder, which a new
/// account may lack.
std::string TSRPreferencesPosix::createFile(const fs::path& path, int folderKind) const
{
    const std::optional<fs::path> parent = parentFolder(folderKind);
    if (folderKind != allUsers && parent)
        mkdir(parent->c_str(), 0700);
    const fs::path folder = path.parent_path();
    if (mkdir(folder.c_str(), folderKind == allUsers ? 0755 : 0700) != 0 && errno != EEXIST)
        return failure("make the folder", folder);
    platform::FileReplacement replacement(path, whenTaken());
    // Another process may have made the file, and filled it, while we waited for our turn.
    if (replacement.ready() && platform::openForReading(path, platform::limits::fileSize).absent)
        return replacement.commit(property_list::emptyFile).reason;
    return replacement.reason();
}

void TSRPreferencesPosix::close(std::unique_ptr<TSRPreferencesFile> file, bool commit)
{
    auto& own = static_cast<PosixFile&>(*file);
    const bool hadStream = own.stream != nullptr;
    m_commitFailure.clear();
    const bool closed = own.closeStream();
    if (!own.replacement)
        return;
    m_replacing = false;
    if (!hadStream || !commit)
        return;
    m_commitFailure =
        closed ? own.replacement->commit({own.buffer, own.size}).reason : platform::errorText(errno);
}

bool TSRPreferencesPosix::modificationStamp(
    const std::string& storeName, int folderKind, std::uint32_t& stamp)
{
    std::string folder;
    struct stat status { };
    if (!folderPath(folder, folderKind)
        || stat((fs::path(folder) / (storeName + ".plist")).c_str(), &status) != 0)
        return false;
    stamp = stampOf(static_cast<std::uint32_t>(status.st_mtime));
    return true;
}
