#include "SessionWriter.h"

#include "FileErrors.h"
#include "Hash.h"
#include "PackedPayload.h"
#include "ScratchFile.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zstd.h>

namespace sessions {

namespace {

/// A block is written when it has as many bytes: few enough to be read within some milliseconds.
constexpr std::size_t blockSize = std::size_t{256} << 10U;
constexpr int compressionLevel = 1;
/// A block that is full sooner is part of a flood, which compression would slow down by a tenth.
constexpr SessionTime floodTime = std::chrono::milliseconds(50);
/// What is not worth compressing.
constexpr std::size_t smallBlock = 256;

/// Whether a file may be replaced by a session: nothing is lost of what is empty or a session itself.
bool mayReplace(int file, off_t size)
{
    std::array<char, format::magic.size()> start{};
    return size == 0
        || (pread(file, start.data(), start.size(), 0) == ssize_t{start.size()}
            && std::string_view(start.data(), start.size()) == format::magic);
}

} // namespace

struct SessionWriter::Compressor {
    ZSTD_CCtx* context = ZSTD_createCCtx();
    std::string output;

    Compressor() = default;
    ~Compressor() { ZSTD_freeCCtx(context); }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    /// The content as it is to be stored: a frame, which has another size, or the content itself.
    std::string_view compress(std::string_view content, int level)
    {
        if (content.size() < smallBlock)
            return content;
        output.resize(std::max(output.size(), ZSTD_compressBound(content.size())));
        ZSTD_CCtx_setParameter(context, ZSTD_c_compressionLevel, level);
        ZSTD_CCtx_setParameter(context, ZSTD_c_checksumFlag, 1);
        const std::size_t size =
            ZSTD_compress2(context, output.data(), output.size(), content.data(), content.size());
        if (ZSTD_isError(size) != 0 || size == content.size())
            return content;
        return {output.data(), size};
    }
};

SessionWriter::SessionWriter() = default;

SessionWriter::~SessionWriter()
{
    if (m_file >= 0 || m_output)
        close();
}

bool SessionWriter::open(const std::filesystem::path& path)
{
    return claim(path) && begin();
}

bool SessionWriter::open(const std::filesystem::path& path, std::chrono::system_clock::time_point begin)
{
    return claim(path) && this->begin(begin, false);
}

bool SessionWriter::openNameless()
{
    const platform::FileStream file = platform::openNamelessFile();
    m_file = file ? fcntl(fileno(file.get()), F_DUPFD_CLOEXEC, 0) : -1;
    if (m_file < 0)
        m_reason = platform::errorText(errno);
    return m_file >= 0 && begin();
}

bool SessionWriter::open(Output output, std::chrono::system_clock::time_point begin)
{
    m_output = std::move(output);
    return this->begin(begin, false);
}

bool SessionWriter::begin(std::chrono::system_clock::time_point begin, bool isLive)
{
    m_isLive = isLive;
    if (m_file >= 0 && ftruncate(m_file, 0) != 0) {
        fail(errno);
        return false;
    }
    m_compressor = std::make_unique<Compressor>();
    m_begin = std::chrono::steady_clock::now();
    std::string head(format::magic);
    format::putNumber(head, format::version, 4);
    format::putNumber(head, 0, 4);
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::microseconds>(begin.time_since_epoch());
    format::putNumber(head, static_cast<std::uint64_t>(sinceEpoch.count()), 8);
    write(head);
    return ok();
}

bool SessionWriter::claim(const std::filesystem::path& path)
{
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    m_file = ::open(path.c_str(), flags, 0666);
    struct stat status { };
    const bool isOpen = m_file >= 0 && fstat(m_file, &status) == 0;
    if (isOpen && !S_ISREG(status.st_mode))
        m_reason = "it is no regular file";
    else if (isOpen && !mayReplace(m_file, status.st_size))
        m_reason = "the file that is there is no session, and is not replaced";
    else if (!isOpen)
        m_reason = platform::errorText(errno);
    if (m_reason.empty())
        return true;
    if (m_file >= 0)
        ::close(m_file);
    m_file = -1;
    return false;
}

SessionTime SessionWriter::timeAt(std::chrono::steady_clock::time_point time) const
{
    // What came before the session began counts as its first.
    return std::max(std::chrono::duration_cast<SessionTime>(time - m_begin), SessionTime());
}

std::uint32_t SessionWriter::beginClient(
    std::uint32_t pid, std::string_view name, std::string_view device, SessionTime time)
{
    if (m_clientCount == format::clientLimit && m_reason.empty())
        m_reason = "there are too many processes";
    const std::uint32_t number = m_clientCount++;
    std::string content;
    format::putNumber(content, number, 4);
    format::putNumber(content, pid, 4);
    format::putNumber(content, static_cast<std::uint64_t>(time.count()), 8);
    format::putText(content, name);
    format::putText(content, device);
    writeBlock(format::clientBlock, content, 0, time);
    return number;
}

void SessionWriter::setDevice(std::uint32_t client, std::string_view device, SessionTime time)
{
    std::string content;
    format::putNumber(content, client, 4);
    format::putText(content, device);
    writeBlock(format::deviceBlock, content, 0, time);
}

void SessionWriter::add(std::uint32_t client, const Record& record, SessionTime time)
{
    if (!ok())
        return;
    if (m_recordCount++ == 0)
        m_firstTime = time;
    m_lastTime = time;
    const std::size_t start = m_records.size();
    m_records.resize(start + format::recordHeadSize);
    packPayload(record.type, record.payload, m_records);
    const std::size_t size = m_records.size() - start - format::recordHeadSize;
    char* head = m_records.data() + start;
    head = format::storeNumber(head, static_cast<std::uint16_t>(size));
    head = format::storeNumber(head, static_cast<std::uint16_t>(record.type));
    head = format::storeNumber(head, client);
    head = format::storeNumber(head, record.frame);
    format::storeNumber(head, static_cast<std::uint64_t>(time.count()));
    if (m_records.size() >= blockSize)
        flush();
}

void SessionWriter::endClient(std::uint32_t client, ClientEnd end, std::string_view text, SessionTime time)
{
    flush();
    std::string content;
    format::putNumber(content, client, 4);
    format::putNumber(content, static_cast<std::uint32_t>(end), 4);
    format::putNumber(content, static_cast<std::uint64_t>(time.count()), 8);
    format::putText(content, text);
    writeBlock(format::endBlock, content, 0, time);
}

bool SessionWriter::isFlooded() const
{
    return m_isLive && m_records.size() >= blockSize && m_lastTime - m_firstTime < floodTime;
}

void SessionWriter::flush()
{
    if (m_recordCount > 0)
        writeBlock(format::recordsBlock, m_records, m_recordCount, m_firstTime);
    m_records.clear();
    m_recordCount = 0;
}

void SessionWriter::writeBlock(
    std::uint32_t kind, std::string_view content, std::uint32_t count, SessionTime time)
{
    if (!ok())
        return;
    const std::string_view stored =
        m_compressor->compress(content, isFlooded() ? ZSTD_minCLevel() : compressionLevel);
    format::BlockHead head;
    head.kind = kind;
    head.storedSize = static_cast<std::uint32_t>(stored.size());
    head.size = static_cast<std::uint32_t>(content.size());
    head.count = count;
    head.time = time;
    // Frames have checksums of their own, which take a tenth of the time.
    head.checksum = stored.size() == content.size() ? platform::fnv1(stored) : 0;
    m_block.assign(head.bytes()).append(stored);
    write(m_block);
}

void SessionWriter::write(std::string_view bytes)
{
    if (m_output)
        m_reason = m_output(bytes);
    if (m_output ? m_reason.empty() : writeToFile(bytes))
        m_size += bytes.size();
}

bool SessionWriter::writeToFile(std::string_view bytes)
{
    std::uint64_t place = m_size;
    while (!bytes.empty()) {
        const ssize_t size = pwrite(m_file, bytes.data(), bytes.size(), static_cast<off_t>(place));
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0) {
            fail(size < 0 ? errno : ENOSPC);
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(size));
        place += static_cast<std::uint64_t>(size);
    }
    return true;
}

void SessionWriter::fail(int error)
{
    m_reason = platform::errorText(error);
    // A reader would manage as well, but would have to say that the file is damaged.
    [[maybe_unused]] const int result = ftruncate(m_file, static_cast<off_t>(m_size));
}

platform::FileStream SessionWriter::again() const
{
    return platform::openAgain(m_file);
}

bool SessionWriter::close()
{
    if (m_file < 0 && !m_output)
        return false;
    flush();
    if (m_file >= 0 && ::close(m_file) != 0 && m_reason.empty())
        m_reason = platform::errorText(errno);
    m_file = -1;
    m_output = nullptr;
    m_compressor.reset();
    return m_reason.empty();
}

} // namespace sessions
