#include "GuardedFile.h"

#include "FileErrors.h"

#include <array>
#include <cerrno>
#include <cstdint>

#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace platform {

namespace {

OpenedFile refused(const std::filesystem::path& path, const std::string& why, bool absent = false)
{
    return OpenedFile{nullptr, "Cannot read " + readablePath(path) + ": " + why, absent, why};
}

std::string tooLarge(std::size_t limit)
{
    return "it is larger than " + std::to_string(limit) + " bytes";
}

} // namespace

#ifdef _WIN32

OpenedFile openForReading(const std::filesystem::path& path, std::size_t limit)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found)
        return refused(path, "there is no such file", true);
    if (!std::filesystem::is_regular_file(status))
        return refused(path, "it is not a regular file");
    if (std::filesystem::file_size(path, error) > limit)
        return refused(path, tooLarge(limit));
    FileStream stream(_wfopen(path.c_str(), L"rb"));
    if (!stream)
        return refused(path, errorText(errno));
    return OpenedFile{std::move(stream), {}, false, {}};
}

FileStream openAgain(int descriptor)
{
    const int copy = _dup(descriptor);
    return FileStream(copy < 0 ? nullptr : _fdopen(copy, "rb"));
}

#else

FileStream openAgain(int descriptor)
{
    const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    FileStream stream(copy < 0 ? nullptr : fdopen(copy, "rb"));
    if (copy >= 0 && !stream)
        close(copy);
    return stream;
}

OpenedFile openForReading(const std::filesystem::path& path, std::size_t limit)
{
    // O_NONBLOCK: opening a FIFO without a writer would wait for one.
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        return refused(path, errorText(errno), errno == ENOENT);
    struct stat status { };
    std::string why;
    if (fstat(descriptor, &status) != 0)
        why = errorText(errno);
    else if (!S_ISREG(status.st_mode))
        why = "it is not a regular file";
    else if (static_cast<std::uintmax_t>(status.st_size) > limit)
        why = tooLarge(limit);
    FileStream stream(why.empty() ? fdopen(descriptor, "rb") : nullptr);
    if (stream)
        return OpenedFile{std::move(stream), {}, false, {}};
    if (why.empty())
        why = errorText(errno);
    close(descriptor);
    return refused(path, why);
}

#endif

FileBytes readStream(std::FILE* stream, std::size_t limit)
{
    FileBytes result;
    std::array<char, 16384> piece{};
    std::size_t count = 0;
    // A file may grow while it is read, so the limit holds here as well.
    while ((count = std::fread(piece.data(), 1, piece.size(), stream)) > 0) {
        if (count > limit - result.bytes.size()) {
            result.bytes.clear();
            result.reason = tooLarge(limit);
            return result;
        }
        result.bytes.append(piece.data(), count);
    }
    result.ok = std::ferror(stream) == 0;
    if (!result.ok) {
        result.bytes.clear();
        result.reason = errorText(errno);
    }
    return result;
}

FileBytes readFile(const std::filesystem::path& path, std::size_t limit)
{
    OpenedFile opened = openForReading(path, limit);
    if (!opened.stream)
        return FileBytes{false, {}, std::move(opened.reason), opened.absent};
    FileBytes result = readStream(opened.stream.get(), limit);
    if (!result.ok)
        result.reason = "Cannot read " + readablePath(path) + ": " + result.reason;
    return result;
}

} // namespace platform
