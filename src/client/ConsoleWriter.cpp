#include "ConsoleWriter.h"

#include <QTextDocument>
#include <QTextFrame>

namespace {

/// Frames inside frames at most. A message that opens a frame and never leaves it puts the next one inside;
/// each takes room from the text's width, and a document nested without end could not be laid out.
constexpr int deepestFrame = 8;

/// Height in pixels of the empty line that ends every frame, so that frames in a row stand close together.
constexpr double lineAfterFrame = 4;

/// Pixels below a heading's last line that the frame, whose margin reaches up, covers instead of the
/// underscores.
constexpr double roomForFrame = 1;

int frameDepth(const QTextFrame* frame)
{
    int depth = 0;
    for (; frame != nullptr && frame->parentFrame() != nullptr; frame = frame->parentFrame())
        ++depth;
    return depth;
}

} // namespace

ConsoleWriter::Edit::Edit(ConsoleWriter& writer)
    : m_cursor(writer.m_cursor)
{
    m_cursor.beginEditBlock();
}

ConsoleWriter::Edit::~Edit()
{
    m_cursor.endEditBlock();
}

ConsoleWriter::ConsoleWriter(QTextDocument* document)
    : m_cursor(document)
{
    m_cursor.movePosition(QTextCursor::End);
}

void ConsoleWriter::heading(
    const QString& text, const QPalette& palette, QTextFrameFormat::BorderStyle border)
{
    leaveDeepFrames();
    if (!m_lastWasHeading)
        m_cursor.insertText(QStringLiteral("\n\n"), QTextCharFormat());

    QTextBlockFormat headingBlock;
    headingBlock.setBackground(palette.color(QPalette::Base));
    QTextCharFormat headingCharacters;
    headingCharacters.setForeground(palette.color(QPalette::Text));
    m_cursor.setBlockFormat(headingBlock);
    m_cursor.setBlockCharFormat(headingCharacters);
    m_cursor.insertText(text, headingCharacters);
    m_cursor.movePosition(QTextCursor::EndOfBlock);
    headingBlock.setLineHeight(roomForFrame, QTextBlockFormat::LineDistanceHeight);
    m_cursor.setBlockFormat(headingBlock);

    QTextFrameFormat frame;
    frame.setTopMargin(-1);
    frame.setBorder(1);
    frame.setBorderBrush(palette.color(QPalette::Base));
    frame.setBorderStyle(border);
    frame.setPadding(5);
    frame.setBackground(palette.color(QPalette::Window));
    m_cursor.insertFrame(frame);
    QTextCharFormat bodyCharacters;
    bodyCharacters.setForeground(palette.color(QPalette::WindowText));
    m_cursor.setBlockCharFormat(bodyCharacters);
    m_cursor.setCharFormat(bodyCharacters);
    m_lastWasHeading = true;
}

void ConsoleWriter::body(const QString& text)
{
    m_cursor.insertText(text, m_cursor.blockCharFormat());
}

void ConsoleWriter::lineBreak()
{
    const QTextFrame* frameBefore = m_cursor.currentFrame();
    m_cursor.movePosition(QTextCursor::NextBlock);
    const bool leftFrame = m_cursor.currentFrame() != frameBefore;
    if (leftFrame) {
        QTextBlockFormat low;
        low.setLineHeight(lineAfterFrame, QTextBlockFormat::FixedHeight);
        m_cursor.setBlockFormat(low);
    }
    m_cursor.insertText(QStringLiteral("\n"), m_cursor.blockCharFormat());
    if (leftFrame)
        m_cursor.setBlockFormat(QTextBlockFormat());
}

void ConsoleWriter::closingLine(const QString& text)
{
    moveToEnd();
    QTextCharFormat italic;
    italic.setFontItalic(true);
    plainText(text, italic);
}

void ConsoleWriter::plainText(const QString& text, QTextCharFormat characters)
{
    if (isInFrame())
        characters.merge(m_cursor.blockCharFormat());
    if (!m_cursor.block().text().isEmpty())
        m_cursor.insertText(QStringLiteral("\n"), characters);
    m_cursor.insertText(text, characters);
    m_cursor.movePosition(QTextCursor::EndOfBlock);
    m_lastWasHeading = false;
}

void ConsoleWriter::moveToEnd()
{
    m_cursor.movePosition(QTextCursor::End);
}

bool ConsoleWriter::isInFrame() const
{
    return frameDepth(m_cursor.currentFrame()) > 0;
}

void ConsoleWriter::leaveDeepFrames()
{
    if (frameDepth(m_cursor.currentFrame()) < deepestFrame)
        return;
    moveToEnd();
    if (!m_cursor.block().text().isEmpty())
        m_cursor.insertText(QStringLiteral("\n"), QTextCharFormat());
}
