#pragma once

#include "ConsoleSink.h"

#include <QPalette>
#include <QTextCursor>
#include <QTextFrameFormat>

/// Writes console entries into a text document: plain lines, and headings with a framed body. Text goes in as
/// it is, never as markup. What stands behind the place where it writes is left alone.
class ConsoleWriter : public ConsoleSink {
public:
    /// Writes at a cursor's position. The palette is the console's, whose colours the headings follow.
    ConsoleWriter(const QTextCursor& cursor, const QPalette& palette);

    /// A writer like this one in another place.
    ConsoleWriter at(const QTextCursor& cursor) const { return {cursor, m_palette}; }

    void setPalette(const QPalette& palette) { m_palette = palette; }
    /// Whether the next heading follows another one, and so needs no line before it.
    void setLastWasHeading(bool wasHeading) { m_lastWasHeading = wasHeading; }
    void moveToEnd() { m_cursor.movePosition(QTextCursor::End); }

    void heading(const QString& text, ConsoleStyle style) override;
    void body(const QString& text) override;
    void lineBreak() override;
    void plainText(const QString& text) override { plainText(text, QTextCharFormat()); }
    void closingLine(const QString& text) override;

    const QTextCursor& cursor() const { return m_cursor; }

    /// How lines of the window's own look: in italics, so that they cannot be taken for a client's.
    static QTextCharFormat ownLineFormat();

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
    void plainText(const QString& text, QTextCharFormat characters);
    bool isInFrame() const;
    void leaveFrames();

    QTextCursor m_cursor;
    QPalette m_palette;
    bool m_lastWasHeading = false;
};
