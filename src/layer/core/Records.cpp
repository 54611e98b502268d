#include "Records.h"

#include "Message.h"
#include "Process.h"

#include <algorithm>
#include <array>

namespace layer::records {

namespace {

using ui::messages::Type;
namespace offset = ui::messages::offset;

/// A 32-bit number as it stands in a record.
struct Number {
    explicit Number(std::uint32_t value)
    {
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<char>((value >> (8U * i)) & 0xFFU);
    }
    operator std::string_view() const { return {bytes.data(), bytes.size()}; }

    std::array<char, 4> bytes{};
};

void send(Type type, std::initializer_list<std::string_view> payload)
{
    if (ring::Writer* to = writer())
        to->write(static_cast<std::uint32_t>(type), to->frames(), payload);
}

/// A text with its NUL, cut to a field of that many bytes.
template <std::size_t Size> struct Field {
    explicit Field(std::string_view text)
    {
        std::copy_n(text.data(), std::min(text.size(), Size - 1), bytes.data());
    }
    operator std::string_view() const { return {bytes.data(), bytes.size()}; }

    std::array<char, Size> bytes{};
};

using FunctionField = Field<offset::glErrorDescription - offset::glErrorFunction>;
using ReportField = Field<offset::reportTextEnd - offset::reportText>;

} // namespace

void information(std::string_view text)
{
    send(Type::Information, {text});
}

void warning(std::string_view text)
{
    send(Type::Warning, {text});
}

void error(std::string_view text)
{
    send(Type::Error, {text});
}

void glError(GLenum code, std::string_view function, std::string_view description)
{
    send(Type::GlError, {Number(code), FunctionField(function), description});
}

void debugMessage(GLenum source, GLenum type, GLuint id, GLenum severity, std::string_view text)
{
    send(Type::DebugMessage, {Number(source), Number(type), Number(id), Number(severity), text});
}

void identified(GLenum source, GLuint id, std::string_view text)
{
    send(Type::IdentifiedMessage, {Number(source), Number(id), text});
}

void lineBreak()
{
    send(Type::LineBreak, {});
}

void context(std::string_view payload)
{
    send(Type::ContextInformation, {payload});
}

void reportNumber(std::uint32_t number)
{
    send(Type::ReportLeadingNumber, {Number(number)});
}

void reportFlag(std::uint32_t key, bool value)
{
    send(Type::ReportFlag, {Number(key), std::string_view(value ? "\1" : "\0", 1)});
}

void reportText(std::string_view text, bool value)
{
    send(Type::ReportText, {ReportField(text), std::string_view(value ? "\1" : "\0", 1)});
}

void reportDetail(std::string_view text, std::uint32_t value)
{
    send(Type::ReportDetail, {ReportField(text), Number(value)});
}

void reportKeyedText(std::uint32_t key, std::string_view text)
{
    send(Type::ReportKeyedText, {Number(key), text});
}

void reportOtherKeyedText(std::uint32_t key, std::string_view text)
{
    send(Type::ReportOtherKeyedText, {Number(key), text});
}

void reportComplete()
{
    send(Type::ReportComplete, {});
}

} // namespace layer::records
