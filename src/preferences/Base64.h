#pragma once

#include <streambuf>

/// The base64 form of bytes: the usual alphabet with '+' and '/', padded with '='.
namespace base64 {

/// Writes the text form of everything the source holds, in one line.
void encode(std::streambuf& source, std::streambuf& target);

/// Writes the bytes behind a text, in which blanks, tabs and line ends may stand anywhere. False when the
/// text is malformed: another character, a last group that is cut short or not padded, bits that no byte has
/// room for.
bool decode(std::streambuf& source, std::streambuf& target);

} // namespace base64
