#pragma once

#include "Record.h"
#include "Signature.h"

#include <array>
#include <optional>
#include <string_view>

namespace sessions {

/// Where a finding comes from.
enum class Origin : std::uint8_t { GlError, Error, Warning, DebugMessage };

/// "GL error", "error", "warning", "debug message".
std::string_view originName(Origin origin);

/// One record that is a finding. Its texts are valid as long as the record.
struct Occurrence {
    Severity severity = Severity::Error;
    Origin origin = Origin::Error;
    std::string_view function; ///< Empty where none is known.
    std::string_view text;

    std::string_view code() const
    {
        return codeName.empty() ? std::string_view(codeDigits.data()) : codeName;
    }

    std::string_view codeName; ///< A constant, such as "GL_INVALID_ENUM".
    std::array<char, 12> codeDigits{}; ///< For codes without a name.
};

/// What a record says of the program; nothing if it is no finding. Errors, warnings and debug messages are,
/// except for the marks and groups that programs put among these.
std::optional<Occurrence> occurrenceOf(const Record& record);

} // namespace sessions
