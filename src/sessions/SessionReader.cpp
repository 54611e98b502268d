#include "SessionReader.h"

#include "Hash.h"
#include "PackedPayload.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <unistd.h>
#include <zstd.h>

namespace sessions {

namespace {

/// Blocks that a file may have; their heads are kept in memory.
constexpr std::size_t blockLimit = 2'000'000;

/// Bytes of texts about all processes together.
constexpr std::size_t clientTextLimit = std::size_t{32} << 20U;

constexpr const char* recordsDamaged = "Some records of the session are damaged and left out.";

} // namespace

struct SessionReader::Decompressor {
    ZSTD_DCtx* context = ZSTD_createDCtx();

    Decompressor() = default;
    ~Decompressor() { ZSTD_freeDCtx(context); }
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;
};

SessionReader::SessionReader() = default;
SessionReader::~SessionReader() = default;

bool SessionReader::open(const std::filesystem::path& path)
{
    platform::OpenedFile file = platform::openForReading(path, std::numeric_limits<std::size_t>::max());
    m_reason = file.reason;
    return file.stream && open(std::move(file.stream));
}

bool SessionReader::open(platform::FileStream file)
{
    if (!file) {
        m_reason = "it is not open";
        return false;
    }
    m_file = std::move(file);
    m_reason.clear();
    m_damage.clear();
    m_clients.clear();
    m_blocks.clear();
    m_recordCount = 0;
    m_clientBytes = 0;
    m_decompressor = std::make_unique<Decompressor>();
    if (!readHead())
        return false;
    readBlockHeads();
    return true;
}

bool SessionReader::readHead()
{
    std::string bytes;
    if (!readBytes(0, format::fileHeadSize, bytes)) {
        m_reason = "it is no session: it is too short";
        return false;
    }
    format::ByteSource source(bytes);
    if (source.bytes(format::magic.size()) != format::magic) {
        m_reason = "it is no session";
        return false;
    }
    if (source.u32() != format::version) {
        m_reason = "it is a session of a later version, which this program cannot read";
        return false;
    }
    source.u32();
    m_begin = std::chrono::system_clock::time_point(source.time());
    return true;
}

void SessionReader::readBlockHeads()
{
    std::string bytes;
    for (std::uint64_t place = format::fileHeadSize;;) {
        if (!readBytes(place, format::blockHeadSize, bytes)) {
            if (!bytes.empty())
                noteDamage("The end of the session is missing.");
            return;
        }
        const std::optional<format::BlockHead> head = format::BlockHead::fromBytes(bytes);
        if (!head) {
            noteDamage("The session is damaged; what follows after " + std::to_string(m_recordCount)
                + " records cannot be read.");
            return;
        }
        place += format::blockHeadSize;
        // Only its last byte: that costs no time and tells whether the block is there.
        if (head->storedSize > 0 && !readBytes(place + head->storedSize - 1, 1, bytes)) {
            noteDamage("The end of the session is missing.");
            return;
        }
        if (m_blocks.size() >= blockLimit) {
            noteDamage("The session is too long to be read whole.");
            return;
        }
        if (head->kind == format::recordsBlock) {
            m_blocks.push_back({place, m_recordCount, *head});
            m_recordCount += head->count;
        } else if (head->kind == format::clientBlock) {
            takeClient(*head, place);
        } else if (head->kind == format::deviceBlock) {
            takeDevice(*head, place);
        } else if (head->kind == format::endBlock) {
            takeEnd(*head, place);
        }
        place += head->storedSize;
    }
}

void SessionReader::takeClient(const format::BlockHead& head, std::uint64_t place)
{
    if (!clientContent(head, place))
        return;
    format::ByteSource source(m_content);
    SessionClient client;
    client.number = source.u32();
    client.pid = source.u32();
    client.begin = source.time();
    client.name = source.text();
    client.device = source.text();
    if (!source.ok() || client.number >= format::clientLimit) {
        noteDamage("The session has a process that is damaged.");
        return;
    }
    // There is a gap where a block is damaged.
    for (std::size_t number = m_clients.size(); number <= client.number; ++number)
        m_clients.emplace_back().number = static_cast<std::uint32_t>(number);
    m_clients[client.number] = std::move(client);
}

void SessionReader::takeDevice(const format::BlockHead& head, std::uint64_t place)
{
    if (!clientContent(head, place))
        return;
    format::ByteSource source(m_content);
    const std::uint32_t number = source.u32();
    std::string device = source.text();
    if (source.ok() && number < m_clients.size())
        m_clients[number].device = std::move(device);
    else
        noteDamage("The session has a process whose device is damaged.");
}

void SessionReader::takeEnd(const format::BlockHead& head, std::uint64_t place)
{
    if (!clientContent(head, place))
        return;
    format::ByteSource source(m_content);
    const std::uint32_t number = source.u32();
    const std::uint32_t end = source.u32();
    const SessionTime time = source.time();
    std::string text = source.text();
    if (!source.ok() || number >= m_clients.size() || end > static_cast<std::uint32_t>(ClientEnd::Lost)) {
        noteDamage("The session has a process whose end is damaged.");
        return;
    }
    SessionClient& client = m_clients[number];
    client.end = static_cast<ClientEnd>(end);
    client.endTime = time;
    client.endText = std::move(text);
}

bool SessionReader::clientContent(const format::BlockHead& head, std::uint64_t place)
{
    m_clientBytes += head.size;
    if (head.size <= format::clientBlockLimit && m_clientBytes <= clientTextLimit)
        return content(head, place, m_content);
    noteDamage("The session has more texts about its processes than can be.");
    return false;
}

std::size_t SessionReader::blockOf(std::uint64_t record) const
{
    const auto after = std::upper_bound(m_blocks.begin(), m_blocks.end(), record,
        [](std::uint64_t number, const Block& block) { return number < block.firstRecord; });
    return after == m_blocks.begin() ? 0 : static_cast<std::size_t>(after - m_blocks.begin()) - 1;
}

platform::FileStream SessionReader::again() const
{
    return platform::openAgain(m_file ? fileno(m_file.get()) : -1);
}

bool SessionReader::read(std::size_t block, const Take& take)
{
    if (!load(block))
        return false;
    SessionRecord record;
    while (next(record))
        take(record);
    return m_source.ok();
}

bool SessionReader::load(std::size_t block)
{
    const Block& which = m_blocks.at(block);
    m_left = 0;
    if (!content(which.head, which.place, m_content))
        return false;
    m_source = format::ByteSource(m_content);
    m_left = which.head.count;
    return true;
}

bool SessionReader::next(SessionRecord& record)
{
    if (m_left == 0)
        return false;
    --m_left;
    const auto size = static_cast<std::size_t>(m_source.number(2));
    record.record.type = static_cast<std::uint32_t>(m_source.number(2));
    record.client = m_source.u32();
    record.record.frame = m_source.u32();
    record.time = m_source.time();
    const std::string_view packed = m_source.bytes(size);
    if (!m_source.ok() || record.client >= m_clients.size()) {
        m_source = format::ByteSource::failed();
        m_left = 0;
        noteDamage(recordsDamaged);
        return false;
    }
    unpackPayload(record.record.type, packed, m_payload);
    record.record.payload = m_payload;
    return true;
}

bool SessionReader::content(const format::BlockHead& head, std::uint64_t place, std::string& to)
{
    const bool isStored = head.size == head.storedSize;
    std::string& stored = isStored ? to : m_stored;
    bool isWhole = readBytes(place, head.storedSize, stored);
    if (isWhole && isStored) {
        isWhole = platform::fnv1(stored) == head.checksum;
    } else if (isWhole) {
        to.resize(head.size);
        isWhole =
            ZSTD_decompressDCtx(m_decompressor->context, to.data(), to.size(), stored.data(), stored.size())
            == head.size;
    }
    if (!isWhole)
        noteDamage(recordsDamaged);
    return isWhole;
}

bool SessionReader::readBytes(std::uint64_t place, std::size_t size, std::string& to) const
{
    to.resize(size);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count =
            pread(fileno(m_file.get()), to.data() + done, size - done, static_cast<off_t>(place + done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    to.resize(done);
    return done == size;
}

void SessionReader::noteDamage(const std::string& text)
{
    if (m_damage.empty())
        m_damage = text;
}

} // namespace sessions
