#include "GlEnumerants.h"

#include <algorithm>
#include <array>

namespace gl {

namespace {

struct ValueEntry {
    std::uint32_t value;
    const char* name;
};

struct NameEntry {
    std::string_view name;
    std::uint32_t value;
};

#include "GlEnumerantTables.inc"

} // namespace

const char* enumerantName(std::int32_t value)
{
    const auto wanted = static_cast<std::uint32_t>(value);
    const auto found = std::lower_bound(entriesByValue.begin(), entriesByValue.end(), wanted,
        [](const ValueEntry& entry, std::uint32_t sought) { return entry.value < sought; });
    return found != entriesByValue.end() && found->value == wanted ? found->name : "";
}

std::optional<std::int32_t> enumerantValue(std::string_view name)
{
    const auto found = std::lower_bound(entriesByName.begin(), entriesByName.end(), name,
        [](const NameEntry& entry, std::string_view sought) { return entry.name < sought; });
    if (found == entriesByName.end() || found->name != name)
        return std::nullopt;
    return static_cast<std::int32_t>(found->value);
}

const char* errorName(std::uint32_t code)
{
    switch (code) {
    case 0:
        return "GL_NO_ERROR";
    case 0x0500:
        return "GL_INVALID_ENUM";
    case 0x0501:
        return "GL_INVALID_VALUE";
    case 0x0502:
        return "GL_INVALID_OPERATION";
    case 0x0503:
        return "GL_STACK_OVERFLOW";
    case 0x0504:
        return "GL_STACK_UNDERFLOW";
    case 0x0505:
        return "GL_OUT_OF_MEMORY";
    case 0x0506:
        return "GL_INVALID_FRAMEBUFFER_OPERATION";
    default:
        return "";
    }
}

} // namespace gl
