#include "ProfileReader.h"

#include "Numbers.h"
#include "Utf8.h"
#include "XmlText.h"

#include <algorithm>
#include <optional>

using platform::textOf;
using platform::XmlLayout;
using tinyxml2::XMLAttribute;
using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;
using tinyxml2::XMLText;

namespace {

/// Character references can name halves of surrogate pairs, which no text may hold.
class EncodingCheck : public tinyxml2::XMLVisitor {
public:
    bool VisitEnter(const XMLElement& /*element*/, const XMLAttribute* attribute) override
    {
        for (; attribute && m_good; attribute = attribute->Next())
            m_good = platform::isUtf8(attribute->Value());
        return m_good;
    }
    bool Visit(const XMLText& text) override
    {
        m_good = m_good && platform::isUtf8(text.Value());
        return m_good;
    }
    bool isGood() const { return m_good; }

private:
    bool m_good = true;
};

std::string textOfChild(const XMLElement& parent, const char* name)
{
    const XMLElement* child = parent.FirstChildElement(name);
    return child ? textOf(*child) : std::string();
}

/// The attribute as an int; nothing when it is missing, is not an integer as a whole, or does not fit.
std::optional<int> number(const XMLElement& element, const char* attribute)
{
    const char* text = element.Attribute(attribute);
    return text ? platform::parseInt32(text) : std::nullopt;
}

ProfileNode readNode(const XMLElement& element)
{
    ProfileNode node{element.Name(), {}, {}};
    for (const XMLElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement())
        node.children.push_back(readNode(*child));
    if (node.children.empty())
        node.value = textOf(element);
    return node;
}

} // namespace

std::string ProfileReader::read(std::string_view document)
{
    if (!platform::isUtf8(document))
        return "it is not UTF-8 text";
    XMLDocument xml(true, tinyxml2::PRESERVE_WHITESPACE);
    std::string reason = platform::parseXml(xml, document);
    if (!reason.empty())
        return reason;
    EncodingCheck check;
    xml.Accept(&check);
    if (!check.isGood())
        return "it refers to a character that does not exist";
    const XMLElement* profile = xml.FirstChildElement("profile");
    if (!profile)
        return "No <profile> element was found";
    readProfile(*profile);
    return {};
}

void ProfileReader::readProfile(const XMLElement& profile)
{
    m_profile.setDevice(textOfChild(profile, "device"));
    m_profile.setRenderer(textOfChild(profile, "renderer"));
    m_profile.setVendor(textOfChild(profile, "vendor"));
    const XMLElement* egl = profile.FirstChildElement("egl");
    if (egl)
        readEgl(*egl);

    for (const XMLElement* child = profile.FirstChildElement(); child; child = child->NextSiblingElement()) {
        const std::string_view name = child->Name();
        const std::optional<int> version = name == "es" ? number(*child, "version") : std::nullopt;
        if (version)
            readApi(*child, *version);
        else if (child != egl && name != "device" && name != "renderer" && name != "vendor")
            m_profile.m_foreign += platform::printXml(*child, XmlLayout::Compact);
    }
    for (auto& [version, names] : m_profile.extensions())
        std::sort(names.begin(), names.end());
}

void ProfileReader::readApi(const XMLElement& api, int version)
{
    std::vector<std::string>& extensions = m_profile.extensions()[version];
    for (const XMLElement* child = api.FirstChildElement(); child; child = child->NextSiblingElement()) {
        if (child->Name() == std::string_view("extension"))
            extensions.push_back(textOf(*child));
        else
            m_profile.capabilities()[version].push_back(readNode(*child));
    }
}

void ProfileReader::readEgl(const XMLElement& egl)
{
    for (const XMLElement* child = egl.FirstChildElement(); child; child = child->NextSiblingElement()) {
        const bool isConfig = child->Name() == std::string_view("config");
        const std::optional<int> id = isConfig ? number(*child, "id") : std::nullopt;
        if (!id) {
            m_profile.m_foreignInEgl += platform::printXml(*child, XmlLayout::Compact);
            continue;
        }
        for (const XMLElement* attribute = child->FirstChildElement(); attribute;
             attribute = attribute->NextSiblingElement())
            m_profile.configs()[*id].push_back(readNode(*attribute));
    }
}
