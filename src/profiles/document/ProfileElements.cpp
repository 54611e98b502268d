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

ElementNumbers::ElementNumbers(XMLElement& root)
{
    add(root);
}

std::optional<int> ElementNumbers::of(const XMLElement& element)
{
    const auto* found = static_cast<const int*>(element.GetUserData());
    return found ? std::optional(*found) : std::nullopt;
}

void ElementNumbers::add(XMLElement& element)
{
    element.SetUserData(&m_numbers.emplace_back(static_cast<int>(m_numbers.size())));
    for (XMLElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement())
        add(*child);
}

ProfileNode readNode(const XMLElement& element)
{
    ProfileNode node{element.Name(), {}, {}, ElementNumbers::of(element)};
    for (const XMLElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement())
        node.children.push_back(readNode(*child));
    if (node.children.empty())
        node.value = platform::textOf(element);
    return node;
}

} // namespace profile_elements
