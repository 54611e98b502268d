#include "ProfileWriter.h"

#include "ElementChoice.h"
#include "ElementOrder.h"
#include "Limits.h"
#include "ProfileData.h"
#include "ProfileElements.h"
#include "XmlText.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include <tinyxml2.h>

using element_choice::Sections;
using profile_elements::ElementNumbers;
using profile_elements::number;
using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;
using tinyxml2::XMLNode;

namespace {

ProfileNode extensionNode(const std::string& name)
{
    return {"extension", name, {}};
}

/// Whether nothing would be lost with an element but its own text or elements.
bool isBare(const XMLElement& element, const char* ownAttribute = "")
{
    for (const auto* attribute = element.FirstAttribute(); attribute; attribute = attribute->Next()) {
        if (attribute->Name() != std::string_view(ownAttribute))
            return false;
    }
    for (const XMLNode* node = element.FirstChild(); node; node = node->NextSibling()) {
        if (!node->ToText())
            return false;
    }
    return true;
}

void deleteTexts(XMLElement& element)
{
    for (XMLNode* node = element.FirstChild(); node;) {
        XMLNode* text = std::exchange(node, node->NextSibling());
        if (text->ToText())
            element.DeleteChild(text);
    }
}

/// Writes a profile into the tree of the document that it was read from, so that everything else in it stays.
/// To be used once.
class Writer {
public:
    explicit Writer(const ProfileData& profile)
        : m_profile(profile)
    {
    }

    std::string write();

private:
    void readSource();
    XMLElement* takeText(const char* name, const std::string& text);
    void setText(XMLElement& element, const std::string& text);
    void setNode(XMLElement& element, const ProfileNode& node);
    void setNodes(XMLElement& parent, const std::vector<ProfileNode>& nodes, bool isApi);
    Sections sectionsOf(XMLElement& parent, const char* name, const char* attribute);
    XMLElement* section(XMLElement* chosen, const char* name, const char* attribute, int value);
    void takeApis(XmlElements& order);
    XMLElement* takeEgl();

    const ProfileData& m_profile;
    XMLDocument m_document{true, tinyxml2::PRESERVE_WHITESPACE};
    XMLElement* m_root = nullptr;
    std::optional<ElementNumbers> m_numbers;
};

std::string Writer::write()
{
    readSource();
    XmlElements order;
    for (const auto& [name, text] : {std::pair("device", &m_profile.device()),
             std::pair("renderer", &m_profile.renderer()), std::pair("vendor", &m_profile.vendor())}) {
        if (XMLElement* element = takeText(name, *text))
            order.push_back(element);
    }
    takeApis(order);
    order.push_back(takeEgl());
    XmlElements others;
    for (XMLElement* child = m_root->FirstChildElement(); child; child = child->NextSiblingElement()) {
        const std::string_view name = child->Name();
        const bool isFirstText = (name == "device" || name == "renderer" || name == "vendor")
            && m_root->FirstChildElement(child->Name()) == child;
        const bool isApi = name == "es" && number(*child, "version");
        if (!isFirstText && !isApi && std::find(order.begin(), order.end(), child) == order.end())
            others.push_back(child);
    }
    order.insert(order.end(), others.begin(), others.end());
    orderElements(*m_root, order);
    return platform::printXml(
        m_document, platform::XmlLayout::IndentedAroundText, platform::limits::fileSize);
}

/// Parses what the profile was read from, without what a save does not write.
void Writer::readSource()
{
    const bool isRead = m_profile.source() && platform::parseXml(m_document, *m_profile.source()).empty();
    m_root = isRead ? m_document.FirstChildElement("profile") : nullptr;
    if (!m_root) {
        m_document.Clear();
        m_root = m_document.NewElement("profile");
        m_document.InsertEndChild(m_root);
    }
    m_numbers.emplace(*m_root);
    m_document.SetBOM(false);
    for (XMLNode* node = m_document.FirstChild(); node;) {
        XMLNode* declaration = std::exchange(node, node->NextSibling());
        if (declaration->ToDeclaration() && std::string_view(declaration->Value()).starts_with("xml "))
            m_document.DeleteChild(declaration);
    }
    deleteTexts(*m_root);
}

/// The element of a text of the profile; none where it would say nothing.
XMLElement* Writer::takeText(const char* name, const std::string& text)
{
    XMLElement* element = m_root->FirstChildElement(name);
    // The first one counts, so an empty one before another has a meaning.
    if (text.empty() && (!element || (isBare(*element) && !element->NextSiblingElement(name))))
        return nullptr;
    if (!element)
        element = m_root->InsertNewChildElement(name);
    setText(*element, text);
    return element;
}

/// Every such element begins with a text, if only an empty one: it keeps what follows on its line.
void Writer::setText(XMLElement& element, const std::string& text)
{
    const bool isOther = platform::textOf(element) != text;
    if (isOther)
        deleteTexts(element);
    if (isOther || !element.FirstChild() || !element.FirstChild()->ToText())
        element.InsertFirstChild(m_document.NewText(isOther ? text.c_str() : ""));
}

void Writer::setNode(XMLElement& element, const ProfileNode& node)
{
    // A text beside parts is not read, so it stays what it is.
    const bool keepsText = !node.children.empty() && element.FirstChildElement();
    setText(element, keepsText ? platform::textOf(element) : node.value);
    setNodes(element, node.children, false);
}

/// Makes these the elements of a parent.
void Writer::setNodes(XMLElement& parent, const std::vector<ProfileNode>& nodes, bool isApi)
{
    XmlElements there;
    for (XMLElement* child = parent.FirstChildElement(); child; child = child->NextSiblingElement())
        there.push_back(child);
    XmlElements order = element_choice::forNodes(parent, nodes, isApi);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (!order[i])
            order[i] = m_document.NewElement(nodes[i].name.c_str());
        if (isApi && nodes[i].name == "extension")
            setText(*order[i], nodes[i].value);
        else
            setNode(*order[i], nodes[i]);
    }
    // Texts keep their place before the elements.
    if (there != order)
        orderElements(parent, order);
}

