#include "ConsoleHtml.h"

namespace {

constexpr const char* pageStart = R"(<!DOCTYPE html>
<html>
<head>
<meta charset="utf-8">
<title>%1</title>
<style>
:root { color-scheme: light dark; --text: #000; --base: #fff; }
@media (prefers-color-scheme: dark) { :root { --text: #eee; --base: #1e1e1e; } }
body { font-family: monospace; color: var(--text); background: var(--base); }
div { white-space: pre-wrap; overflow-wrap: anywhere; }
.line, .own { min-height: 1.2em; }
.own { font-style: italic; }
.frame { border: 1px solid; padding: 5px; margin-bottom: 4px; }
.heading.error { color: #fff; background: #f00; }
.frame.error { border-color: #f00; }
.heading.warning { color: #000; background: #ff0; }
.frame.warning { border-color: #ff0; }
.heading.debug, .heading.identified { color: var(--base); background: var(--text); }
.frame.identified { border-style: dotted; }
</style>
</head>
<body>
)";

const char* className(ConsoleStyle style)
{
    switch (style) {
    case ConsoleStyle::Error:
        return "error";
    case ConsoleStyle::Warning:
        return "warning";
    case ConsoleStyle::Debug:
        return "debug";
    case ConsoleStyle::Identified:
        break;
    }
    return "identified";
}

QString division(const char* kind, const QString& text)
{
    return QStringLiteral("<div class=\"%1\">").arg(QLatin1String(kind)) + text.toHtmlEscaped()
        + QStringLiteral("</div>\n");
}

} // namespace

ConsoleHtml::ConsoleHtml(const QString& title)
    : ConsoleFileSink(QString::fromLatin1(pageStart).arg(title.toHtmlEscaped()))
{
}

void ConsoleHtml::writeEmptyLine()
{
    m_text += division("line", QString());
}

void ConsoleHtml::writeHeading(const QString& text, ConsoleStyle style)
{
    const QLatin1String kind(className(style));
    m_text += QStringLiteral("<div class=\"heading %1\">").arg(kind) + text.toHtmlEscaped()
        + QStringLiteral("</div>\n<div class=\"frame %1\">").arg(kind);
}

void ConsoleHtml::writeBody(const QString& text)
{
    m_text += text.toHtmlEscaped();
}

void ConsoleHtml::writeLineBreak(ConsoleOutline::LineBreak kind)
{
    switch (kind) {
    case ConsoleOutline::LineBreak::EndsFrame:
        leaveFrame();
        break;
    case ConsoleOutline::LineBreak::EmptyLine:
        writeEmptyLine();
        break;
    case ConsoleOutline::LineBreak::EndsLine:
        break; // as the division of the line's text does
    }
}

void ConsoleHtml::writeLine(const QString& text, LineKind kind, bool isNewLine)
{
    Q_UNUSED(isNewLine)
    m_text += division(kind == LineKind::Window ? "own" : "line", text);
}

void ConsoleHtml::leaveFrame()
{
    m_text += QStringLiteral("</div>\n");
}

void ConsoleHtml::finish()
{
    leaveFrames();
    m_text += QStringLiteral("</body>\n</html>\n");
}
