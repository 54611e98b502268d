#include "BuiltinProfileRules.h"

#include "ExtensionCatalogue.h"
#include "KeyTables.h"
#include "Minima.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <sstream>

#include <gtest/gtest.h>

namespace rules {

namespace {

constexpr long long any = std::numeric_limits<long long>::max();
constexpr long long none = std::numeric_limits<long long>::min();

// A key with several rows has the later versions' higher demands in a row of their own.
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

/// "GL_MAX_LIGHTS" for "max_lights".
std::string enumerantOf(const std::string& element)
{
    std::string name = "GL_" + element;
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
    return name;
}

std::vector<double> valuesOf(const ProfileNode& capability)
{
    std::vector<double> values;
    if (capability.children.empty())
        values.push_back(std::stod(capability.value));
    for (const ProfileNode& part : capability.children)
        values.push_back(std::stod(part.value));
    return values;
}

void checkMinimum(const std::string& enumerant, gl::EsVersion version, const std::vector<double>& values)
{
    const auto minimum = gl::minimum(enumerant, version);
    EXPECT_TRUE(!minimum || gl::isMet(*minimum, values))
        << enumerant << " is " << testing::PrintToString(values) << ", the standard asks for "
        << minimum->values.front();
}

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

void checkMinima(int version, const std::vector<ProfileNode>& capabilities)
{
    esapi::API api;
    ASSERT_TRUE(esapi::findAPI(version, &api));
    std::map<std::string, double> lengths;
    for (const ProfileNode& capability : capabilities) {
        if (isListKey(capability.name))
            ++lengths[enumerantOf("num_" + capability.name + "s")];
        else if (capability.name != "internal_format")
            checkMinimum(enumerantOf(capability.name), api.esVersion(), valuesOf(capability));
    }
    for (const auto& [enumerant, length] : lengths)
        checkMinimum(enumerant, api.esVersion(), {length});
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
