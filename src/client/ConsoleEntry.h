#pragma once

#include "Message.h"

#include <string>
#include <string_view>

class ConsoleOutline;
class ConsoleSink;

/// A record that the console shows, in as few bytes as it needs: what is kept of each for drawing it again
/// and for saving.
namespace console_entry {

/// True for records of types that write to the console.
bool isShown(ui::messages::Type type);

/// The bytes of a record of such a type.
std::string pack(const ui::messages::Message& record);

/// The bytes of a line of the window's own, in UTF-8.
std::string packClosingLine(std::string_view text);

/// Writes an entry to a sink. Bytes that are no entry write nothing.
void write(std::string_view entry, ConsoleSink& sink);

/// How much an entry costs to lay out, in lines or so; 1 for most.
int weight(std::string_view entry);

/// Adds an entry to an outline as write() would, without looking at its texts.
void follow(std::string_view entry, ConsoleOutline& outline);

} // namespace console_entry
