#pragma once

#include <string>
#include <vector>

/// An element of a profile document that the program does not interpret while reading: a capability, an EGL
/// attribute, or a part of one. An element holds either a value or children; the value is its text as it
/// stands in the file.
struct ProfileNode {
    std::string name;
    std::string value;
    std::vector<ProfileNode> children;

    bool operator==(const ProfileNode&) const = default;
};
