#include "ProfileWriter.h"

#include "Limits.h"
#include "ProfileData.h"
#include "XmlText.h"

#include <map>

#include <tinyxml2.h>

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;
using tinyxml2::XMLNode;

namespace {

/// Builds and prints the document of a profile. To be used once.
class Writer {
public:
    explicit Writer(const ProfileData& profile)
        : m_profile(profile)
    {
    }

    std::string write();

private:
    XMLElement* append(XMLNode* parent, const char* name);
    void appendText(XMLNode* parent, const char* name, const std::string& text);
    void appendNode(XMLNode* parent, const ProfileNode& node);
    void appendForeign(XMLNode* parent, const std::string& elements);
    void appendApis(XMLNode* root);
    void appendEgl(XMLNode* root);
    XMLElement* api(XMLNode* root, int version);

    const ProfileData& m_profile;
    XMLDocument m_document{true, tinyxml2::PRESERVE_WHITESPACE};
    std::map<int, XMLElement*> m_apis;
};

std::string Writer::write()
{
    XMLElement* root = append(&m_document, "profile");
    if (!m_profile.device().empty())
        appendText(root, "device", m_profile.device());
    if (!m_profile.renderer().empty())
        appendText(root, "renderer", m_profile.renderer());
    if (!m_profile.vendor().empty())
        appendText(root, "vendor", m_profile.vendor());
    appendApis(root);
    appendEgl(root);
    appendForeign(root, m_profile.foreign());
    return platform::printXml(
        m_document, platform::XmlLayout::IndentedAroundText, platform::limits::fileSize);
}

XMLElement* Writer::append(XMLNode* parent, const char* name)
{
    XMLElement* element = m_document.NewElement(name);
    parent->InsertEndChild(element);
    return element;
}

void Writer::appendText(XMLNode* parent, const char* name, const std::string& text)
{
    append(parent, name)->InsertEndChild(m_document.NewText(text.c_str()));
}

void Writer::appendNode(XMLNode* parent, const ProfileNode& node)
{
    // Every node gets a text, if only an empty one: it keeps the node's children on its line.
    XMLElement* element = append(parent, node.name.c_str());
    element->InsertEndChild(m_document.NewText(node.value.c_str()));
    for (const ProfileNode& child : node.children)
        appendNode(element, child);
}

void Writer::appendForeign(XMLNode* parent, const std::string& elements)
{
    if (elements.empty())
        return;
    XMLDocument foreign(true, tinyxml2::PRESERVE_WHITESPACE);
    foreign.Parse(elements.data(), elements.size());
    for (const XMLNode* node = foreign.FirstChild(); node; node = node->NextSibling())
        parent->InsertEndChild(node->DeepClone(&m_document));
}

void Writer::appendApis(XMLNode* root)
{
    // Versions that have capabilities alone come after all others.
    for (const auto& [version, extensions] : m_profile.extensions()) {
        XMLElement* element = api(root, version);
        for (const std::string& extension : extensions)
            appendText(element, "extension", extension);
    }
    for (const auto& [version, capabilities] : m_profile.capabilities()) {
        XMLElement* element = api(root, version);
        for (const ProfileNode& capability : capabilities)
            appendNode(element, capability);
    }
}

XMLElement* Writer::api(XMLNode* root, int version)
{
    XMLElement*& element = m_apis[version];
    if (!element) {
        element = append(root, "es");
        element->SetAttribute("version", version);
    }
    return element;
}

void Writer::appendEgl(XMLNode* root)
{
    XMLElement* egl = append(root, "egl");
    for (const auto& [id, attributes] : m_profile.configs()) {
        XMLElement* config = append(egl, "config");
        config->SetAttribute("id", id);
        for (const ProfileNode& attribute : attributes)
            appendNode(config, attribute);
    }
    appendForeign(egl, m_profile.foreignInEgl());
}

} // namespace

std::string writeProfile(const ProfileData& profile)
{
    return Writer(profile).write();
}
