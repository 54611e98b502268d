#include "BuiltinProfiles.h"

#include <array>

using namespace std::string_view_literals;

namespace builtinprofiles {

namespace {

#include "BuiltinProfileTexts.inc"

} // namespace

std::span<const TextEntry> documents()
{
    return texts;
}

} // namespace builtinprofiles
