#pragma once

#include <QPalette>
#include <QTextCursor>
#include <QTextFrameFormat>

class QTextDocument;

/// Writes a client's console into a text document: plain lines, and headings with a framed body. Text goes in
/// as it is, never as markup.
class ConsoleWriter {
public:
    /// Writes at the end of a document, which must live longer.
    explicit ConsoleWriter(QTextDocument* document);

    /// Writes a heading and opens a frame below it, where the cursor stays. The palette's roles are: Text and
    /// Base the heading's colours, WindowText and Window those of the frame's body.
    void heading(const QString& text, const QPalette& palette, QTextFrameFormat::BorderStyle border);

    /// Writes into the frame that a heading has opened.
    void body(const QString& text);

    /// Leaves the frame that the cursor is in, if any, and goes to a new line.
    void lineBreak();

    /// Writes on a line of its own, inside the frame if the cursor is in one.
    void plainText(const QString& text) { plainText(text, QTextCharFormat()); }

    /// Writes a line of the window's own after everything else, in italics, so that it cannot be taken for a
    /// client's.
    void closingLine(const QString& text);

    void moveToEnd();

    const QTextCursor& cursor() const { return m_cursor; }

    /// Collects what is written while it lives into one change of the document.
    class Edit {
    public:
        explicit Edit(ConsoleWriter& writer);
        ~Edit();
        Edit(const Edit&) = delete;
        Edit& operator=(const Edit&) = delete;

    private:
        QTextCursor m_cursor;
    };

private:
    void plainText(const QString& text, QTextCharFormat characters);
    bool isInFrame() const;
    void leaveDeepFrames();

    QTextCursor m_cursor;
    bool m_lastWasHeading = false;
};
