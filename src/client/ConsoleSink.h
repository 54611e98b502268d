#pragma once

#include <QString>

/// Kinds of headings; each has its own colours.
enum class ConsoleStyle { Error, Warning, Debug, Identified };

/// What a console's entries are written to: the document on the screen, or a file.
class ConsoleSink {
public:
    /// Frames inside frames at most. A message that opens a frame and never leaves it puts the next one
    /// inside; each takes room from the text's width, and a document nested without end could not be laid
    /// out.
    static constexpr int deepestFrame = 8;

    virtual ~ConsoleSink() = default;

    /// Writes a heading and opens a frame below it.
    virtual void heading(const QString& text, ConsoleStyle style) = 0;
    /// Writes into the frame that a heading has opened.
    virtual void body(const QString& text) = 0;
    /// Leaves the innermost frame, if any, and goes to a new line.
    virtual void lineBreak() = 0;
    /// Writes on a line of its own, inside the frame if one is open.
    virtual void plainText(const QString& text) = 0;
    /// Writes a line of the window's own behind all frames, unlike anything that a client can write.
    virtual void closingLine(const QString& text) = 0;
};
