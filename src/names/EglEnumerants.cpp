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

constexpr std::array symbolicNames{"EGL_FALSE", "EGL_TRUE", "EGL_DONT_CARE", "EGL_NONE", "EGL_SLOW_CONFIG",
    "EGL_NON_CONFORMANT_CONFIG", "EGL_TRANSPARENT_RGB"};

constexpr std::array<std::string_view, 5> surfaceBits{"EGL_WINDOW_BIT", "EGL_PBUFFER_BIT", "EGL_PIXMAP_BIT",
    "EGL_MULTISAMPLE_RESOLVE_BOX_BIT", "EGL_SWAP_BEHAVIOR_PRESERVED_BIT"};
constexpr std::array<std::string_view, 5> apiBits{
    "EGL_OPENGL_ES_BIT", "EGL_OPENGL_ES2_BIT", "EGL_OPENGL_ES3_BIT", "EGL_OPENGL_BIT", "EGL_OPENVG_BIT"};

} // namespace

std::optional<std::int32_t> enumerantValue(std::string_view name)
{
    const auto found = std::lower_bound(eglEnumerants.begin(), eglEnumerants.end(), name,
        [](const NumberEntry& entry, std::string_view sought) { return entry.name < sought; });
    if (found == eglEnumerants.end() || found->name != name)
        return std::nullopt;
    return found->value;
}

const char* symbolicName(std::int32_t value)
{
    for (const char* name : symbolicNames) {
        if (enumerantValue(name) == value)
            return name;
    }
    return "";
}

std::optional<std::int32_t> symbolicValue(std::string_view name)
{
    const bool symbolic = std::find(symbolicNames.begin(), symbolicNames.end(), name) != symbolicNames.end();
    return symbolic ? enumerantValue(name) : std::nullopt;
}

std::span<const std::string_view> bitNames(std::string_view attribute)
{
    if (attribute == "EGL_SURFACE_TYPE")
        return surfaceBits;
    if (attribute == "EGL_RENDERABLE_TYPE" || attribute == "EGL_CONFORMANT")
        return apiBits;
    return {};
}

} // namespace egl
