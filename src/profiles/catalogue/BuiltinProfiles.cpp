#include "BuiltinProfiles.h"

#include <array>

using namespace std::string_view_literals;

namespace builtin_profiles {

namespace {

#include "BuiltinProfileTexts.inc"

} // namespace

std::span<const TextEntry> documents()
{
    return texts;
}

} // namespace builtin_profiles
