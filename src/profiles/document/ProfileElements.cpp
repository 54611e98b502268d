#include "ProfileElements.h"

#include "Numbers.h"
#include "XmlText.h"

#include <tinyxml2.h>

using tinyxml2::XMLElement;

namespace profile_elements {

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
        node.value = platform::textOf(element);
    return node;
}

} // namespace profile_elements
