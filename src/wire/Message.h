#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// The record that the window and the emulated applications exchange. This header needs no Qt: programs that
/// only speak the wire format share it. docs/wire-format.md describes the format for people.
namespace ui::messages {

/// Size of every record in bytes; the stream has no other framing.
inline constexpr std::size_t recordSize = 8224;

/// The frame number of records that belong to no frame.
inline constexpr std::uint32_t noFrame = 0xFFFFFFFF;

/// Message types. Applications send all but the three control types, which only the window sends.
enum class Type : std::uint32_t {
    SetPid = 0,
    CleanDisconnect = 1,
    SetName = 2,
    IdentifiedMessage = 3,
    LineBreak = 4,
    DebugMessage = 5,
    Information = 6,
    Warning = 7,
    Error = 8,
    GlError = 9,
    ContextInformation = 10,
    NotifyServerStop = 11,
    WireframeOn = 12,
    WireframeOff = 13,
    ReportLeadingNumber = 14,
    ReportFlag = 15,
    ReportText = 16,
    ReportDetail = 17,
    ReportKeyedText = 18,
    ReportOtherKeyedText = 19,
    ReportComplete = 20,
};

/// Byte offsets from the start of a record.
namespace offset {
inline constexpr std::size_t frame = 0;
inline constexpr std::size_t type = 4;
inline constexpr std::size_t payload = 8;

inline constexpr std::size_t pid = 8;
inline constexpr std::size_t text = 8; ///< SetName, Information, Warning, Error.

inline constexpr std::size_t identifiedCarried = 8; ///< Carried, not shown.
inline constexpr std::size_t identifiedId = 12;
inline constexpr std::size_t identifiedText = 16;

inline constexpr std::size_t debugSource = 8; ///< Carried, not shown.
inline constexpr std::size_t debugType = 12;
inline constexpr std::size_t debugId = 16;
inline constexpr std::size_t debugSeverity = 20;
inline constexpr std::size_t debugText = 24;

inline constexpr std::size_t glErrorCode = 8;
inline constexpr std::size_t glErrorFunction = 12;
inline constexpr std::size_t glErrorDescription = 76; ///< Also the end of the function field.

inline constexpr std::size_t contextNumber = 8;
inline constexpr std::size_t contextStrict = 12;
inline constexpr std::size_t contextEsVersion = 16;
inline constexpr std::size_t contextGlslEsVersion = 20;
inline constexpr std::size_t contextExtensions = 24;
inline constexpr std::size_t contextExtensionsNotOnHost = 2072;
inline constexpr std::size_t contextExtensionsNotEmulated = 4120;
inline constexpr std::size_t contextGlVersion = 6168;
inline constexpr std::size_t contextGlslVersion = 6172;
inline constexpr std::size_t contextHostExtensions = 6176;

inline constexpr std::size_t reportKey = 8;
inline constexpr std::size_t reportFlag = 12;
inline constexpr std::size_t reportKeyedText = 12;
inline constexpr std::size_t reportText = 8;
inline constexpr std::size_t reportTextEnd = 520; ///< Where the value that follows the text stands.
} // namespace offset

/// The number whose bytes, the least significant one first, are those at a place; those that are missing
/// count as zeros.
inline std::uint32_t littleEndian32(std::string_view bytes, std::size_t at = 0)
{
    std::array<unsigned char, sizeof(std::uint32_t)> raw{};
    if (at < bytes.size())
        std::memcpy(raw.data(), bytes.data() + at, std::min(raw.size(), bytes.size() - at));
    return static_cast<std::uint32_t>(raw[0]) | static_cast<std::uint32_t>(raw[1]) << 8U
        | static_cast<std::uint32_t>(raw[2]) << 16U | static_cast<std::uint32_t>(raw[3]) << 24U;
}

/// Number of 32-bit extension identifiers that each list of a ContextInformation record has room for.
inline constexpr std::size_t extensionListCapacity = 512;

/// One record of recordSize bytes. Integers are little-endian 32-bit values; texts are UTF-8, ended by a NUL
/// byte or by the end of their field. Everything in a received record is untrusted: the readers never look
/// beyond a field and never beyond the record.
class Message {
public:
    /// A record with all bytes zero.
    Message() = default;

    /// A record of the window's own: no frame, the given type, and a payload of zeros.
    static Message make(Type type)
    {
        Message message;
        message.setU32(offset::frame, noFrame);
        message.setU32(offset::type, static_cast<std::uint32_t>(type));
        return message;
    }
    /// Tells the application that the window no longer listens to it.
    static Message notifyServerStop() { return make(Type::NotifyServerStop); }
    static Message wireframeOn() { return make(Type::WireframeOn); }
    static Message wireframeOff() { return make(Type::WireframeOff); }

    std::uint32_t frame() const { return u32(offset::frame); }
    /// The type as it stands in the record; it may be none of Type's.
    std::uint32_t rawType() const { return u32(offset::type); }
    Type type() const { return static_cast<Type>(rawType()); }

    /// The 32-bit value at a byte offset; zero where it would reach beyond the record.
    std::uint32_t u32(std::size_t at) const
    {
        if (at + sizeof(std::uint32_t) > recordSize)
            return 0;
        return littleEndian32({m_bytes.data(), m_bytes.size()}, at);
    }
    std::int32_t i32(std::size_t at) const { return static_cast<std::int32_t>(u32(at)); }
    std::uint8_t u8(std::size_t at) const
    {
        return at < recordSize ? static_cast<std::uint8_t>(m_bytes[at]) : std::uint8_t{0};
    }
    /// The text from a byte offset to its NUL, at most to the end of its field. Bytes as sent, not validated.
    std::string_view text(std::size_t at, std::size_t fieldEnd = recordSize) const
    {
        fieldEnd = std::min(fieldEnd, recordSize);
        if (at >= fieldEnd)
            return {};
        const std::string_view field(m_bytes.data() + at, fieldEnd - at);
        return field.substr(0, field.find('\0'));
    }

    void setU32(std::size_t at, std::uint32_t value)
    {
        for (std::size_t i = 0; i < sizeof value && at + i < recordSize; ++i)
            m_bytes[at + i] = static_cast<char>((value >> (8U * i)) & 0xFFU);
    }
    void setU8(std::size_t at, std::uint8_t value)
    {
        if (at < recordSize)
            m_bytes[at] = static_cast<char>(value);
    }
    /// Writes a text and its NUL, cut to what the field holds.
    void setText(std::size_t at, std::string_view value, std::size_t fieldEnd = recordSize)
    {
        fieldEnd = std::min(fieldEnd, recordSize);
        if (at >= fieldEnd)
            return;
        const std::size_t length = std::min(value.size(), fieldEnd - at - 1);
        std::copy_n(value.data(), length, m_bytes.data() + at);
        m_bytes[at + length] = '\0';
    }

    const char* data() const { return m_bytes.data(); }
    char* data() { return m_bytes.data(); }

    bool operator==(const Message& other) const = default;

private:
    std::array<char, recordSize> m_bytes{};
};

static_assert(sizeof(Message) == recordSize);

} // namespace ui::messages
