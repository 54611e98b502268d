#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers as files hold them: always in the "C" form, whatever the user's locale is. A text is read whole or
/// refused; blanks, tabs and line ends around the number are allowed, and so is one leading '+'.
namespace platform {

/// The decimal integer in the text; nothing when the text is anything else or the value needs more than 64
/// bits.
std::optional<std::int64_t> parseInteger(std::string_view text);

/// The same, for a value that fits into 32 bits with a sign.
std::optional<std::int32_t> parseInt32(std::string_view text);

/// The number of up to 32 bits that stands in the text as hexadecimal digits after "0x".
std::optional<std::uint32_t> parseHexadecimal(std::string_view text);

/// The finite decimal number in the text; nothing when the text is anything else or out of a double's range.
std::optional<double> parseReal(std::string_view text);

std::string formatInteger(std::int64_t value);

/// The shortest text that reads back as exactly this value.
std::string formatReal(double value);

} // namespace platform
