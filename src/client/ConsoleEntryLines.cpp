#include "ConsoleEntry.h"
#include "ConsoleText.h"
#include "GlEnumerants.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <initializer_list>

using ui::messages::Type;
namespace offset = ui::messages::offset;

// What is searched a million times a second is put together without the detour through QString, as long as
// its bytes are shown as they are.

namespace {

/// Entries begin with the type of their record.
constexpr std::size_t start = offset::type;

/// True for bytes that are shown as they are, each as a character.
bool isPlain(std::string_view bytes)
{
    unsigned char strange = 0;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        strange |= static_cast<unsigned char>((value < ' ') & (value != '\n') & (value != '\t'))
            | static_cast<unsigned char>(value > '~');
    }
    return strange == 0;
}

std::uint32_t valueAt(std::string_view entry, std::size_t at)
{
    return ui::messages::littleEndian32(entry, at - start);
}

std::string_view textAt(std::string_view entry, std::size_t at, std::size_t end = std::string_view::npos)
{
    if (at - start >= entry.size())
        return {};
    const std::string_view field = entry.substr(at - start, end == std::string_view::npos ? end : end - at);
    return field.substr(0, field.find('\0'));
}

/// A translated text of the console with places %1 and so on, in UTF-8.
std::string translated(const char* text)
{
    return QCoreApplication::translate("Console", text).toStdString();
}

void appendFilled(std::string& text, std::string_view pattern, std::initializer_list<std::string_view> values)
{
    while (!pattern.empty()) {
        const std::size_t place = std::min(pattern.find('%'), pattern.size());
        text += pattern.substr(0, place);
        pattern.remove_prefix(place);
        if (pattern.empty())
            break;
        const auto number = static_cast<std::size_t>(pattern.size() > 1 ? pattern[1] - '1' : 9);
        text += number < values.size() ? values.begin()[number] : pattern.substr(0, 2);
        pattern.remove_prefix(std::min<std::size_t>(2, pattern.size()));
    }
    text += '\n';
}

std::string_view enumerantAt(std::string_view entry, std::size_t at)
{
    return gl::enumerantName(static_cast<std::int32_t>(valueAt(entry, at)));
}

/// False for an entry whose bytes are not shown as they are.
bool appendPlainLines(std::string_view entry, std::string& text)
{
    static const std::string identified = translated("%1 (ID: %2)");
    static const std::string debug = translated("%1 (ID: %2)\nSeverity: %3");
    static const std::string glError = translated("Error - %1 in %2");
    static const std::string warning = translated("Warning");
    static const std::string error = translated("Error");
    const auto type = static_cast<Type>(valueAt(entry, start));
    std::string_view body;
    switch (type) {
    case Type::IdentifiedMessage: {
        const std::string_view name = textAt(entry, offset::identifiedText);
        if (!isPlain(name))
            return false;
        appendFilled(text, identified, {name, std::to_string(valueAt(entry, offset::identifiedId))});
        return true;
    }
    case Type::LineBreak:
        return true;
    case Type::DebugMessage:
        body = textAt(entry, offset::debugText);
        if (isPlain(body))
            appendFilled(text, debug,
                {enumerantAt(entry, offset::debugType), std::to_string(valueAt(entry, offset::debugId)),
                    enumerantAt(entry, offset::debugSeverity)});
        break;
    case Type::GlError: {
        const std::string_view function = textAt(entry, offset::glErrorFunction, offset::glErrorDescription);
        if (!isPlain(function) || function.find_first_of("\n\t") != std::string_view::npos)
            return false;
        body = textAt(entry, offset::glErrorDescription);
        if (isPlain(body))
            appendFilled(text, glError, {gl::errorName(valueAt(entry, offset::glErrorCode)), function});
        break;
    }
    case Type::Warning:
    case Type::Error:
        body = textAt(entry, offset::text);
        if (isPlain(body))
            appendFilled(text, type == Type::Warning ? warning : error, {});
        break;
    case Type::Information:
        body = textAt(entry, offset::text);
        break;
    default:
        return false;
    }
    if (!isPlain(body))
        return false;
    text.append(body) += '\n';
    return true;
}

} // namespace

void console_entry::appendLines(std::string_view entry, std::string& text)
{
    if (appendPlainLines(entry, text))
        return;
    ConsoleText sink;
    write(entry, sink);
    text += sink.take().toStdString();
    text += '\n';
}
