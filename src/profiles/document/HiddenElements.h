#pragma once

#include <string>
#include <vector>

class ProfileData;

/// An element of a document that a save keeps, although no part of the profile shows it.
struct HiddenElement {
    enum class Reason {
        /// It has no place in a profile.
        Unknown,
        /// An `es` whose version is missing or no whole number.
        Version,
        /// A `config` whose id is missing or no whole number.
        Id,
        /// Only the first one of its name counts.
        Repeated
    };

    /// The start tag as it is written, `<es version="3.1">` for example.
    std::string tag;
    /// In the document that was read, from 1.
    int line;
    Reason reason;
};

/// In the order of the document.
std::vector<HiddenElement> hiddenElements(const ProfileData& profile);
