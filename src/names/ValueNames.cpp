#include "ValueNames.h"

#include "EglEnumerants.h"
#include "GlEnumerants.h"
#include "KeyTables.h"
#include "LimitKeys.h"

#include <charconv>
#include <limits>

namespace value_names {

namespace {

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

template <typename Number> std::optional<Number> parseNumber(std::string_view text)
{
    text = trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

/// The number in decimal when it has a bit without a name, or no bit at all.
std::string maskValue(std::string_view attribute, std::int32_t value)
{
    std::string names;
    std::int32_t unnamed = value;
    for (const std::string_view name : egl::bitNames(attribute)) {
        const std::int32_t bit = egl::enumerantValue(name).value_or(0);
        if ((value & bit) == 0)
            continue;
        unnamed &= ~bit;
        names.append(names.empty() ? "" : "|").append(name);
    }
    return unnamed == 0 && !names.empty() ? names : std::to_string(value);
}

/// Elements that no table knows are limits but for those that their name says to be something else.
KeyKind kindOf(std::string_view xmlName)
{
    const ESCapabilityKey::XMLName name{std::string(xmlName)};
    ESCapabilityKeyNode node;
    if (findKeyNode(name, &node))
        return node.key.kind;
    if (const auto limit = findCapability(name))
        return limit->kind;
    return xmlName.ends_with("_format") || xmlName.ends_with("_type") ? KeyKind::Enumerant : KeyKind::Count;
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

std::string eglValue(const EGLAttribKey& attribute, std::int32_t value)
{
    std::string symbol = egl::symbolicName(value);
    const bool isTruth = value == 0 || value == 1;
    switch (attribute.kind) {
    case KeyKind::Mask:
        if (symbol == "EGL_DONT_CARE" || (attribute.single && isTruth))
            return symbol;
        return maskValue(attribute.displayName.text, value);
    case KeyKind::Boolean:
        return symbol.empty() ? std::to_string(value) : symbol;
    case KeyKind::Enumerant:
        return symbol.empty() || isTruth ? std::to_string(value) : symbol;
    default:
        return std::to_string(value);
    }
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
    if (number && esapi::findAPI(*number, &api))
        return api.displayName;
    const bool isEs32 = number && esapi::versionOf(*number) == gl::EsVersion::Es32;
    return isEs32 ? "OpenGL ES 3.2" : std::string(version);
}

std::string esCapability(std::string_view xmlName)
{
    const auto key = findCapability(ESCapabilityKey::XMLName{std::string(xmlName)});
    return key ? key->displayName.text : std::string(xmlName);
}

std::string glValue(std::string_view value)
{
    const auto number = parseNumber<std::int64_t>(value);
    if (!number || !gl::isValue(*number))
        return std::string(value);
    const std::string name = gl::enumerantName(static_cast<std::int32_t>(*number));
    return name.empty() ? std::string(value) : name;
}

std::string glValue(std::string_view xmlName, std::string_view value)
{
    switch (valueKind(kindOf(xmlName))) {
    case ValueKind::Enumerant:
        return glValue(value);
    case ValueKind::Boolean:
        return glBoolean(trimmed(value));
    default:
        return std::string(value);
    }
}

std::string glBoolean(std::string_view value)
{
    if (value == "1")
        return "GL_TRUE";
    return value == "0" ? "GL_FALSE" : std::string(value);
}

} // namespace value_names
