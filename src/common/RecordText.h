#pragma once

#include <QString>

#include <string_view>

/// How the bytes of a record's text become text on the screen. Bytes that are no UTF-8 become U+FFFD.
/// Characters that could pass for more than one text do not get through: an application's text can neither
/// end its line or frame in the console nor turn the writing direction of what stands beside it. Marks that
/// pile up on one character become U+FFFD, too.
namespace record_text {

/// For a place that is one line: line breaks and tabs become blanks.
QString singleLine(std::string_view bytes);

/// For a place that may have several lines: line feeds (also CR LF and CR) and tabs are kept.
QString multiLine(std::string_view bytes);

} // namespace record_text
