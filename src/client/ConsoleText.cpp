#include "ConsoleText.h"

void ConsoleText::writeHeading(const QString& text, ConsoleStyle style)
{
    Q_UNUSED(style)
    m_text += text + QLatin1Char('\n');
}

void ConsoleText::writeLineBreak(ConsoleOutline::LineBreak kind)
{
    if (kind == ConsoleOutline::LineBreak::EndsFrame)
        leaveFrame();
    m_text += QLatin1Char('\n');
}

void ConsoleText::writeLine(const QString& text, LineKind kind, bool isNewLine)
{
    Q_UNUSED(kind)
    if (isNewLine)
        m_text += QLatin1Char('\n');
    m_text += text;
}

void ConsoleText::finish()
{
    leaveFrames();
    if (!outline().isLineEmpty())
        m_text += QLatin1Char('\n');
}
