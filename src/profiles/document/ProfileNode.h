#pragma once

#include <optional>
#include <string>
#include <vector>

/// An element of a profile document that the program does not interpret while reading: a capability, an EGL
/// attribute, or a part of one. An element holds either a value or children; the value is its text as it
/// stands in the file.
struct ProfileNode {
    std::string name;
    std::string value;
    std::vector<ProfileNode> children;
    /// Which element of the document it was read from, from 0 in the document's order; nothing for one that
    /// was made. A save writes the node into that element again.
    std::optional<int> origin = std::nullopt;

    /// Compares what is read of it, not where it comes from.
    bool operator==(const ProfileNode& other) const
    {
        return name == other.name && value == other.value && children == other.children;
    }
};
