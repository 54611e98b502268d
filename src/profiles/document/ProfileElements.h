#pragma once

#include "ProfileNode.h"

#include <optional>

namespace tinyxml2 {
class XMLElement; // NOLINT(cppcoreguidelines-virtual-class-destructor): theirs to decide
} // namespace tinyxml2

/// What the elements of a profile document mean, for whoever reads and whoever writes them.
namespace profile_elements {

/// The attribute as an int; nothing when it is missing, is not an integer as a whole, or does not fit.
std::optional<int> number(const tinyxml2::XMLElement& element, const char* attribute);

/// A capability, an attribute, or a part of one.
ProfileNode readNode(const tinyxml2::XMLElement& element);

} // namespace profile_elements
