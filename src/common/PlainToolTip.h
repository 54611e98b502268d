#pragma once

#include <QString>
#include <QStringList>

#include <algorithm>

/// A tool tip that shows a text as it is, whatever it looks like, and wraps its lines where they are long.
inline QString plainToolTip(const QString& text)
{
    // Labels that wrap may make three lines of a short one.
    constexpr qsizetype longestLine = 80;
    const QStringList lines = text.split(QLatin1Char('\n'));
    const bool isShort = std::all_of(
        lines.begin(), lines.end(), [](const QString& line) { return line.size() <= longestLine; });
    const QString shown = text.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>"));
    return QStringLiteral("<qt>%1</qt>")
        .arg(isShort ? QStringLiteral("<div style='white-space:pre'>%1</div>").arg(shown) : shown);
}
