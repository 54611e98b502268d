#pragma once

#include <span>
#include <string_view>

namespace builtin_profiles {

struct TextEntry {
    std::string_view fileName;
    std::string_view xml;
};

/// The documents of builtin/*.xml as they were compiled in, by file name.
std::span<const TextEntry> documents();

} // namespace builtin_profiles
