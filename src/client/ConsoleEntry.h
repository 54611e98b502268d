#pragma once

#include "Message.h"

#include <string>
#include <string_view>
#include <vector>

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

/// Where a console stands between two entries, known without having written any.
class Outline {
public:
    /// Takes note of the next entry.
    void pass(std::string_view entry);
    /// Takes note that all text has been removed.
    void clearLines();

    /// The entries whose frames are open, from the outside in.
    const std::vector<std::string>& openFrames() const { return m_openFrames; }
    bool lastWasHeading() const { return m_lastWasHeading; }
    /// True when nothing stands on the current line.
    bool isLineEmpty() const { return m_lineEmpty; }

private:
    void passHeading();
    void passLine(std::string_view entry);

    std::vector<std::string> m_openFrames;
    bool m_lastWasHeading = false;
    bool m_lineEmpty = true;
};

} // namespace console_entry
