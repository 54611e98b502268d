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

/// Extensions, without their prefix, that are of use from one version to another.
struct Span {
    int first;
    int last;
    const char* names;
};

constexpr Span extensionTable[] = {
#include "data/ExtensionTable.inc"
};

std::set<std::string> words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

} // namespace

const std::span<const Limit> limits = limitTable;

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

} // namespace rules
