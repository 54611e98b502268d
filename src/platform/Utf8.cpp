#include "Utf8.h"

#include <cstddef>

namespace platform {

namespace {

/// Bytes of the sequence that the lead byte begins, 0 for a byte that begins none.
std::size_t sequenceLength(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead < 0xC2)
        return 0;
    if (lead < 0xE0)
        return 2;
    if (lead < 0xF0)
        return 3;
    return lead < 0xF5 ? 4 : 0;
}

/// The second byte is where overlong forms, surrogates and too large values show.
bool isSecondByte(unsigned char lead, unsigned char second)
{
    const unsigned char lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return second >= lowest && second <= highest;
}

} // namespace

bool isUtf8(std::string_view text)
{
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = [&](std::size_t offset) {
            return static_cast<unsigned char>(text[at + offset]);
        };
        const std::size_t length = sequenceLength(byte(0));
        if (length == 0 || length > text.size() - at)
            return false;
        if (length > 1 && !isSecondByte(byte(0), byte(1)))
            return false;
        for (std::size_t i = 2; i < length; ++i) {
            if ((byte(i) & 0xC0) != 0x80)
                return false;
        }
        at += length;
    }
    return true;
}

} // namespace platform
