#include "Scenarios.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <limits>
#include <string>

using namespace std::chrono_literals;
using namespace std::string_view_literals;
using ui::messages::Message;
using ui::messages::recordSize;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace demo {

namespace {

constexpr std::uint32_t minusOne = 0xFFFFFFFF;
constexpr std::uint32_t lowestNumber = 0x80000000;

/// Fills a field with letters and leaves no room for a NUL.
void fill(Message& message, std::size_t from, std::size_t end = recordSize)
{
    std::fill(message.data() + from, message.data() + end, 'x');
}

/// A receiver discards all that it has buffered together with a record of a bad type. So nothing follows
/// before that has happened, or the records behind would be cut at the wrong place.
void sendBadTypes(Session& session)
{
    for (const std::uint32_t type : {11U, 12U, 13U, 21U, 255U, 0x7FFFFFFFU, lowestNumber, minusOne}) {
        Message message = session.record(static_cast<Type>(type), "Nobody may show this.");
        session.output().send(bytesOf(message));
        session.output().settle();
        session.information("Still aligned after type " + std::to_string(type));
    }
}

void sendTextsWithoutEnd(Session& session)
{
    for (const Type type : {Type::SetName, Type::IdentifiedMessage, Type::DebugMessage, Type::Information,
             Type::Warning, Type::Error, Type::GlError, Type::ReportText, Type::ReportDetail,
             Type::ReportKeyedText, Type::ReportOtherKeyedText}) {
        Message message = session.record(type);
        fill(message, offset::payload);
        session.send(message);
    }
    Message function = session.glErrorRecord(0x0502, {}, "The name of the function fills its field.");
    fill(function, offset::glErrorFunction, offset::glErrorDescription);
    session.send(function);
}

void sendEmptyTexts(Session& session)
{
    session.setName({});
    session.information({});
    session.identified(0, {});
    session.lineBreak();
    session.debug(0, 0, 0, 0, {});
    session.warning({});
    session.error({});
    session.glError(0x0500, {}, {});
}

/// A context with all lists full, so that none has a terminator. The codes go beyond the ends of both tables.
void sendFullContext(Session& session, std::uint32_t number, std::uint32_t firstCode)
{
    Message message = session.record(Type::ContextInformation);
    message.setU32(offset::contextNumber, number);
    message.setU32(offset::contextStrict, minusOne);
    message.setU32(offset::contextEsVersion, minusOne);
    message.setU32(offset::contextGlslEsVersion, lowestNumber);
    message.setU32(offset::contextGlVersion, 20);
    message.setU32(offset::contextGlslVersion, 0);
    for (const std::size_t list : {offset::contextExtensions, offset::contextExtensionsNotOnHost,
             offset::contextExtensionsNotEmulated, offset::contextHostExtensions}) {
        for (std::uint32_t i = 0; i < ui::messages::extensionListCapacity; ++i)
            message.setU32(list + i * sizeof i, firstCode + i);
    }
    session.send(message);
}

void sendContexts(Session& session)
{
    sendFullContext(session, minusOne, 1);
    sendFullContext(session, lowestNumber, 400);
    Message empty = session.record(Type::ContextInformation);
    session.send(empty);
    std::fill(empty.data() + offset::payload, empty.data() + recordSize, '\xFF');
    session.send(empty);
}

void sendNegativeNumbers(Session& session)
{
    session.setFrame(lowestNumber);
    session.identified(minusOne, "The largest ID");
    session.lineBreak();
    session.debug(minusOne, minusOne, minusOne, minusOne, "Enumerants that do not exist");
    session.debug(lowestNumber, lowestNumber, lowestNumber, lowestNumber, "Others that do not exist");
    session.setFrame(minusOne);
    session.glError(minusOne, "glFinish", "An error code that does not exist");
    session.warning("A warning of the highest frame");
    session.setFrame(1);
}

void sendStrangeTexts(Session& session)
{
    constexpr std::array texts{
        "Overlong: \xC0\xAF \xE0\x80\xAF, surrogate: \xED\xA0\x80, too high: \xF4\x90\x80\x80"sv,
        "Lone continuation: \x80\xBF, never used: \xFE\xFF, cut off: \xF0\x9F\x98"sv,
        "Control characters: \x01\x02\x07\x08\x0B\x0C\x1B[31m\x7F and \xC2\x85\xC2\x9B"sv,
        "Line ends: CR\rCR LF\r\nLF\nTAB\tend"sv,
        "Separators: U+2028 \xE2\x80\xA8 and U+2029 \xE2\x80\xA9 end"sv,
        "Noncharacters: \xEF\xB7\x90 \xEF\xB7\x91 \xEF\xBF\xBE \xEF\xBF\xBF \xF0\x9F\xBF\xBE end"sv,
        "Object replacement: \xEF\xBF\xBC, byte order mark: \xEF\xBB\xBF end"sv,
        "Direction: \xE2\x80\xAE"
        "desrever\xE2\x80\xAC and \xE2\x81\xA7isolated\xE2\x81\xA9 end"sv,
        "Markup: <b>bold</b> <img src=\"none.png\"> &amp; <script>alert(1)</script>"sv,
        "Placeholders: %1 %s %n {0} $HOME"sv,
    };
    for (const std::string_view text : texts) {
        session.setName(text);
        session.information(text);
        session.identified(7, text);
        session.lineBreak();
        session.warning(text);
        session.glError(0x0501, text.substr(0, 60), text);
    }
    session.information(std::string(8000, '\n'));
    std::string stack = "Many accents on one letter: e";
    for (int i = 0; i < 2000; ++i)
        stack += "\xCC\x81";
    session.information(stack);
}

void sendInPieces(Session& session)
{
    const Message drop = session.record(Type::Error, "Sent one byte at a time.");
    const std::string_view bytes = bytesOf(drop);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        session.output().send(bytes.substr(i, 1));
        if (i % 512 == 0)
            session.output().pause(1ms);
    }

    std::string joined;
    for (int i = 1; i <= 4; ++i)
        joined += bytesOf(
            session.record(Type::Warning, "Record " + std::to_string(i) + " of 4, cut at odd places."));
    std::size_t at = 0;
    for (const std::size_t size : {std::size_t{3}, recordSize - 4, recordSize + 2, std::string::npos}) {
        const std::string_view piece = std::string_view(joined).substr(at, size);
        session.output().send(piece);
        session.output().pause(20ms);
        at += piece.size();
    }
}

} // namespace

void playHostile(Session& session, std::string_view name)
{
    session.lineBreak();
    sendBadTypes(session);
    sendTextsWithoutEnd(session);
    sendEmptyTexts(session);
    sendContexts(session);
    sendNegativeNumbers(session);
    sendStrangeTexts(session);
    sendInPieces(session);
    session.setName(name);
    session.information("The hostile client has no more ideas.");
}

Message recordBehindGoodbye()
{
    Message message = Message::make(Type::Error);
    message.setText(offset::text, "Sent behind the good-bye: nobody may show this.");
    return message;
}

} // namespace demo
