#include "EglStrings.h"

#include "Limits.h"
#include "ProfileData.h"
#include "XmlText.h"

#include <tinyxml2.h>

using platform::textOf;
using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

EglStrings eglStrings(const ProfileData& profile)
{
    EglStrings strings;
    XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
    if (!profile.source() || !platform::parseXml(document, *profile.source()).empty())
        return strings;
    const XMLElement* root = document.FirstChildElement("profile");
    const XMLElement* egl = root ? root->FirstChildElement("egl") : nullptr;
    if (!egl)
        return strings;
    if (const XMLElement* vendor = egl->FirstChildElement("vendor"))
        strings.vendor = textOf(*vendor);
    if (const XMLElement* version = egl->FirstChildElement("version"))
        strings.version = textOf(*version);
    for (const XMLElement* extension = egl->FirstChildElement("extension"); extension;
         extension = extension->NextSiblingElement("extension"))
        strings.extensions.push_back(textOf(*extension));
    return strings;
}

void setEglStrings(ProfileData& profile, const EglStrings& strings)
{
    XMLDocument document;
    XMLElement* root = document.NewElement("profile");
    document.InsertEndChild(root);
    XMLElement* egl = root->InsertNewChildElement("egl");
    const auto add = [egl](const char* name, const std::string& text) {
        if (!text.empty())
            egl->InsertNewChildElement(name)->SetText(text.c_str());
    };
    add("vendor", strings.vendor);
    add("version", strings.version);
    for (const std::string& extension : strings.extensions)
        add("extension", extension);
    profile.setSource(
        platform::printXml(document, platform::XmlLayout::IndentedAroundText, platform::limits::fileSize));
}