/// The elements with that name and a proper number. Those with the same number become one.
Sections Writer::sectionsOf(XMLElement& parent, const char* name, const char* attribute)
{
    Sections sections;
    for (XMLElement* child = parent.FirstChildElement(name); child;) {
        XMLElement* found = std::exchange(child, child->NextSiblingElement(name));
        const std::optional<int> value = number(*found, attribute);
        if (!value)
            continue;
        deleteTexts(*found);
        const auto [place, isFirst] = sections.emplace(*value, found);
        if (isFirst)
            continue;
        XMLElement& first = *place->second;
        while (XMLNode* node = found->FirstChild())
            first.InsertEndChild(node);
        for (const auto* more = found->FirstAttribute(); more; more = more->Next()) {
            if (!first.Attribute(more->Name()))
                first.SetAttribute(more->Name(), more->Value());
        }
    }
    return sections;
}

XMLElement* Writer::section(XMLElement* chosen, const char* name, const char* attribute, int value)
{
    XMLElement* element = chosen ? chosen : m_document.NewElement(name);
    element->SetAttribute(attribute, value);
    return element;
}

void Writer::takeApis(XmlElements& order)
{
    std::map<int, std::vector<ProfileNode>> nodes;
    // Versions that have capabilities alone come after all others.
    std::vector<int> versions;
    for (const auto& [version, extensions] : m_profile.extensions()) {
        versions.push_back(version);
        std::transform(
            extensions.begin(), extensions.end(), std::back_inserter(nodes[version]), extensionNode);
    }
    for (const auto& [version, capabilities] : m_profile.capabilities()) {
        if (!nodes.contains(version))
            versions.push_back(version);
        nodes[version].insert(nodes[version].end(), capabilities.begin(), capabilities.end());
    }
    Sections chosen = element_choice::forSections(sectionsOf(*m_root, "es", "version"), nodes);
    for (const int version : versions) {
        order.push_back(section(chosen[version], "es", "version", version));
        setNodes(*order.back(), nodes[version], true);
    }
}

XMLElement* Writer::takeEgl()
{
    XMLElement* egl = m_root->FirstChildElement("egl");
    if (!egl)
        egl = m_root->InsertNewChildElement("egl");
    deleteTexts(*egl);
    const Sections sections = sectionsOf(*egl, "config", "id");
    Sections configs = element_choice::forSections(sections, m_profile.configs());
    std::set<const XMLElement*> taken;
    for (auto& [id, config] : configs) {
        config = section(config, "config", "id", id);
        taken.insert(config);
        setNodes(*config, m_profile.configs().at(id), false);
    }
    for (const auto& [id, config] : sections) {
        // One without attributes says nothing, unless somebody has written more into it.
        if (!taken.contains(config) && !config->FirstChildElement() && !isBare(*config, "id"))
            configs.emplace(id, config);
    }
    XmlElements order;
    for (const auto& [id, config] : configs)
        order.push_back(config);
    for (XMLElement* child = egl->FirstChildElement(); child; child = child->NextSiblingElement()) {
        if (child->Name() != std::string_view("config") || !number(*child, "id"))
            order.push_back(child);
    }
    orderElements(*egl, order);
    return egl;
}

} // namespace

std::string writeProfile(const ProfileData& profile)
{
    return Writer(profile).write();
}
