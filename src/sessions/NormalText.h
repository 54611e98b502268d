#pragma once

#include <string>
#include <string_view>

namespace sessions {

/// Appends a text without what differs from one occurrence of a finding to the next: numbers and pointers
/// become "#", an absolute path becomes ".../" and its last component, blanks at the end go. Names keep their
/// digits, as in "GL_TEXTURE0". It takes linear time, never cuts a character of UTF-8, and changes nothing
/// when it is done again.
void appendNormalised(std::string_view text, std::string& to);

std::string normalised(std::string_view text);

} // namespace sessions
