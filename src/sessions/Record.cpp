#include "Record.h"

#include <algorithm>

namespace sessions {

using ui::messages::recordSize;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

/// Where the last text of a type begins, as an offset of the record; the record's end where the type ends
/// with something else.
std::size_t lastText(std::uint32_t type)
{
    switch (static_cast<Type>(type)) {
    case Type::SetName:
    case Type::LineBreak: // has no text, but is as long
    case Type::Information:
    case Type::Warning:
    case Type::Error:
        return offset::text;
    case Type::IdentifiedMessage:
        return offset::identifiedText;
    case Type::DebugMessage:
        return offset::debugText;
    case Type::GlError:
        return offset::glErrorDescription;
    case Type::ReportKeyedText:
    case Type::ReportOtherKeyedText:
        return offset::reportKeyedText;
    default:
        return recordSize;
    }
}

} // namespace

std::uint32_t Record::u32(std::size_t at) const
{
    return ui::messages::littleEndian32(payload, at - offset::payload);
}

std::string_view Record::text(std::size_t at, std::size_t fieldEnd) const
{
    const std::size_t begin = at - offset::payload;
    if (begin >= payload.size())
        return {};
    const std::string_view field = payload.substr(begin, fieldEnd - at);
    return field.substr(0, field.find('\0'));
}

std::string_view trimmedPayload(std::uint32_t type, std::string_view payload)
{
    payload = payload.substr(0, recordSize - offset::payload);
    const std::size_t text = lastText(type) - offset::payload;
    if (text < payload.size())
        payload = payload.substr(0, payload.find('\0', text));
    const std::size_t last = payload.find_last_not_of('\0');
    return payload.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

} // namespace sessions
