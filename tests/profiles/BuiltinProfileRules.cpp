#include "BuiltinProfileRules.h"

#include "ExtensionCatalogue.h"

#include <algorithm>
#include <charconv>
#include <sstream>

#include <gtest/gtest.h>

namespace rules {

namespace {

constexpr long long any = std::numeric_limits<long long>::max();
constexpr long long none = std::numeric_limits<long long>::min();

// A key with several rows has the later versions' higher demands in its own row.
constexpr Limit limitTable[] = {
#include "data/LimitTable.inc"
};

constexpr Order orderTable[] = {
#include "data/OrderTable.inc"
};

/// Extensions, without their prefix, that are of use from one version to another.
struct Span {
    int first;
    int last;
    const char* names;
};

constexpr Span extensionTable[] = {
#include "data/ExtensionTable.inc"
};

constexpr Need needTable[] = {
#include "data/NeedTable.inc"
};

constexpr const char* compressed = "compressed_texture_format";
constexpr FormatRange formatTable[] = {
    {compressed, 1, 2, 0x8B90, 0x8B99, {"GL_OES_compressed_paletted_texture"}},
    {compressed, 1, 31, 0x83F0, 0x83F1, {"GL_EXT_texture_compression_dxt1"}},
    {compressed, 1, 31, 0x8C00, 0x8C03, {"GL_BWD_texture_compression_tsrtc"}},
    {compressed, 1, 31, 0x8D64, 0x8D64, {"GL_OES_compressed_ETC1_RGB8_texture"}},
    {compressed, 2, 31, 0x9137, 0x9138, {"GL_BWD_texture_compression_tsrtc2"}},
    {compressed, 2, 31, 0x8A54, 0x8A57, {"GL_EXT_tsrtc_sRGB"}},
    {compressed, 2, 31, 0x93F0, 0x93F1, {"GL_EXT_tsrtc_sRGB", "GL_BWD_texture_compression_tsrtc2"}},
    {compressed, 3, 31, 0x9270, 0x9279, {}},
    {compressed, 2, 31, 0x93B0, 0x93BD, {"GL_KHR_texture_compression_astc_ldr"}},
    {compressed, 2, 31, 0x93D0, 0x93DD, {"GL_KHR_texture_compression_astc_ldr"}},
    {"shader_binary_format", 2, 31, 0x8C0A, 0x8C0A, {"GL_BWD_shader_binary"}},
    {"program_binary_format", 3, 31, 0x9130, 0x9130, {}},
};

std::set<std::string> words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

} // namespace

const std::span<const Limit> limits = limitTable;
const std::span<const Order> neverAbove = orderTable;
const std::span<const Need> needs = needTable;
const std::span<const FormatRange> formatRanges = formatTable;
const std::set<std::string> requiredFormats =
    words("R8 RG8 RGB8 RGB565 RGBA4 RGB5_A1 RGBA8 RGB10_A2 SRGB8_ALPHA8 "
          "DEPTH_COMPONENT16 DEPTH_COMPONENT24 DEPTH_COMPONENT32F DEPTH24_STENCIL8 DEPTH32F_STENCIL8 "
          "STENCIL_INDEX8");

std::optional<long long> wholeNumber(const std::string& text)
{
    long long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

bool isListKey(const std::string& path)
{
    return path.ends_with("_format") ? !path.starts_with("implementation_")
                                     : path.starts_with("internal_format/");
}

bool isCatalogued(const std::string& extension)
{
    for (std::uint32_t code = 1; code <= catalogue::esExtensionCount; ++code)
        if (extension == catalogue::esExtensionName(code, catalogue::Prefix::With))
            return true;
    return false;
}

bool fitsVersion(const std::string& extension, int version)
{
    return std::any_of(std::begin(extensionTable), std::end(extensionTable), [&](const Span& span) {
        return version >= span.first && version <= span.last && extension.starts_with("GL_")
            && words(span.names).contains(extension.substr(3));
    });
}

bool isIntegerFormat(const std::string& internalFormat)
{
    static const auto formats =
        words("R8I R8UI R16I R16UI R32I R32UI RG8I RG8UI RG16I RG16UI RG32I RG32UI RGBA8I "
              "RGBA8UI RGB10_A2UI RGBA16I RGBA16UI RGBA32I RGBA32UI");
    return formats.contains(internalFormat);
}

bool isRenderableFormat(const std::string& internalFormat)
{
    static const auto floats = words("R16F RG16F RGBA16F R32F RG32F RGBA32F R11F_G11F_B10F");
    return requiredFormats.contains(internalFormat) || floats.contains(internalFormat);
}

} // namespace rules
