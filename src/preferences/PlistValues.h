#pragma once

#include "PropertyList.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

/// Values of a property list as the program knows them, and how they stand in elements.
namespace property_list {

using List = std::vector<std::string>;
using Data = std::vector<char>;
using Value = std::variant<bool, std::string, List, std::int64_t, double, Data>;

// Each reads a value of its kind; false when the element has another name or its text does not convert.
bool read(const tinyxml2::XMLElement& element, bool& value);
bool read(const tinyxml2::XMLElement& element, std::string& value);
bool read(const tinyxml2::XMLElement& element, List& value);
bool read(const tinyxml2::XMLElement& element, std::int64_t& value);
bool read(const tinyxml2::XMLElement& element, double& value);
bool read(const tinyxml2::XMLElement& element, Data& value);

/// False for what a file cannot hold: text with a NUL in it, reals that are not finite.
bool isStorable(const Value& value);

/// Stores a storable value under a path that is not empty, see place(). A value of the same kind keeps its
/// element, one of another kind is replaced.
void write(tinyxml2::XMLDocument& document, const KeyPath& path, const Value& value);

} // namespace property_list
