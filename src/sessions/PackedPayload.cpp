#include "PackedPayload.h"

#include <algorithm>

namespace sessions {

using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

/// A text field with something behind it, as places of the payload. Without size where a type has none.
struct Field {
    std::size_t begin = 0;
    std::size_t end = 0;
};

Field innerField(std::uint32_t type)
{
    switch (static_cast<Type>(type)) {
    case Type::GlError:
        return {offset::glErrorFunction - offset::payload, offset::glErrorDescription - offset::payload};
    case Type::ReportText:
    case Type::ReportDetail:
        return {offset::reportText - offset::payload, offset::reportTextEnd - offset::payload};
    default:
        return {};
    }
}

} // namespace

void packPayload(std::uint32_t type, std::string_view payload, std::string& to)
{
    payload = trimmedPayload(type, payload);
    const Field field = innerField(type);
    if (payload.size() <= field.begin || field.end == 0) {
        to += payload;
        return;
    }
    std::string_view text = payload.substr(field.begin, field.end - field.begin);
    text = text.substr(0, text.find('\0'));
    to += payload.substr(0, field.begin);
    to += text;
    to += '\0';
    if (payload.size() > field.end)
        to += payload.substr(field.end);
}

void unpackPayload(std::uint32_t type, std::string_view packed, std::string& to)
{
    const Field field = innerField(type);
    to = packed.substr(0, std::min(packed.size(), payloadLimit));
    if (packed.size() <= field.begin || field.end == 0)
        return;
    const std::size_t end = std::min(packed.find('\0', field.begin), packed.size());
    const std::string_view text = packed.substr(field.begin, end - field.begin);
    to.resize(field.begin);
    to += text.substr(0, field.end - field.begin);
    if (end + 1 >= packed.size())
        return;
    to.resize(field.end, '\0');
    to += packed.substr(end + 1, payloadLimit - field.end);
}

} // namespace sessions
