#include "BuiltinProfiles.h"

#include <array>

namespace builtinprofiles {

namespace {

#include "BuiltinProfileTexts.inc"

} // namespace

std::span<const TextEntry> documents()
{
    return texts;
}

} // namespace builtinprofiles
