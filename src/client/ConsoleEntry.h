#pragma once

#include "Message.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

class ConsoleOutline;
class ConsoleSink;

/// When an entry arrived, and in which frame of its application.
struct EntryStamp {
    std::int64_t time = 0; ///< Milliseconds since the epoch.
    std::uint32_t frame = 0; ///< As in the record; ui::messages::noFrame where there is none.
};

/// Where an entry stands in the frames of identified messages.
struct GroupPlace {
    std::size_t depth = 0; ///< Number of frames that are open before the entry.
    std::uint64_t serial = 0; ///< Of the message that opened the outermost one.
};

/// An entry with what is known of it.
struct ConsoleItem {
    std::string bytes;
    std::uint64_t serial = 0; ///< Number of entries that the console had before it, cleared ones too.
    EntryStamp stamp;
    GroupPlace place = {};
    std::uint64_t count = 1; ///< Of this and the entries behind it that are folded into it.
    bool isCut = false; ///< There are more before it, which are not counted.
};

/// Entries of the console: records that it shows, cut to the bytes that it takes to draw or save them again.
namespace console_entry {

/// True for the types of records that the console shows.
bool isShown(ui::messages::Type type);

/// The bytes of a record of such a type.
std::string pack(const ui::messages::Message& record);

/// The bytes of a line of the window's own, in UTF-8.
std::string packClosingLine(std::string_view text);

/// Writes an entry to a sink. Bytes that are no entry write nothing.
void write(std::string_view entry, ConsoleSink& sink);

/// Adds what write() shows of an entry, as lines of UTF-8, to a text. Empty lines may differ.
void appendLines(std::string_view entry, std::string& text);

/// True when an entry shows the same as the one before it, and stands for itself, so that both can be folded
/// into one.
bool isRepeated(std::string_view former, std::string_view entry);

/// True for an entry inside of a group, which ends with the line break that leaves its outermost frame.
bool isInGroup(std::string_view entry, const GroupPlace& place);
/// The entry that opens the outermost group around an entry, which may be itself.
std::optional<std::uint64_t> groupOf(std::string_view entry, std::uint64_t serial, const GroupPlace& place);

/// What it costs to lay an entry out, in lines or so; 1 for most.
int weight(std::string_view entry);

/// Adds an entry to an outline as write() would, without looking at its texts.
void follow(std::string_view entry, ConsoleOutline& outline);
/// The same, but the outline keeps other bytes than those of an entry that opens a frame.
void follow(std::string_view entry, ConsoleOutline& outline, std::string_view kept);

} // namespace console_entry
