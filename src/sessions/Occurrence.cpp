#include "Occurrence.h"

#include "GlEnumerants.h"

#include <cstdio>

namespace sessions {

using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

constexpr std::uint32_t debugTypeError = 0x824C;
constexpr std::uint32_t debugTypeMarker = 0x8268;
constexpr std::uint32_t debugTypePushGroup = 0x8269;
constexpr std::uint32_t debugTypePopGroup = 0x826A;
constexpr std::uint32_t debugSeverityHigh = 0x9146;

void setCode(Occurrence& occurrence, const char* name, std::uint32_t value)
{
    if (*name != '\0')
        occurrence.codeName = name;
    else
        std::snprintf(occurrence.codeDigits.data(), occurrence.codeDigits.size(), "0x%04X", value);
}

std::optional<Occurrence> debugMessage(const Record& record)
{
    const std::uint32_t type = record.u32(offset::debugType);
    if (type == debugTypeMarker || type == debugTypePushGroup || type == debugTypePopGroup)
        return std::nullopt;
    Occurrence occurrence;
    occurrence.origin = Origin::DebugMessage;
    if (type == debugTypeError)
        occurrence.severity = Severity::Error;
    else if (record.u32(offset::debugSeverity) == debugSeverityHigh)
        occurrence.severity = Severity::Warning;
    else
        occurrence.severity = Severity::Message;
    setCode(occurrence, gl::enumerantName(static_cast<std::int32_t>(type)), type);
    occurrence.text = record.text(offset::debugText);
    return occurrence;
}

std::optional<Occurrence> glError(const Record& record)
{
    Occurrence occurrence;
    occurrence.origin = Origin::GlError;
    const std::uint32_t code = record.u32(offset::glErrorCode);
    setCode(occurrence, gl::errorName(code), code);
    occurrence.function = record.text(offset::glErrorFunction, offset::glErrorDescription);
    occurrence.text = record.text(offset::glErrorDescription);
    return occurrence;
}

} // namespace

std::string_view originName(Origin origin)
{
    constexpr std::array<std::string_view, 4> names{"GL error", "error", "warning", "debug message"};
    return names.at(static_cast<std::size_t>(origin));
}

std::optional<Occurrence> occurrenceOf(const Record& record)
{
    Occurrence occurrence;
    switch (static_cast<Type>(record.type)) {
    case Type::DebugMessage:
        return debugMessage(record);
    case Type::GlError:
        return glError(record);
    case Type::Warning:
        occurrence.severity = Severity::Warning;
        occurrence.origin = Origin::Warning;
        occurrence.text = record.text(offset::text);
        return occurrence;
    case Type::Error:
        occurrence.text = record.text(offset::text);
        return occurrence;
    default:
        return std::nullopt;
    }
}

} // namespace sessions
