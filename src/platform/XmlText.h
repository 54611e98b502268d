#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace tinyxml2 {
class XMLDocument;
class XMLElement; // NOLINT(cppcoreguidelines-virtual-class-destructor): theirs to decide
class XMLNode; // NOLINT(cppcoreguidelines-virtual-class-destructor)
} // namespace tinyxml2

/// The way from XML text to the parser's tree and back.
namespace platform {

/// Parses a text that xmlHazard() finds nothing in. Returns why there is no document, which is left empty
/// then, as readable text; "" when it was parsed.
std::string parseXml(tinyxml2::XMLDocument& document, std::string_view text);

/// What stands in an element: its text nodes together.
std::string textOf(const tinyxml2::XMLElement& element);

enum class XmlLayout {
    /// Each element begins a line, unless a text stands before it.
    Indented,
    /// The same, but what stands inside an element that begins with text stays on one line.
    IndentedAroundText,
    /// No line break is added anywhere, so that equal elements give equal text wherever they stand.
    Compact
};

/// Prints a node so that parsing gives it again: blanks and carriage returns that the parser would drop or
/// change are written as character references. Behind the limit, in bytes, printing stops as soon as it can:
/// what is longer is cut off somewhere.
std::string printXml(
    const tinyxml2::XMLNode& node, XmlLayout layout, std::size_t limit = std::numeric_limits<int>::max());

} // namespace platform
