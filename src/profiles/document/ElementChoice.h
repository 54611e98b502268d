#pragma once

#include "ElementOrder.h"
#include "ProfileNode.h"

#include <map>
#include <vector>

/// Which elements of a document are written again for what a profile holds, so that comments and attributes
/// stay where they belong. The elements must have their numbers.
namespace element_choice {

/// For each node the element of the parent that it was read from, if that is still called like it, else one
/// that equals it, else one of its name; null for one that has to be made. The extensions of an API are
/// texts, whatever elements stand in them.
XmlElements forNodes(tinyxml2::XMLElement& parent, const std::vector<ProfileNode>& nodes, bool isApi);

using Sections = std::map<int, tinyxml2::XMLElement*>;

/// For each number the section that its nodes were read from, which had another number where that was
/// changed; else the section that has the number, unless its nodes went elsewhere; null for one that has to
/// be made.
Sections forSections(const Sections& sections, const std::map<int, std::vector<ProfileNode>>& nodes);

} // namespace element_choice
