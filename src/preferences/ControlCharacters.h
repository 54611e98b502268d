#pragma once

#include <string>
#include <string_view>

/// Text in which control characters have taken another form. XML has none but tabs and line ends, not even as
/// references, so a property list with them is refused by other readers.
///
/// A control character becomes the character of the private use area that is U+F000 above it. Where a text
/// has such a character itself, U+F000 stands before it.
namespace control_characters {

std::string hidden(std::string_view text);
std::string restored(std::string_view text);

} // namespace control_characters
