#pragma once

#include "Message.h"

#include <string>
#include <string_view>

/// Records as applications send them.
namespace records {

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

inline Message make(Type type, std::uint32_t frame = 1)
{
    Message message = Message::make(type);
    message.setU32(offset::frame, frame);
    return message;
}

inline Message pid(std::uint32_t pid)
{
    Message message = make(Type::SetPid);
    message.setU32(offset::pid, pid);
    return message;
}

inline Message text(Type type, std::string_view text, std::uint32_t frame = 1)
{
    Message message = make(type, frame);
    message.setText(offset::text, text);
    return message;
}

inline Message identified(std::string_view text, std::uint32_t id)
{
    Message message = make(Type::IdentifiedMessage);
    message.setU32(offset::identifiedId, id);
    message.setText(offset::identifiedText, text);
    return message;
}

inline Message debug(std::uint32_t type, std::uint32_t id, std::uint32_t severity, std::string_view text)
{
    Message message = make(Type::DebugMessage);
    message.setU32(offset::debugType, type);
    message.setU32(offset::debugId, id);
    message.setU32(offset::debugSeverity, severity);
    message.setText(offset::debugText, text);
    return message;
}

inline Message glError(
    std::uint32_t code, std::string_view function, std::string_view description, std::uint32_t frame = 1)
{
    Message message = make(Type::GlError, frame);
    message.setU32(offset::glErrorCode, code);
    message.setText(offset::glErrorFunction, function, offset::glErrorDescription);
    message.setText(offset::glErrorDescription, description);
    return message;
}

inline Message context(std::uint32_t number)
{
    Message message = make(Type::ContextInformation);
    message.setU32(offset::contextNumber, number);
    message.setU32(offset::contextStrict, 1);
    return message;
}

inline std::string bytes(const Message& message)
{
    return {message.data(), ui::messages::recordSize};
}

} // namespace records
