#include "Base64.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace base64 {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char padding = '=';
constexpr std::string_view blanks = " \t\r\n";
constexpr int endOfSource = std::char_traits<char>::eof();

} // namespace

void encode(std::streambuf& source, std::streambuf& target)
{
    for (int next = source.sbumpc(); next != endOfSource;) {
        std::uint32_t group = 0;
        int count = 0;
        for (int place = 0; place < 3; ++place) {
            group <<= 8U;
            if (next == endOfSource)
                continue;
            group |= static_cast<std::uint32_t>(next);
            ++count;
            next = source.sbumpc();
        }
        for (int place = 0; place < 4; ++place) {
            const std::uint32_t digit = (group >> (18U - 6U * static_cast<unsigned int>(place))) & 63U;
            target.sputc(place <= count ? alphabet[digit] : padding);
        }
    }
}

bool decode(std::streambuf& source, std::streambuf& target)
{
    std::uint32_t group = 0;
    int digits = 0;
    int paddings = 0;
    for (int next = source.sbumpc(); next != endOfSource; next = source.sbumpc()) {
        const char character = static_cast<char>(next);
        if (blanks.find(character) != std::string_view::npos)
            continue;
        const std::size_t digit = alphabet.find(character);
        if (character == padding)
            ++paddings;
        else if (digit == std::string_view::npos || paddings > 0)
            return false;
        group = (group << 6U) | static_cast<std::uint32_t>(character == padding ? 0 : digit);
        if (++digits < 4)
            continue;
        const std::uint32_t spareBits = paddings == 2 ? 0xFFFFU : (paddings == 1 ? 0xFFU : 0U);
        if (paddings > 2 || (group & spareBits) != 0)
            return false;
        for (int place = 0; place < 3 - paddings; ++place)
            target.sputc(static_cast<char>((group >> (16U - 8U * static_cast<unsigned int>(place))) & 255U));
        group = 0;
        digits = 0;
    }
    return digits == 0;
}

} // namespace base64
