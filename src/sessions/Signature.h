#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sessions {

/// From the worst.
enum class Severity : std::uint8_t { Error, Warning, Message };

/// "error", "warning", "message"; and back.
std::string_view severityName(Severity severity);
std::optional<Severity> severityOfName(std::string_view name);

/// What the findings of one kind have in common. The text is normalised.
struct Signature {
    Severity severity = Severity::Error;
    std::string function;
    std::string code;
    std::string text;

    // The analysis takes the zero in it for a pointer.
    auto operator<=>(const Signature&) const = default; // NOLINT(modernize-use-nullptr)
};

/// The same without owning the texts.
struct SignatureView {
    Severity severity = Severity::Error;
    std::string_view function;
    std::string_view code;
    std::string_view text;

    SignatureView() = default;
    SignatureView(Severity theSeverity, std::string_view theFunction, std::string_view theCode,
        std::string_view theText)
        : severity(theSeverity)
        , function(theFunction)
        , code(theCode)
        , text(theText)
    {
    }
    // Wherever a view is wanted, the signature itself will do.
    SignatureView(const Signature& signature) // NOLINT(google-explicit-constructor)
        : SignatureView(signature.severity, signature.function, signature.code, signature.text)
    {
    }
    Signature copy() const { return {severity, std::string(function), std::string(code), std::string(text)}; }

    bool operator==(const SignatureView&) const = default;
};

/// The signature of an error or warning. Where neither function nor code is known, they are taken from a text
/// such as "EGL_BAD_MATCH in eglCreateContext(...)". Texts are cut to `signatureTextLimit` bytes.
/// The view is valid as long as the arguments and the buffer, which is overwritten.
SignatureView signatureOf(Severity severity, std::string_view function, std::string_view code,
    std::string_view text, std::string& buffer);
Signature signatureOf(
    Severity severity, std::string_view function, std::string_view code, std::string_view text);

inline constexpr std::size_t signatureTextLimit = 1024; // bytes

/// The first bytes of a text, without the beginning of a character at the end.
std::string_view cutText(std::string_view text, std::size_t limit);

/// For containers that are searched by views.
struct SignatureHash {
    using is_transparent = void;
    std::size_t operator()(const SignatureView& signature) const;
};
struct SignatureEqual {
    using is_transparent = void;
    bool operator()(const SignatureView& a, const SignatureView& b) const { return a == b; }
};

} // namespace sessions
