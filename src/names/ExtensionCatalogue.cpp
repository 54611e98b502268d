#include "ExtensionCatalogue.h"

#include <array>
#include <cstddef>

namespace catalogue {

namespace {

#include "EsExtensionTable.inc"
#include "HostExtensionTable.inc"

constexpr std::array<const char*, 19> glVersions{"1.0", "1.1", "1.2", "1.3", "1.4", "1.5", "2.0", "2.1",
    "3.0", "3.1", "3.2", "3.3", "4.0", "4.1", "4.2", "4.3", "4.4", "4.5", "4.6"};
constexpr std::array<const char*, 5> esVersions{"1.1", "2.0", "3.0", "3.1", "3.2"};
constexpr std::array<const char*, 13> glslVersionsShort{
    "110", "120", "130", "140", "150", "330", "400", "410", "420", "430", "440", "450", "460"};
constexpr std::array<const char*, 13> glslVersionsLong{"GLSL 1.10", "GLSL 1.20", "GLSL 1.30", "GLSL 1.40",
    "GLSL 1.50", "GLSL 3.30", "GLSL 4.00", "GLSL 4.10", "GLSL 4.20", "GLSL 4.30", "GLSL 4.40", "GLSL 4.50",
    "GLSL 4.60"};
constexpr std::array<const char*, 4> glslEsVersions{
    "GLSL ES 1.0", "GLSL ES 3.0", "GLSL ES 3.1", "GLSL ES 3.2"};

/// Length of the "GL_" that every OpenGL ES extension of the table begins with.
constexpr std::size_t prefixLength = 3;
constexpr const char* unknownExtension = "<unknown extension>";

template <std::size_t Size>
const char* nameOf(const std::array<const char*, Size>& names, std::uint32_t code, const char* otherwise)
{
    return code >= 1 && code <= Size ? names[code - 1] : otherwise;
}

} // namespace

const std::uint32_t esExtensionCount = esExtensions.size();
const std::uint32_t hostExtensionCount = hostExtensions.size();

const char* esExtensionName(std::uint32_t code, Prefix prefix)
{
    if (code < 1 || code > esExtensionCount)
        return unknownExtension;
    return esExtensions[code - 1] + (prefix == Prefix::With ? 0 : prefixLength);
}

const char* hostExtensionName(std::uint32_t code)
{
    return nameOf(hostExtensions, code, unknownExtension);
}

const char* glVersionName(std::uint32_t code)
{
    return nameOf(glVersions, code, "unknown");
}

const char* esVersionName(std::uint32_t code)
{
    return nameOf(esVersions, code, "<Failed to query OpenGL ES version>");
}

const char* glslVersionName(std::uint32_t code, GlslForm form)
{
    return nameOf(form == GlslForm::Short ? glslVersionsShort : glslVersionsLong, code,
        "<Failed to query GLSL version>");
}

const char* glslEsVersionName(std::uint32_t code)
{
    return nameOf(glslEsVersions, code, "<Failed to query GLSL ES version>");
}

} // namespace catalogue
