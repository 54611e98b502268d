#pragma once

#include "Message.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace sessions {

/// A record of the wire format whose payload may end early: what is missing counts as zeros. Nothing in it is
/// trusted. Offsets are those of Message.h, from the start of the whole record.
struct Record {
    std::uint32_t type = 0;
    std::uint32_t frame = ui::messages::noFrame;
    std::string_view payload;

    std::uint32_t u32(std::size_t at) const;
    /// The text from an offset to its NUL, at most to the end of its field. Bytes as sent.
    std::string_view text(std::size_t at, std::size_t fieldEnd = ui::messages::recordSize) const;
};

/// A payload without the bytes at its end that mean nothing: those behind the last text of its type, and
/// zeros.
std::string_view trimmedPayload(std::uint32_t type, std::string_view payload);

} // namespace sessions
