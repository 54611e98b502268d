#pragma once

#include "EsVersion.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

// The vocabulary of the profile editor: constant tables that map between the element names of profile
// documents, the names that the user sees, and enumerant values. Look-ups compare exactly and with case; they
// return true and fill the record, or return false and leave it alone.

/// A text as a type of its own, so that names of different kinds cannot be mixed. Ordered by the text.
template <typename Kind> struct KeyName {
    std::string text;

    bool operator==(const KeyName&) const = default;
    bool operator<(const KeyName& other) const { return text < other.text; }
};

/// What a key holds altogether, as EGL and OpenGL ES define it.
enum class KeyKind {
    Count, ///< A whole number: of bits, of units, or on a scale of its own such as a level.
    Size, ///< A length or an area in whole pixels. With parts it is a width and a height.
    Range, ///< The lower and the upper end of what is possible; the parts are the ends.
    Enumerant,
    Boolean,
    Mask, ///< Any of some bits, an element for each.
    List, ///< Any number of enumerants, an element for each.
    Real, ///< A number that may have a fraction.
};

/// What one value of a key is: the text of one element, and of one cell of the editor.
enum class ValueKind {
    Integer,
    Real, ///< A number that may have a fraction.
    Enumerant,
    Boolean,
    Bit, ///< One bit of a mask, by its name.
};

/// What the values of a key of that kind are, and those of its parts.
constexpr ValueKind valueKind(KeyKind kind)
{
    switch (kind) {
    case KeyKind::Count:
    case KeyKind::Size:
        break;
    case KeyKind::Range:
    case KeyKind::Real:
        return ValueKind::Real;
    case KeyKind::Enumerant:
    case KeyKind::List:
        return ValueKind::Enumerant;
    case KeyKind::Boolean:
        return ValueKind::Boolean;
    case KeyKind::Mask:
        return ValueKind::Bit;
    }
    return ValueKind::Integer;
}

/// Whether values are known by names. Others are numbers, even where an enumerant happens to have the same
/// number.
constexpr bool hasNames(ValueKind kind)
{
    return kind != ValueKind::Integer && kind != ValueKind::Real;
}

namespace esapi {

/// A version of OpenGL ES.
struct API {
    std::string displayName;
    /// What the attribute `version` of an `es` element may be for it. No two APIs share a number.
    std::set<int> versions;

    /// The number by which profiles name it, the shortest one.
    int shortVersion() const { return *versions.begin(); }
    /// The longest number has both digits of the version.
    gl::EsVersion esVersion() const { return static_cast<gl::EsVersion>(*versions.rbegin()); }

    bool operator==(const API&) const = default;
};

/// Orders by version.
bool operator<(const API& left, const API& right);

/// The API of an `es` element's version.
bool findAPI(int version, API* api);

/// The version of OpenGL ES that an `es` element's version stands for: that of its API, or 3.2, which is none
/// of them.
std::optional<gl::EsVersion> versionOf(int version);

/// Calls the function for every API, the oldest first.
void visitAPIs(const std::function<void(const API&)>& visit);

} // namespace esapi

/// An attribute of an EGL config.
struct EGLAttribKey {
    /// An attribute by the name that the user sees, for example "EGL_ALPHA_SIZE".
    using DisplayName = KeyName<struct EGLAttribDisplayNameKind>;

    /// The EGL enumerant.
    std::int32_t value = 0;
    /// The element names from the `config` element down to the value, one or two.
    std::deque<std::string> xmlPath;
    DisplayName displayName;
    /// One value a config; otherwise a bit mask, written as one element for each bit.
    bool single = true;
    /// EGL_CONFORMANT is a mask that the editor treats as a single value.
    KeyKind kind = KeyKind::Count;

    bool operator==(const EGLAttribKey&) const = default;
};

bool findEGLAttribKey(const EGLAttribKey::DisplayName& name, EGLAttribKey* key);
bool findEGLAttribKey(const std::deque<std::string>& xmlPath, EGLAttribKey* key);
bool findEGLAttribKey(int value, EGLAttribKey* key);

/// Calls the function for every attribute in the order of the table.
void visitEGLAttribKeys(const std::function<void(const EGLAttribKey&)>& visit);

/// A capability of an API version, or a part of a compound one.
struct ESCapabilityKey {
    /// A capability by its element name, for example "max_texture_size".
    using XMLName = KeyName<struct ESCapabilityXMLNameKind>;
    /// A capability by the name that the user sees, for example "GL_MAX_TEXTURE_SIZE".
    using DisplayName = KeyName<struct ESCapabilityDisplayNameKind>;

    /// The enumerant by which applications query it; 0 for the parts of a compound value.
    std::uint32_t value = 0;
    XMLName xmlName;
    DisplayName displayName;
    /// One element in a profile; otherwise a list, written as one element for each value.
    bool single = true;
    /// The parts of a compound value, in order.
    std::vector<ESCapabilityKey> children;
    /// The parts of a range or a size are of the kind of the whole.
    KeyKind kind = KeyKind::Count;
    /// The API versions that have it, some of them by an extension only. See gl::minimum() for what they ask
    /// of it.
    gl::EsVersionSpan versions;

    bool operator==(const ESCapabilityKey&) const = default;
};

/// A capability key in the tree of keys: every capability is a root, its parts are its children.
struct ESCapabilityKeyNode {
    ESCapabilityKey key;
    std::vector<ESCapabilityKeyNode> children;

    bool operator==(const ESCapabilityKeyNode&) const = default;
};

/// Both search the whole tree; of the parts that several capabilities share, the first is found.
bool findKeyNode(const ESCapabilityKey::DisplayName& name, ESCapabilityKeyNode* node);
bool findKeyNode(const ESCapabilityKey::XMLName& name, ESCapabilityKeyNode* node);

/// Calls the function for the node of every capability in the order of the table, not for those of its parts.
void visitESCapabilityKeyNodes(const std::function<void(const ESCapabilityKeyNode&)>& visit);
