#include "HiddenElements.h"

#include "ProfileData.h"
#include "ProfileElements.h"
#include "XmlText.h"

#include <optional>
#include <string_view>

#include <tinyxml2.h>

using tinyxml2::XMLElement;
using Reason = HiddenElement::Reason;

namespace {

std::string tagOf(const XMLElement& element)
{
    std::string tag = std::string("<") + element.Name();
    for (const auto* attribute = element.FirstAttribute(); attribute; attribute = attribute->Next())
        tag += std::string(" ") + attribute->Name() + "=\"" + attribute->Value() + '"';
    return tag + '>';
}

/// Nothing for an element that the profile shows.
std::optional<Reason> reasonInRoot(const XMLElement& element)
{
    const std::string_view name = element.Name();
    if (name == "es")
        return profile_elements::number(element, "version") ? std::nullopt : std::optional(Reason::Version);
    if (name != "device" && name != "renderer" && name != "vendor" && name != "egl")
        return Reason::Unknown;
    return element.PreviousSiblingElement(element.Name()) ? std::optional(Reason::Repeated) : std::nullopt;
}

std::optional<Reason> reasonInEgl(const XMLElement& element)
{
    const std::string_view name = element.Name();
    // What eglQueryString() answers has its place, though no list shows it.
    if (name == "vendor" || name == "version" || name == "extension")
        return std::nullopt;
    if (name != "config")
        return Reason::Unknown;
    return profile_elements::number(element, "id") ? std::nullopt : std::optional(Reason::Id);
}

void collect(std::vector<HiddenElement>& found, const XMLElement& parent,
    std::optional<Reason> (*reasonOf)(const XMLElement&))
{
    for (const XMLElement* child = parent.FirstChildElement(); child; child = child->NextSiblingElement()) {
        const std::optional<Reason> reason = reasonOf(*child);
        if (reason)
            found.push_back({tagOf(*child), child->GetLineNum(), *reason});
        else if (child->Name() == std::string_view("egl"))
            collect(found, *child, reasonInEgl);
    }
}

} // namespace

std::vector<HiddenElement> hiddenElements(const ProfileData& profile)
{
    std::vector<HiddenElement> found;
    tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
    if (profile.source() && platform::parseXml(document, *profile.source()).empty()) {
        if (const XMLElement* root = document.FirstChildElement("profile"))
            collect(found, *root, reasonInRoot);
    }
    return found;
}
