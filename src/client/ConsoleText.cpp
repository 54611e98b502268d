#include "ConsoleText.h"

#include <utility>

void ConsoleText::heading(const QString& text, ConsoleStyle style)
{
    Q_UNUSED(style)
    if (m_depth >= deepestFrame)
        leaveFrames();
    if (!m_lastWasHeading)
        m_text += QStringLiteral("\n\n");
    m_text += text + QLatin1Char('\n');
    ++m_depth;
    m_lineEmpty = true;
    m_lastWasHeading = true;
}

void ConsoleText::body(const QString& text)
{
    m_text += text;
}

void ConsoleText::lineBreak()
{
    if (m_depth > 0) {
        m_text += QLatin1Char('\n');
        --m_depth;
    }
    m_text += QLatin1Char('\n');
    m_lineEmpty = true;
}

void ConsoleText::plainText(const QString& text)
{
    if (!m_lineEmpty)
        m_text += QLatin1Char('\n');
    m_text += text;
    m_lineEmpty = text.isEmpty() || text.endsWith(QLatin1Char('\n'));
    m_lastWasHeading = false;
}

void ConsoleText::closingLine(const QString& text)
{
    leaveFrames();
    plainText(text);
}

void ConsoleText::leaveFrames()
{
    if (m_depth > 0)
        m_lineEmpty = true;
    m_text += QString(m_depth, QLatin1Char('\n'));
    m_depth = 0;
}

QString ConsoleText::take()
{
    return std::exchange(m_text, QString());
}

void ConsoleText::finish()
{
    leaveFrames();
    if (!m_lineEmpty)
        m_text += QLatin1Char('\n');
}
