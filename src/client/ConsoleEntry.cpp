#include "ConsoleEntry.h"

#include "ConsoleSink.h"
#include "GlEnumerants.h"
#include "RecordText.h"

#include <QCoreApplication>

#include <algorithm>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace console_entry {

namespace {

/// The type of the window's own lines, which no record that is shown has.
constexpr Type closingLineType = static_cast<Type>(0xFFFFFFFF);

/// Where an entry begins in its record. It reaches up to the end of the text.
constexpr std::size_t start = offset::type;

/// Bytes of text that cost about as much as a line.
constexpr std::size_t bytesPerLine = 128;

std::size_t textOffset(Type type)
{
    switch (type) {
    case Type::IdentifiedMessage:
        return offset::identifiedText;
    case Type::DebugMessage:
        return offset::debugText;
    case Type::GlError:
        return offset::glErrorDescription;
    default:
        return offset::text;
    }
}

Message unpack(std::string_view entry)
{
    Message record;
    const std::size_t size = std::min(entry.size(), ui::messages::recordSize - start);
    std::copy_n(entry.data(), size, record.data() + start);
    return record;
}

Type typeOf(std::string_view entry)
{
    return static_cast<Type>(ui::messages::littleEndian32(entry));
}

/// For an entry that has its text right behind its type and frame.
bool endsWithEmptyLine(std::string_view entry)
{
    return entry.size() <= offset::text - start || entry.back() == '\n' || entry.back() == '\r';
}

QString enumerantName(const Message& record, std::size_t at)
{
    return QString::fromLatin1(gl::enumerantName(record.i32(at)));
}

QString translated(const char* text)
{
    return QCoreApplication::translate("Console", text);
}

QString identifiedHeading(const Message& record)
{
    return translated(QT_TRANSLATE_NOOP("Console", "%1 (ID: %2)"))
        .arg(record_text::multiLine(record.text(offset::identifiedText)),
            QString::number(record.u32(offset::identifiedId)));
}

QString debugHeading(const Message& record)
{
    return translated(QT_TRANSLATE_NOOP("Console", "%1 (ID: %2)\nSeverity: %3"))
        .arg(enumerantName(record, offset::debugType), QString::number(record.u32(offset::debugId)),
            enumerantName(record, offset::debugSeverity));
}

QString glErrorHeading(const Message& record)
{
    return translated(QT_TRANSLATE_NOOP("Console", "Error - %1 in %2"))
        .arg(QString::fromLatin1(gl::errorName(record.u32(offset::glErrorCode))),
            record_text::singleLine(record.text(offset::glErrorFunction, offset::glErrorDescription)));
}

void writeFramed(ConsoleSink& sink, const QString& heading, ConsoleStyle style, const QString& body)
{
    sink.heading(heading, style);
    sink.body(body);
    sink.lineBreak();
}

} // namespace

bool isShown(Type type)
{
    return type >= Type::IdentifiedMessage && type <= Type::GlError;
}

std::string pack(const Message& record)
{
    const Type type = record.type();
    if (type == Type::LineBreak)
        return {record.data() + start, sizeof type};
    const std::size_t at = textOffset(type);
    return {record.data() + start, at - start + record.text(at).size()};
}

std::string packClosingLine(std::string_view text)
{
    Message record = Message::make(closingLineType);
    record.setText(offset::text, text);
    return pack(record);
}

void write(std::string_view entry, ConsoleSink& sink)
{
    const Message record = unpack(entry);
    const Type type = record.type();
    const auto text = [&] {
        return record_text::multiLine(record.text(textOffset(type)));
    };
    switch (type) {
    case Type::IdentifiedMessage:
        sink.heading(identifiedHeading(record), ConsoleStyle::Identified);
        break;
    case Type::LineBreak:
        sink.lineBreak();
        break;
    case Type::DebugMessage:
        writeFramed(sink, debugHeading(record), ConsoleStyle::Debug, text());
        break;
    case Type::Information:
        sink.plainText(text());
        break;
    case Type::Warning:
        writeFramed(sink, translated(QT_TRANSLATE_NOOP("Console", "Warning")), ConsoleStyle::Warning, text());
        break;
    case Type::Error:
        writeFramed(sink, translated(QT_TRANSLATE_NOOP("Console", "Error")), ConsoleStyle::Error, text());
        break;
    case Type::GlError:
        writeFramed(sink, glErrorHeading(record), ConsoleStyle::Error, text());
        break;
    default:
        if (type == closingLineType)
            sink.closingLine(text());
        break;
    }
}

bool isRepeated(std::string_view former, std::string_view entry)
{
    // Those that open or leave frames do something else each time.
    const Type type = typeOf(entry);
    return former == entry && type >= Type::DebugMessage && type <= Type::GlError;
}

bool isInGroup(std::string_view entry, const GroupPlace& place)
{
    const Type type = typeOf(entry);
    if (place.depth == 0 || type == closingLineType)
        return false;
    // A message that goes too deep leaves all frames and opens a new one.
    return !(type == Type::LineBreak && place.depth == 1)
        && !(type == Type::IdentifiedMessage && place.depth >= ConsoleOutline::deepestFrame);
}

std::optional<std::uint64_t> groupOf(std::string_view entry, std::uint64_t serial, const GroupPlace& place)
{
    if (isInGroup(entry, place))
        return place.serial;
    return typeOf(entry) == Type::IdentifiedMessage ? std::optional(serial) : std::nullopt;
}

int weight(std::string_view entry)
{
    return static_cast<int>(1 + entry.size() / bytesPerLine
        + static_cast<std::size_t>(std::count(entry.begin(), entry.end(), '\n')));
}

void follow(std::string_view entry, ConsoleOutline& outline)
{
    follow(entry, outline, entry);
}

void follow(std::string_view entry, ConsoleOutline& outline, std::string_view kept)
{
    switch (const Type type = typeOf(entry)) {
    case Type::IdentifiedMessage:
        outline.openFrame(kept);
        break;
    case Type::LineBreak:
        outline.breakLine();
        break;
    case Type::Information:
        outline.addText(endsWithEmptyLine(entry));
        break;
    case Type::DebugMessage:
    case Type::Warning:
    case Type::Error:
    case Type::GlError:
        outline.openFrame();
        outline.breakLine();
        break;
    default:
        if (type == closingLineType) {
            outline.leaveFrames();
            outline.addText(endsWithEmptyLine(entry));
        }
        break;
    }
}

} // namespace console_entry
