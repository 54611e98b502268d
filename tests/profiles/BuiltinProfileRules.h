#pragma once

#include "ProfileNode.h"

#include <limits>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>

/// What must hold in a profile that we ship. Versions are those of the documents: 1, 2, 3 and 31, so that
/// they can be compared; both ends of a range of versions belong to it.
namespace rules {

/// A capability that a version must have: its path, and its least and its most where the table of minima does
/// not say them. With an extension it must be there with the extension, and must not be there without.
struct Limit {
    const char* key;
    int first;
    int last;
    long long least = std::numeric_limits<long long>::min();
    long long most = std::numeric_limits<long long>::max();
    const char* extension = nullptr;
};
extern const std::span<const Limit> limits;

std::optional<long long> wholeNumber(const std::string& text);
/// Fails the running test for every limit of a version that is below what the standard asks.
void checkMinima(int version, const std::vector<ProfileNode>& capabilities);
/// Whether a capability may be repeated or is a part of one that may.
bool isListKey(const std::string& path);
bool isCatalogued(const std::string& extension);
/// Whether the extension exists for the version and does not repeat what the version has of its own.
bool fitsVersion(const std::string& extension, int version);

bool isMask(const std::string& attribute);
std::string renderableBit(int version);
using Attributes = std::map<std::string, std::string>;
/// Fails the running test for what is missing, unknown or does not add up within one EGL config.
void checkAttributes(const Attributes& text);
/// The same for its surface types and what depends on them.
void checkSurfaces(const Attributes& text, const std::set<std::string>& surfaces);

} // namespace rules
