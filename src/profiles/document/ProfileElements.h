#pragma once

#include "ProfileNode.h"

#include <deque>
#include <optional>

namespace tinyxml2 {
class XMLElement; // NOLINT(cppcoreguidelines-virtual-class-destructor): theirs to decide
} // namespace tinyxml2

/// What the elements of a profile document mean, for whoever reads and whoever writes them.
namespace profile_elements {

/// The attribute as an int; nothing when it is missing, is not an integer as a whole, or does not fit.
std::optional<int> number(const tinyxml2::XMLElement& element, const char* attribute);

/// Numbers the elements of a document in their order, as long as it lives.
class ElementNumbers {
public:
    /// Begins with the root. Takes the place of user data that the elements have.
    explicit ElementNumbers(tinyxml2::XMLElement& root);

    /// Nothing for an element that was not in the document then.
    static std::optional<int> of(const tinyxml2::XMLElement& element);

private:
    void add(tinyxml2::XMLElement& element);

    std::deque<int> m_numbers;
};

/// A capability, an attribute, or a part of one; its origin is the number of the element.
ProfileNode readNode(const tinyxml2::XMLElement& element);

} // namespace profile_elements
