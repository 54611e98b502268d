#pragma once

#include <vector>

namespace tinyxml2 {
class XMLElement; // NOLINT(cppcoreguidelines-virtual-class-destructor): theirs to decide
} // namespace tinyxml2

using XmlElements = std::vector<tinyxml2::XMLElement*>;

/// Makes these the elements of a parent, in that order: new ones are put in, and those that are not among
/// them are deleted. Comments stay before the element that they stand before; those of a deleted element
/// before the next one that stays.
void orderElements(tinyxml2::XMLElement& parent, const XmlElements& order);
