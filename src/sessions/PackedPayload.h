#pragma once

#include "Record.h"

#include <string>
#include <string_view>

namespace sessions {

/// Appends a payload as files keep it: trimmed, and a text that has other values behind its field without the
/// unused rest of the field.
void packPayload(std::uint32_t type, std::string_view payload, std::string& to);

/// The way back: the payload as the wire has it, without what means nothing at its end. Replaces the buffer.
void unpackPayload(std::uint32_t type, std::string_view packed, std::string& to);

/// Bytes of a whole payload on the wire; a packed one has one more at most.
inline constexpr std::size_t payloadLimit = ui::messages::recordSize - ui::messages::offset::payload;

} // namespace sessions
