#pragma once

#include <string>

namespace launcher {

/// A text of a file as it may stand in a line on a terminal: control characters are blanks.
inline std::string printed(std::string text)
{
    for (char& letter : text) {
        if ((letter >= '\0' && letter < ' ') || letter == '\x7F')
            letter = ' ';
    }
    return text;
}

} // namespace launcher
