#pragma once

#include "ConsoleOutline.h"

#include <QString>

/// Kinds of headings; each has its own colours.
enum class ConsoleStyle { Error, Warning, Debug, Identified };

/// What a console's entries are written to: the document on the screen, or a file. The outline decides about
/// frames and empty lines, so that all outputs have the same structure.
class ConsoleSink {
public:
    virtual ~ConsoleSink() = default;

    /// Writes a heading and opens a frame below it.
    void heading(const QString& text, ConsoleStyle style);
    /// Writes into the frame that a heading has opened.
    void body(const QString& text) { writeBody(text); }
    /// Leaves the innermost frame, if any, and goes to a new line.
    void lineBreak() { writeLineBreak(m_outline.breakLine()); }
    /// Writes on a line of its own, inside the frame if one is open.
    void plainText(const QString& text) { line(text, LineKind::Client); }
    /// Writes a line of the window's own behind all frames, unlike anything that a client can write.
    void closingLine(const QString& text);

protected:
    enum class LineKind { Client, Window };

    ConsoleOutline& outline() { return m_outline; }
    const ConsoleOutline& outline() const { return m_outline; }
    void leaveFrames() { leaveFrames(m_outline.leaveFrames()); }

    /// Sets the heading that follows off from the text before it.
    virtual void writeEmptyLine() = 0;
    virtual void writeHeading(const QString& text, ConsoleStyle style) = 0;
    virtual void writeBody(const QString& text) = 0;
    virtual void writeLineBreak(ConsoleOutline::LineBreak kind) = 0;
    /// Writes text, on a new line where the current one is not empty.
    virtual void writeLine(const QString& text, LineKind kind, bool isNewLine) = 0;
    /// Leaves the innermost frame without another line.
    virtual void leaveFrame() = 0;

private:
    void line(const QString& text, LineKind kind);
    void leaveFrames(std::size_t count);

    ConsoleOutline m_outline;
};
