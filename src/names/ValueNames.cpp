#include "ValueNames.h"

#include "EglEnumerants.h"
#include "GlEnumerants.h"
#include "KeyTables.h"

#include <charconv>
#include <limits>

namespace value_names {

namespace {

template <typename Number> std::optional<Number> parseNumber(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    text = text.substr(0, text.find_last_not_of(blanks) + 1);
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace

std::string eglValue(std::string_view value)
{
    const auto number = parseNumber<std::int32_t>(value);
    if (!number)
        return std::string(value);
    const std::string name = egl::symbolicName(*number);
    return name.empty() ? std::to_string(*number) : name;
}

std::string eglAttribute(std::string_view attribute)
{
    const auto number = parseNumber<std::int32_t>(attribute);
    EGLAttribKey key;
    return number && findEGLAttribKey(*number, &key) ? key.displayName.text : std::string(attribute);
}

std::string esApi(std::string_view version)
{
    const auto number = parseNumber<std::int32_t>(version);
    esapi::API api;
    return number && esapi::findAPI(*number, &api) ? api.displayName : std::string(version);
}

std::string esCapability(std::string_view xmlName)
{
    ESCapabilityKeyNode node;
    const bool isKnown = findKeyNode(ESCapabilityKey::XMLName{std::string(xmlName)}, &node);
    return isKnown ? node.key.displayName.text : std::string(xmlName);
}

std::string glValue(std::string_view value)
{
    const auto number = parseNumber<std::int64_t>(value);
    if (!number || !gl::isValue(*number))
        return std::string(value);
    const std::string name = gl::enumerantName(static_cast<std::int32_t>(*number));
    return name.empty() ? std::string(value) : name;
}

std::string glBoolean(std::string_view value)
{
    if (value == "1")
        return "GL_TRUE";
    return value == "0" ? "GL_FALSE" : std::string(value);
}

} // namespace value_names
