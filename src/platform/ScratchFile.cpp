#include "ScratchFile.h"

#include "FileErrors.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

namespace platform {

namespace {

#ifdef _WIN32

std::FILE* openNameless()
{
    return std::tmpfile();
}

bool seek(std::FILE* stream, std::uint64_t offset)
{
    return _fseeki64(stream, static_cast<long long>(offset), SEEK_SET) == 0;
}

#else

std::FILE* openNamelessIn(const std::string& folder)
{
    std::string path = folder + "/corvale-XXXXXX";
    const int descriptor = mkostemp(path.data(), O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    unlink(path.c_str());
    std::FILE* stream = fdopen(descriptor, "w+b");
    if (!stream)
        close(descriptor);
    return stream;
}

/// Where nothing is said, the folder for large files comes first: the other one may live in memory.
std::FILE* openNameless()
{
    const char* chosen = std::getenv("TMPDIR");
    if (chosen && *chosen != '\0')
        return openNamelessIn(chosen);
    std::FILE* stream = openNamelessIn("/var/tmp");
    return stream ? stream : openNamelessIn("/tmp");
}

bool seek(std::FILE* stream, std::uint64_t offset)
{
    return fseeko(stream, static_cast<off_t>(offset), SEEK_SET) == 0;
}

#endif

} // namespace

FileStream openNamelessFile()
{
    return FileStream(openNameless());
}

bool ScratchFile::open()
{
    if (m_stream)
        return true;
    m_stream = openNamelessFile();
    if (!m_stream)
        return fail();
    // Whole blocks come from above; a second buffer would only delay the news of a full disk.
    std::setvbuf(m_stream.get(), nullptr, _IONBF, 0);
    return true;
}

bool ScratchFile::append(std::string_view bytes)
{
    if (!open())
        return false;
    if (!seek(m_stream.get(), m_size)
        || std::fwrite(bytes.data(), 1, bytes.size(), m_stream.get()) != bytes.size()) {
        std::clearerr(m_stream.get());
        return fail();
    }
    m_size += bytes.size();
    m_reason.clear();
    return true;
}

std::string ScratchFile::read(std::uint64_t offset, std::size_t count) const
{
    std::string bytes;
    if (!m_stream || offset >= m_size || !seek(m_stream.get(), offset))
        return bytes;
    bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(count, m_size - offset)));
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), m_stream.get()));
    return bytes;
}

bool ScratchFile::fail()
{
    m_reason = errorText(errno);
    return false;
}

} // namespace platform
