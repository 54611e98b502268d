#include "Session.h"

#include <string>

#include <unistd.h>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace demo {

Session::Session(Output& output, Clock::duration pace)
    : m_output(output)
    , m_pace(pace)
{
}

void Session::introduce(std::string_view name)
{
    Message message = record(Type::SetPid);
    message.setU32(offset::pid, static_cast<std::uint32_t>(getpid()));
    send(message);
    setName(name);
}

void Session::setName(std::string_view name)
{
    send(record(Type::SetName, name));
}

void Session::information(std::string_view text)
{
    send(record(Type::Information, text));
}

void Session::lineBreak()
{
    send(record(Type::LineBreak));
}

void Session::identified(std::uint32_t id, std::string_view text)
{
    Message message = record(Type::IdentifiedMessage);
    message.setU32(offset::identifiedId, id);
    message.setText(offset::identifiedText, text);
    send(message);
}

void Session::debug(
    std::uint32_t source, std::uint32_t type, std::uint32_t id, std::uint32_t severity, std::string_view text)
{
    Message message = record(Type::DebugMessage);
    message.setU32(offset::debugSource, source);
    message.setU32(offset::debugType, type);
    message.setU32(offset::debugId, id);
    message.setU32(offset::debugSeverity, severity);
    message.setText(offset::debugText, text);
    send(message);
}

void Session::warning(std::string_view text)
{
    send(record(Type::Warning, text));
}

void Session::error(std::string_view text)
{
    send(record(Type::Error, text));
}

void Session::glError(std::uint32_t code, std::string_view function, std::string_view description)
{
    send(glErrorRecord(code, function, description));
}

Message Session::record(Type type) const
{
    Message message = Message::make(type);
    message.setU32(offset::frame, m_frame);
    return message;
}

Message Session::record(Type type, std::string_view text) const
{
    Message message = record(type);
    message.setText(offset::text, text);
    return message;
}

Message Session::glErrorRecord(
    std::uint32_t code, std::string_view function, std::string_view description) const
{
    Message message = record(Type::GlError);
    message.setU32(offset::glErrorCode, code);
    message.setText(offset::glErrorFunction, function, offset::glErrorDescription);
    message.setText(offset::glErrorDescription, description);
    return message;
}

void Session::send(const Message& message)
{
    m_output.send(bytesOf(message));
    if (m_pace > Clock::duration::zero())
        m_output.pause(m_pace);
}

void Session::sayGoodbye(std::string_view behindIt)
{
    const Message goodbye = record(Type::CleanDisconnect);
    m_output.finish(std::string(bytesOf(goodbye)).append(behindIt));
}

std::string_view bytesOf(const Message& message)
{
    return {message.data(), ui::messages::recordSize};
}

} // namespace demo
