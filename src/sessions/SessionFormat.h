#pragma once

#include "Record.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What the writer and the reader of session files share; docs/session-format.md describes the format.
namespace sessions {

/// Since the session began.
using SessionTime = std::chrono::microseconds;

enum class ClientEnd : std::uint32_t {
    None, ///< The file ends before the client does.
    Clean,
    Lost, ///< Without a good-bye, as after a signal.
};

/// A process in a session.
struct SessionClient {
    std::uint32_t number = 0; ///< From 0, in the order of their beginnings.
    std::uint32_t pid = 0;
    std::string name;
    std::string device; ///< The profile's name; empty without one.
    SessionTime begin{};
    ClientEnd end = ClientEnd::None;
    SessionTime endTime{};
    std::string endText; ///< Such as "Killed by SIGSEGV (segmentation fault)"; may be empty.
};

struct SessionRecord {
    std::uint32_t client = 0;
    SessionTime time{};
    Record record;
};

namespace format {

inline constexpr std::string_view magic = "CORVALES";
inline constexpr std::uint32_t version = 1;
inline constexpr std::size_t fileHeadSize = 24; // bytes
inline constexpr std::size_t blockHeadSize = 32; // bytes
inline constexpr std::size_t recordHeadSize = 20; // bytes
/// Bytes of a block's content, stored as well as unpacked.
inline constexpr std::size_t blockLimit = std::size_t{4} << 20U;
inline constexpr std::size_t textLimit = 4096; // bytes of a client's text
inline constexpr std::size_t clientLimit = 65'536;
/// Bytes that a block about a process has at most; it has two texts and some numbers.
inline constexpr std::size_t clientBlockLimit = 4 * textLimit;

constexpr std::uint32_t blockKind(const char (&name)[5])
{
    std::uint32_t kind = 0;
    for (unsigned int i = 0; i < 4; ++i)
        kind |= static_cast<std::uint32_t>(static_cast<unsigned char>(name[i])) << (8U * i);
    return kind;
}
inline constexpr std::uint32_t clientBlock = blockKind("CLNT");
inline constexpr std::uint32_t deviceBlock = blockKind("DEVC");
inline constexpr std::uint32_t recordsBlock = blockKind("RECS");
inline constexpr std::uint32_t endBlock = blockKind("ENDS");

/// What stands before the content of each block.
struct BlockHead {
    std::uint32_t kind = 0;
    std::uint32_t storedSize = 0; ///< Bytes of the content as it stands in the file.
    std::uint32_t size = 0; ///< Bytes of the content; if they differ, it is compressed with zstd.
    std::uint32_t count = 0; ///< Records in it.
    SessionTime time{}; ///< Of the first one.
    std::uint32_t checksum = 0; ///< Of a content that is not compressed; else 0.

    std::string bytes() const;
    /// Nothing if the bytes are none, or their checksum is wrong, or the sizes cannot be.
    static std::optional<BlockHead> fromBytes(std::string_view bytes);
};

/// Puts a value where there is room for it, the least significant byte first; returns the place behind it.
template <typename Number> char* storeNumber(char* to, Number value)
{
    for (unsigned int i = 0; i < sizeof value; ++i)
        to[i] = static_cast<char>(value >> 8U * i);
    return to + sizeof value;
}
/// Adds values to the end of bytes, the least significant byte first.
void putNumber(std::string& bytes, std::uint64_t value, std::size_t size);
/// A text behind its length, cut to textLimit.
void putText(std::string& bytes, std::string_view text);

/// Takes values off the front of bytes. Once something is missing, it is not ok() any more, and values are 0.
class ByteSource {
public:
    explicit ByteSource(std::string_view bytes)
        : m_bytes(bytes)
    {
    }
    /// One of which something is missing.
    static ByteSource failed()
    {
        ByteSource source{{}};
        source.m_isOk = false;
        return source;
    }
    std::uint64_t number(std::size_t size);
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::string_view bytes(std::size_t size);
    /// A text behind its length; one that is too long is missing.
    std::string text();
    /// Times are cut to what can still be added up.
    SessionTime time();
    bool isEmpty() const { return m_bytes.empty(); }
    bool ok() const { return m_isOk; }

private:
    std::string_view m_bytes;
    bool m_isOk = true;
};

} // namespace format

} // namespace sessions
