#include "Signature.h"

#include "NormalText.h"

#include <array>
#include <functional>

namespace sessions {

namespace {

constexpr std::array<std::string_view, 3> severityNames{"error", "warning", "message"};

bool isNameCharacter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

std::string_view nameAtStart(std::string_view text)
{
    std::size_t size = 0;
    while (size < text.size() && isNameCharacter(text[size]))
        ++size;
    return text.substr(0, size);
}

} // namespace

std::string_view severityName(Severity severity)
{
    return severityNames.at(static_cast<std::size_t>(severity));
}

std::optional<Severity> severityOfName(std::string_view name)
{
    for (std::size_t i = 0; i < severityNames.size(); ++i) {
        if (severityNames[i] == name)
            return static_cast<Severity>(i);
    }
    return std::nullopt;
}

SignatureView signatureOf(Severity severity, std::string_view function, std::string_view code,
    std::string_view text, std::string& buffer)
{
    if (function.empty() && code.empty() && text.starts_with("EGL_")) {
        const std::string_view name = nameAtStart(text);
        std::string_view rest = text.substr(name.size());
        if (rest.starts_with(" in egl")) {
            rest.remove_prefix(std::string_view(" in ").size());
            code = name;
            function = nameAtStart(rest);
        }
    }
    buffer.clear();
    appendNormalised(cutText(text, signatureTextLimit), buffer);
    std::string_view result = cutText(buffer, signatureTextLimit);
    // Paths may have made it longer. Half a word might be taken for a number the next time.
    if (result.size() < buffer.size()) {
        result = result.substr(0, result.find_last_of(" \n"));
        result = result.substr(0, result.find_last_not_of(" \t\r\n") + 1);
    }
    return {severity, function, code, result};
}

Signature signatureOf(
    Severity severity, std::string_view function, std::string_view code, std::string_view text)
{
    std::string buffer;
    return signatureOf(severity, function, code, text, buffer).copy();
}

std::string_view cutText(std::string_view text, std::size_t limit)
{
    constexpr std::size_t longestCharacter = 4;
    if (text.size() <= limit)
        return text;
    // Bytes that are no UTF-8 at all are cut anywhere.
    std::size_t end = limit;
    while (
        end > 0 && limit - end < longestCharacter && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80)
        --end;
    return text.substr(0, end);
}

std::size_t SignatureHash::operator()(const SignatureView& signature) const
{
    std::size_t hash = static_cast<std::size_t>(signature.severity);
    for (const std::string_view part : {signature.function, signature.code, signature.text})
        hash = hash * 0x9E3779B97F4A7C15U + std::hash<std::string_view>()(part);
    return hash;
}

} // namespace sessions
