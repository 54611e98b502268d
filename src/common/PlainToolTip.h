#pragma once

#include <QString>

/// A tool tip that shows a text as it is, whatever it looks like, and wraps its lines.
inline QString plainToolTip(const QString& text)
{
    return QStringLiteral("<qt>%1</qt>")
        .arg(text.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>")));
}
