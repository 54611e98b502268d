#include "PlistValues.h"

#include "Base64.h"
#include "CImmutableByteWrapper.h"
#include "CVectorByteWrapper.h"
#include "ControlCharacters.h"
#include "Numbers.h"
#include "XmlText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <istream>
#include <iterator>
#include <locale>
#include <optional>

#include <tinyxml2.h>

using tinyxml2::XMLElement;

namespace property_list {

namespace {

bool isTextStorable(const std::string& text)
{
    return text.find('\0') == std::string::npos;
}

template <typename Number> bool take(const std::optional<Number>& parsed, Number& value)
{
    if (parsed)
        value = *parsed;
    return parsed.has_value();
}

/// Which element a value needs, and how it gets in there.
struct Writer {
    XMLElement& element;

    void operator()(bool value) const
    {
        element.SetName(nameText(value ? ElementName::True : ElementName::False));
    }
    void operator()(const std::string& value) const { setText(element, control_characters::hidden(value)); }
    void operator()(std::int64_t value) const { setText(element, platform::formatInteger(value)); }
    void operator()(double value) const { setText(element, platform::formatReal(value)); }
    void operator()(const Data& value) const
    {
        std::vector<char> text;
        CImmutableByteWrapper source(asText(value));
        CVectorByteWrapper target(text);
        base64::encode(source, target);
        setText(element, asText(text));
    }
    void operator()(const List& value) const
    {
        element.DeleteChildren();
        for (const std::string& member : value)
            setText(*element.InsertNewChildElement(nameText(ElementName::String)),
                control_characters::hidden(member));
    }
};

// In the order of Value's alternatives.
constexpr std::array valueNames{ElementName::False, ElementName::String, ElementName::Array,
    ElementName::Integer, ElementName::Real, ElementName::Data};

bool isBoolean(const XMLElement& element)
{
    return isNamed(element, ElementName::True) || isNamed(element, ElementName::False);
}

bool isOfKind(const XMLElement& element, const Value& value)
{
    return std::holds_alternative<bool>(value) ? isBoolean(element)
                                               : isNamed(element, valueNames[value.index()]);
}

} // namespace

bool read(const XMLElement& element, bool& value)
{
    if (!isBoolean(element))
        return false;
    CImmutableByteWrapper name(element.Name());
    std::istream stream(&name);
    stream.imbue(std::locale::classic());
    bool read = false;
    if (!(stream >> std::boolalpha >> read))
        return false;
    value = read;
    return true;
}

bool read(const XMLElement& element, std::string& value)
{
    if (!isNamed(element, ElementName::String))
        return false;
    // All of the text, blanks and line ends included, so not the formatted extraction that stops at the first
    // one.
    const std::string text = control_characters::restored(platform::textOf(element));
    CImmutableByteWrapper source(text);
    value.assign(std::istreambuf_iterator<char>(&source), std::istreambuf_iterator<char>());
    return true;
}

bool read(const XMLElement& element, List& value)
{
    if (!isNamed(element, ElementName::Array))
        return false;
    List members;
    for (const XMLElement* member = element.FirstChildElement(); member;
         member = member->NextSiblingElement()) {
        if (!read(*member, members.emplace_back()))
            return false;
    }
    value = std::move(members);
    return true;
}

bool read(const XMLElement& element, std::int64_t& value)
{
    return isNamed(element, ElementName::Integer)
        && take(platform::parseInteger(platform::textOf(element)), value);
}

bool read(const XMLElement& element, double& value)
{
    return isNamed(element, ElementName::Real) && take(platform::parseReal(platform::textOf(element)), value);
}

bool read(const XMLElement& element, Data& value)
{
    if (!isNamed(element, ElementName::Data))
        return false;
    Data bytes;
    const std::string text = platform::textOf(element);
    CImmutableByteWrapper source(text);
    CVectorByteWrapper target(bytes);
    if (!base64::decode(source, target))
        return false;
    value = std::move(bytes);
    return true;
}

bool isStorable(const Value& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return isTextStorable(*text);
    if (const auto* list = std::get_if<List>(&value))
        return std::all_of(list->begin(), list->end(), isTextStorable);
    const auto* real = std::get_if<double>(&value);
    return !real || std::isfinite(*real);
}

void write(tinyxml2::XMLDocument& document, const KeyPath& path, const Value& value)
{
    const ElementName name = valueNames[value.index()];
    XMLElement* element = place(document, path, name);
    if (element && !isOfKind(*element, value))
        element = replaceElement(*element, name);
    if (element)
        std::visit(Writer{*element}, value);
}

} // namespace property_list
