#include "SessionFormat.h"

#include "Hash.h"
#include "Signature.h"

#include <algorithm>
#include <limits>

namespace sessions::format {

using ui::messages::littleEndian32;

std::string BlockHead::bytes() const
{
    std::string bytes;
    putNumber(bytes, kind, 4);
    putNumber(bytes, storedSize, 4);
    putNumber(bytes, size, 4);
    putNumber(bytes, count, 4);
    putNumber(bytes, static_cast<std::uint64_t>(time.count()), 8);
    putNumber(bytes, checksum, 4);
    putNumber(bytes, platform::fnv1(bytes), 4);
    return bytes;
}

std::optional<BlockHead> BlockHead::fromBytes(std::string_view bytes)
{
    if (bytes.size() != blockHeadSize)
        return std::nullopt;
    ByteSource source(bytes);
    BlockHead head;
    head.kind = source.u32();
    head.storedSize = source.u32();
    head.size = source.u32();
    head.count = source.u32();
    head.time = SessionTime(static_cast<std::int64_t>(source.number(8)));
    head.checksum = source.u32();
    const bool isWhole = source.u32() == platform::fnv1(bytes.substr(0, blockHeadSize - 4));
    if (!isWhole || head.storedSize > blockLimit || head.size > blockLimit
        || head.count > head.size / recordHeadSize)
        return std::nullopt;
    return head;
}

void putNumber(std::string& bytes, std::uint64_t value, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        bytes += static_cast<char>(value >> (8U * i) & 0xFFU);
}

void putText(std::string& bytes, std::string_view text)
{
    text = cutText(text, textLimit);
    putNumber(bytes, text.size(), 4);
    bytes += text;
}

std::uint64_t ByteSource::number(std::size_t size)
{
    const std::string_view raw = bytes(size);
    return std::uint64_t{littleEndian32(raw, 4)} << 32U | littleEndian32(raw);
}

std::string_view ByteSource::bytes(std::size_t size)
{
    if (size > m_bytes.size()) {
        m_isOk = false;
        m_bytes = {};
        return {};
    }
    const std::string_view taken = m_bytes.substr(0, size);
    m_bytes.remove_prefix(size);
    return taken;
}

std::string ByteSource::text()
{
    const std::uint32_t size = u32();
    return std::string(bytes(size <= textLimit ? size : std::numeric_limits<std::size_t>::max()));
}

SessionTime ByteSource::time()
{
    constexpr std::uint64_t latest = std::uint64_t{1} << 53U;
    return SessionTime(static_cast<std::int64_t>(std::min(number(8), latest)));
}

} // namespace sessions::format
