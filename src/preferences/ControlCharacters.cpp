#include "ControlCharacters.h"

namespace control_characters {

namespace {

/// The first two of the three UTF-8 bytes of U+F000 to U+F03F; the third is that of U+F000 plus the code.
constexpr std::string_view leadBytes = "\xEF\x80";
constexpr char zeroByte = '\x80';
constexpr std::size_t substituteSize = 3;

bool isControl(char c)
{
    return c > 0 && c < ' ' && c != '\t' && c != '\n' && c != '\r';
}

std::string substitute(char control)
{
    return std::string(leadBytes) + static_cast<char>(zeroByte + control);
}

/// Whether the text begins with one of U+F000 to U+F01F.
bool beginsWithSubstitute(std::string_view text)
{
    return text.size() >= substituteSize && text.starts_with(leadBytes)
        && static_cast<unsigned char>(text[2] - zeroByte) < ' ';
}

} // namespace

std::string hidden(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        std::size_t taken = 1;
        if (isControl(text.front())) {
            result += substitute(text.front());
        } else if (beginsWithSubstitute(text)) {
            taken = substituteSize;
            result += substitute('\0');
            result += text.substr(0, taken);
        } else {
            result += text.front();
        }
        text.remove_prefix(taken);
    }
    return result;
}

std::string restored(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        std::size_t taken = 1;
        const bool isSubstitute = beginsWithSubstitute(text);
        const char code = isSubstitute ? static_cast<char>(text[2] - zeroByte) : '\0';
        if (isSubstitute && code == '\0' && beginsWithSubstitute(text.substr(substituteSize))) {
            taken = 2 * substituteSize;
            result += text.substr(substituteSize, substituteSize);
        } else if (isControl(code)) {
            taken = substituteSize;
            result += code;
        } else {
            result += text.front();
        }
        text.remove_prefix(taken);
    }
    return result;
}

} // namespace control_characters
