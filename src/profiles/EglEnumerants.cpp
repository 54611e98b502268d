#include "EglEnumerants.h"

#include <algorithm>
#include <array>

namespace egl {

namespace {

struct NumberEntry {
    std::string_view name;
    std::int32_t value;
};

#include "EglEnumerantTable.inc"

} // namespace

std::optional<std::int32_t> enumerantValue(std::string_view name)
{
    const auto found = std::lower_bound(eglEnumerants.begin(), eglEnumerants.end(), name,
        [](const NumberEntry& entry, std::string_view sought) { return entry.name < sought; });
    if (found == eglEnumerants.end() || found->name != name)
        return std::nullopt;
    return found->value;
}

} // namespace egl
