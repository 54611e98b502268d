#include "ConsoleWriter.h"

#include <cstdlib>

namespace {

/// Height in pixels of the empty line that ends every frame, so that frames in a row stand close together.
constexpr double lineAfterFrame = 4;

/// Pixels below a heading's last line that the frame, whose margin reaches up, covers instead of the
/// underscores.
constexpr double roomForFrame = 1;

/// Difference in grey levels, of 255, below which a text gets the console's background for its own.
constexpr int leastContrast = 80;

QColor difference(const QColor& one, const QColor& other)
{
    return {std::abs(one.red() - other.red()), std::abs(one.green() - other.green()),
        std::abs(one.blue() - other.blue())};
}

} // namespace

ConsoleWriter::ConsoleWriter(const QTextCursor& cursor, const QPalette& palette)
    : m_cursor(cursor)
    , m_palette(palette)
{
}

ConsoleWriter ConsoleWriter::at(const QTextCursor& cursor, const ConsoleOutline& place) const
{
    ConsoleWriter writer(cursor, m_palette);
    writer.outline() = place;
    return writer;
}

void ConsoleWriter::moveToEnd(const ConsoleOutline& place)
{
    m_cursor.movePosition(QTextCursor::End);
    outline() = place;
}

QTextCharFormat ConsoleWriter::ownLineFormat()
{
    QTextCharFormat format;
    format.setFontItalic(true);
    return format;
}

ConsoleWriter::Look ConsoleWriter::look(ConsoleStyle style) const
{
    const QColor base = m_palette.color(QPalette::Base);
    const QColor text = m_palette.color(QPalette::Text);
    switch (style) {
    case ConsoleStyle::Error:
        return {QColor(255, 255, 255), QColor(255, 0, 0), base, QTextFrameFormat::BorderStyle_Solid};
    case ConsoleStyle::Warning:
        return {QColor(0, 0, 0), QColor(255, 255, 0), base, QTextFrameFormat::BorderStyle_Solid};
    case ConsoleStyle::Debug:
        return {base, text, base, QTextFrameFormat::BorderStyle_Solid};
    case ConsoleStyle::Identified:
        break;
    }
    return {base, text, difference(base, text), QTextFrameFormat::BorderStyle_Dotted};
}

void ConsoleWriter::writeEmptyLine()
{
    m_cursor.insertText(QStringLiteral("\n\n"), QTextCharFormat());
}

void ConsoleWriter::writeHeading(const QString& text, ConsoleStyle style)
{
    const Look colors = look(style);
    QTextBlockFormat headingBlock;
    headingBlock.setBackground(colors.headingBackground);
    QTextCharFormat headingCharacters;
    headingCharacters.setForeground(colors.headingText);
    m_cursor.setBlockFormat(headingBlock);
    m_cursor.setBlockCharFormat(headingCharacters);
    m_cursor.insertText(text, headingCharacters);
    m_cursor.movePosition(QTextCursor::EndOfBlock);
    headingBlock.setLineHeight(roomForFrame, QTextBlockFormat::LineDistanceHeight);
    m_cursor.setBlockFormat(headingBlock);
    openFrame(colors);
}

void ConsoleWriter::openFrame(const Look& look)
{
    QTextFrameFormat frame;
    frame.setTopMargin(-1);
    frame.setBorder(1);
    frame.setBorderBrush(look.headingBackground);
    frame.setBorderStyle(look.border);
    frame.setPadding(5);
    frame.setBackground(look.bodyBackground);
    m_cursor.insertFrame(frame);
    QTextCharFormat bodyCharacters;
    const QColor text = m_palette.color(QPalette::Text);
    bodyCharacters.setForeground(text);
    // Dark themes have light texts, and the frame of an identified message is light as well then.
    if (std::abs(qGray(text.rgb()) - qGray(look.bodyBackground.rgb())) < leastContrast)
        bodyCharacters.setBackground(m_palette.color(QPalette::Base));
    m_cursor.setBlockCharFormat(bodyCharacters);
    m_cursor.setCharFormat(bodyCharacters);
}

void ConsoleWriter::writeBody(const QString& text)
{
    m_cursor.insertText(text, m_cursor.blockCharFormat());
}

void ConsoleWriter::writeLineBreak(ConsoleOutline::LineBreak kind)
{
    const bool endsFrame = kind == ConsoleOutline::LineBreak::EndsFrame;
    if (endsFrame) {
        leaveFrame();
        QTextBlockFormat low;
        low.setLineHeight(lineAfterFrame, QTextBlockFormat::FixedHeight);
        m_cursor.setBlockFormat(low);
    }
    m_cursor.insertText(QStringLiteral("\n"), m_cursor.blockCharFormat());
    if (endsFrame)
        m_cursor.setBlockFormat(QTextBlockFormat());
}

void ConsoleWriter::writeLine(const QString& text, LineKind kind, bool isNewLine)
{
    QTextCharFormat characters;
    if (kind == LineKind::Window)
        characters = ownLineFormat();
    if (outline().isInFrame())
        characters.merge(m_cursor.blockCharFormat());
    if (isNewLine)
        m_cursor.insertText(QStringLiteral("\n"), characters);
    m_cursor.insertText(text, characters);
    m_cursor.movePosition(QTextCursor::EndOfBlock);
}

void ConsoleWriter::leaveFrame()
{
    // The cursor is always on the last line of its frame, so the next block is behind the frame.
    m_cursor.movePosition(QTextCursor::NextBlock);
}
