#pragma once

#include "ConsoleSink.h"

#include <QPalette>
#include <QTextCursor>
#include <QTextFrameFormat>

/// Writes console entries into a text document: plain lines, and headings with a framed body. Text goes in as
/// it is, never as markup. What stands behind the place where it writes is left alone. The writer knows from
/// its outline alone how deep it is in frames, so nobody else may write to the document.
class ConsoleWriter : public ConsoleSink {
public:
    /// Writes at a cursor's position. The palette is the console's, whose colours the headings follow.
    ConsoleWriter(const QTextCursor& cursor, const QPalette& palette);

    /// A writer like this one in another place, which has an outline of its own.
    ConsoleWriter at(const QTextCursor& cursor, const ConsoleOutline& place) const;

    void setPalette(const QPalette& palette) { m_palette = palette; }
    /// Goes to the end of the document, where the text has a given outline.
    void moveToEnd(const ConsoleOutline& place);
    /// Whether the next heading follows another one, and so needs no line before it.
    void setLastWasHeading(bool wasHeading) { outline().setLastWasHeading(wasHeading); }

    const QTextCursor& cursor() const { return m_cursor; }

    /// How lines of the window's own look: in italics, so that they cannot be taken for a client's.
    static QTextCharFormat ownLineFormat();

protected:
    void writeEmptyLine() override;
    void writeHeading(const QString& text, ConsoleStyle style) override;
    void writeBody(const QString& text) override;
    void writeLineBreak(ConsoleOutline::LineBreak kind) override;
    void writeLine(const QString& text, LineKind kind, bool isNewLine) override;
    void leaveFrame() override;

private:
    /// A heading's colours, the body's background, and the border of the frame between them.
    struct Look {
        QColor headingText;
        QColor headingBackground;
        QColor bodyBackground;
        QTextFrameFormat::BorderStyle border;
    };

    Look look(ConsoleStyle style) const;
    void openFrame(const Look& look);

    QTextCursor m_cursor;
    QPalette m_palette;
};
