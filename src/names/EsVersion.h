#pragma once

namespace gl {

/// A version of OpenGL ES. Its number is made of the two digits of the version.
enum class EsVersion { Es11 = 11, Es20 = 20, Es30 = 30, Es31 = 31, Es32 = 32 };

/// The versions from the first to the last; both belong to it.
struct EsVersionSpan {
    EsVersion first = EsVersion::Es11;
    EsVersion last = EsVersion::Es32;

    constexpr bool contains(EsVersion version) const { return version >= first && version <= last; }
    bool operator==(const EsVersionSpan&) const = default;
};

} // namespace gl
