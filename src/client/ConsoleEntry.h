#pragma once

#include "Message.h"

#include <string>
#include <string_view>

class ConsoleOutline;
class ConsoleSink;

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

/// What it costs to lay an entry out, in lines or so; 1 for most.
int weight(std::string_view entry);

/// Adds an entry to an outline as write() would, without looking at its texts.
void follow(std::string_view entry, ConsoleOutline& outline);

} // namespace console_entry
