#include "PropertyList.h"

#include "Hash.h"
#include "XmlText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <new>

#include <tinyxml2.h>

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;
using tinyxml2::XMLNode;

namespace property_list {

namespace {

constexpr const char* rootName = "plist";

struct NameEntry {
    const char* name;
    std::uint32_t hash;
};

constexpr NameEntry entry(const char* name)
{
    return NameEntry{name, platform::fnv1(name)};
}

// In the order of ElementName.
constexpr std::array elementNames{entry("string"), entry("integer"), entry("real"), entry("true"),
    entry("false"), entry("array"), entry("dict"), entry("data"), entry("key")};

const NameEntry& entryOf(ElementName name)
{
    return elementNames[static_cast<std::size_t>(name)];
}

std::uint32_t nameHash(const XMLElement& element)
{
    const char* name = element.Name();
    return name ? platform::fnv1(name) : 0;
}

bool isHashOf(std::uint32_t hash, ElementName name)
{
    return hash == entryOf(name).hash;
}

/// Null when there is no memory.
XMLElement* newElement(XMLDocument& document, const char* name, bool withVersion)
{
    try {
        XMLElement* element = document.NewElement(name);
        if (withVersion)
            element->SetAttribute("version", "1.0");
        return element;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

/// A new element at the parent's end; null, with a message appended, when that fails.
XMLElement* appendRepaired(
    XMLDocument& document, XMLNode& parent, const std::string& name, std::string& error)
{
    XMLElement* element = newElement(document, name.c_str(), name == rootName);
    if (!element)
        error += "ERROR: Failed to recreate <" + name + "> tag. Out of memory!\n";
    else if (!parent.InsertEndChild(element))
        error += "ERROR: Failed to link <" + name + "> tag!\n";
    else
        return element;
    return nullptr;
}

/// A key without text matches nothing.
bool hasText(const XMLElement& key, std::string_view wanted)
{
    for (const XMLNode* child = key.FirstChild(); child; child = child->NextSibling()) {
        if (!child->ToText())
            continue;
        const std::string_view piece = child->Value();
        if (!wanted.starts_with(piece))
            return false;
        wanted.remove_prefix(piece.size());
    }
    return wanted.empty();
}

/// Where the search for one component in a container ended.
struct Searched {
    XMLElement* value = nullptr;
    /// The value of the last whole pair, null before the first.
    XMLElement* lastValue = nullptr;
    /// An element without partner stands at the end. Only a container that is no dict can have one.
    bool oddElement = false;
};

Searched search(XMLElement* firstKey, std::string_view component)
{
    Searched result;
    XMLElement* key = firstKey;
    while (key) {
        XMLElement* value = key->NextSiblingElement();
        result.oddElement = !value;
        if (!value)
            return result;
        if (hasText(*key, component)) {
            result.value = value;
            return result;
        }
        result.lastValue = value;
        key = value->NextSiblingElement();
    }
    return result;
}

/// A new pair goes to the end of its container. Behind an element without partner it would never be found
/// again, so there it goes before that element.
XMLElement* appendPair(XMLDocument& document, XMLElement& container, const Searched& searched,
    const std::string& text, ElementName name)
{
    XMLElement* key = document.NewElement(nameText(ElementName::Key));
    key->InsertEndChild(document.NewText(text.c_str()));
    XMLElement* value = document.NewElement(nameText(name));
    if (!searched.oddElement)
        container.InsertEndChild(key);
    else if (searched.lastValue)
        container.InsertAfterChild(searched.lastValue, key);
    else
        container.InsertFirstChild(key);
    container.InsertAfterChild(key, value);
    return value;
}

bool validateValue(const XMLElement& value, std::string& error)
{
    const std::uint32_t hash = nameHash(value);
    if (isHashOf(hash, ElementName::Dict))
        return validate(value.FirstChildElement(), false, error);
    return !isHashOf(hash, ElementName::Array) || validate(value.FirstChildElement(), true, error);
}

} // namespace

const char* nameText(ElementName name)
{
    return entryOf(name).name;
}

bool isNamed(const XMLElement& element, ElementName name)
{
    return isHashOf(nameHash(element), name);
}

bool parse(XMLDocument& document, const std::string& bytes, std::string& parserError)
{
    parserError = platform::parseXml(document, bytes);
    return parserError.empty();
}

std::string print(const XMLDocument& document)
{
    return platform::printXml(document, platform::XmlLayout::Indented);
}

bool repair(XMLDocument& document, std::string& error)
{
    XMLElement* root = document.FirstChildElement();
    if (!root)
        root = appendRepaired(document, document, rootName, error);
    if (!root)
        return false;
    XMLElement* dict = root->FirstChildElement();
    if (!dict || !isNamed(*dict, ElementName::Dict))
        dict = appendRepaired(document, *root, nameText(ElementName::Dict), error);
    return dict && validate(dict->FirstChildElement(), false, error);
}

bool validate(const XMLElement* first, bool insideArray, std::string& error)
{
    for (const XMLElement* element = first; element; element = element->NextSiblingElement()) {
        if (insideArray) {
            if (!isNamed(*element, ElementName::Key))
                continue;
            appendFormatted(error, "ERROR: Array elements cannot contain a <key> tag!\n");
            return false;
        }
        if (std::strcmp(element->Name(), nameText(ElementName::Key)) != 0) {
            appendFormatted(error, "ERROR: Missing <key> tag\n");
            return false;
        }
        element = element->NextSiblingElement();
        if (!element) {
            error += "ERROR: Key missing value!";
            return false;
        }
        if (isNamed(*element, ElementName::Key)) {
            appendFormatted(error, "ERROR: Key missing value\n");
            return false;
        }
        if (!validateValue(*element, error))
            return false;
    }
    return true;
}

void appendFormatted(std::string& error, const char* message)
{
    std::array<char, 1024> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%s", message);
    error += buffer.data();
}

KeyPath splitKeyPath(std::string_view text)
{
    KeyPath path;
    while (!text.empty()) {
        const std::string_view component = text.substr(0, text.find('/'));
        if (!component.empty())
            path.emplace_back(component);
        text.remove_prefix(std::min(text.size(), component.size() + 1));
    }
    return path;
}

void setText(XMLElement& element, std::string_view text)
{
    if (platform::textOf(element) == text && !element.FirstChildElement())
        return;
    element.DeleteChildren();
    if (!text.empty())
        element.InsertNewText(std::string(text).c_str());
}

Found find(XMLDocument& document, const KeyPath& path)
{
    XMLElement* container = document.FirstChildElement();
    container = container ? container->FirstChildElement() : nullptr;
    for (const std::string& component : path) {
        container = container ? search(container->FirstChildElement(), component).value : nullptr;
        if (!container)
            return {};
    }
    return path.empty() || !container ? Found{} : Found{ResultCode::Success, container};
}

XMLElement* place(XMLDocument& document, const KeyPath& path, ElementName name)
{
    XMLElement* element = document.FirstChildElement();
    element = element ? element->FirstChildElement() : nullptr;
    for (std::size_t index = 0; element && index < path.size(); ++index) {
        const bool isLast = index + 1 == path.size();
        const Searched searched = search(element->FirstChildElement(), path[index]);
        if (!searched.value)
            element =
                appendPair(document, *element, searched, path[index], isLast ? name : ElementName::Dict);
        else if (!isLast && !isNamed(*searched.value, ElementName::Dict))
            element = replaceElement(*searched.value, ElementName::Dict);
        else
            element = searched.value;
    }
    return element;
}

XMLElement* replaceElement(XMLElement& element, ElementName name)
{
    XMLElement* replacement = element.GetDocument()->NewElement(nameText(name));
    XMLNode* parent = element.Parent();
    parent->InsertAfterChild(&element, replacement);
    parent->DeleteChild(&element);
    return replacement;
}

} // namespace property_list
