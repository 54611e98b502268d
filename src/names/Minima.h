#pragma once

#include "EsVersion.h"

#include <optional>
#include <span>
#include <string_view>

namespace gl {

/// What the standard asks of a limit.
struct Minimum {
    enum class Rule {
        AtLeast, ///< No value is lower than this one.
        AtMost, ///< No value is higher than this one.
        Equals,
        Contains, ///< The range from the first value to the second one includes these two.
    };

    Rule rule = Rule::AtLeast;
    /// One value, or the two ends of a range for Rule::Contains. Lives as long as the program.
    std::span<const double> values;
    /// Where the minimum stands, for people.
    std::string_view source;
};

/// What a version asks of a limit, by its enumerant such as "GL_MAX_TEXTURE_SIZE"; nothing where the standard
/// names no minimum. From 2.0 on, a version asks what the versions before it ask, unless it asks something of
/// its own; 1.1 stands alone.
std::optional<Minimum> minimum(std::string_view enumerant, EsVersion version);

/// Whether a limit has what is asked. A limit of several values, such as a width and a height, has to have it
/// in each; a range is given by its two ends.
bool isMet(const Minimum& minimum, std::span<const double> values);

} // namespace gl
