#pragma once

#include "ResultCode.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tinyxml2 {
class XMLDocument;
class XMLElement; // NOLINT(cppcoreguidelines-virtual-class-destructor): theirs to decide
} // namespace tinyxml2

/// The property-list format: what its elements are called, what a sound document looks like, and how a key
/// path leads through it. A document is <plist> with one <dict> in which <key> elements and their values take
/// turns.
namespace property_list {

/// What a file is before anything was stored in it, written byte for byte.
inline constexpr std::string_view emptyFile =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n"
    "<dict>\n"
    "</dict>\n"
    "</plist>\n";

enum class ElementName : std::size_t { String, Integer, Real, True, False, Array, Dict, Data, Key };

const char* nameText(ElementName name);

/// True when the element's name hashes as the given one.
bool isNamed(const tinyxml2::XMLElement& element, ElementName name);

/// Parses a document. On failure it is left empty, and the parser's message is in the last argument.
bool parse(tinyxml2::XMLDocument& document, const std::string& bytes, std::string& parserError);

/// The document as a file holds it, indented, such that parsing gives the same tree again.
std::string print(const tinyxml2::XMLDocument& document);

/// Gives the document a root and the root a dict where they are missing, and validates the dict. A root whose
/// first child is something else keeps it in first place. False with a message appended to the error text.
bool repair(tinyxml2::XMLDocument& document, std::string& error);

/// Checks a container's members, given the first of them. Containers inside an array are not looked into.
/// False with a message appended to the error text; never changes the tree.
bool validate(const tinyxml2::XMLElement* first, bool insideArray, std::string& error);

/// Appends a message by way of the 1024-byte buffer that cuts overlong ones.
void appendFormatted(std::string& error, const char* message);

using KeyPath = std::vector<std::string>;

/// Cuts a text at its slashes. Empty components are dropped, so leading, trailing and double slashes mean
/// nothing.
KeyPath splitKeyPath(std::string_view text);

/// Replaces an element's content by a text.
void setText(tinyxml2::XMLElement& element, std::string_view text);

struct Found {
    ResultCode code = ResultCode::NoValue;
    tinyxml2::XMLElement* value = nullptr;
};

/// Follows a key path from the root's first child. The first key of that text wins.
Found find(tinyxml2::XMLDocument& document, const KeyPath& path);

/// The value element that a setter for this path has to fill; missing dicts and keys are made, and a value in
/// the way that is not a dict becomes an empty one. A value that is there is returned as it is, a new one has
/// the given name. Null when there is no place for it. The path must not be empty.
tinyxml2::XMLElement* place(tinyxml2::XMLDocument& document, const KeyPath& path, ElementName name);

/// Puts a new, empty element of another name where the given one was.
tinyxml2::XMLElement* replaceElement(tinyxml2::XMLElement& element, ElementName name);

} // namespace property_list
