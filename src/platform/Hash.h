#pragma once

#include <cstdint>
#include <string_view>

namespace platform {

/// FNV-1, 32 bits: for each byte multiply by the prime, then exclusive-or the byte in. No bytes at all give
/// 0, not the offset basis, so that "no name" and "empty name" are one.
constexpr std::uint32_t fnv1(std::string_view bytes)
{
    if (bytes.empty())
        return 0;
    std::uint32_t hash = 2166136261U;
    for (const char byte : bytes) {
        hash *= 16777619U;
        hash ^= static_cast<unsigned char>(byte);
    }
    return hash;
}

} // namespace platform
