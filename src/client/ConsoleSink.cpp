#include "ConsoleSink.h"

void ConsoleSink::heading(const QString& text, ConsoleStyle style)
{
    const ConsoleOutline::HeadingStart start = m_outline.openFrame();
    leaveFrames(start.framesToLeave);
    if (start.isSetOff)
        writeEmptyLine();
    writeHeading(text, style);
}

void ConsoleSink::closingLine(const QString& text)
{
    leaveFrames();
    line(text, LineKind::Window);
}

void ConsoleSink::line(const QString& text, LineKind kind)
{
    const bool isNewLine = m_outline.addText(text.isEmpty() || text.endsWith(QLatin1Char('\n')));
    writeLine(text, kind, isNewLine);
}

void ConsoleSink::leaveFrames(std::size_t count)
{
    for (; count > 0; --count)
        leaveFrame();
}
