#pragma once

#include "Console.h"
#include "ConsoleText.h"

#include <QLocale>
#include <QTextBlock>
#include <QTextDocument>

/// What a console must show, known from what it has kept.
namespace console_oracle {

/// The number in the line about earlier entries; 0 where there is no such line.
inline int earlierEntries(const QTextDocument& document)
{
    const QStringList words = document.begin().text().split(QLatin1Char(' '));
    return words.value(1) == QLatin1String("earlier") ? QLocale().toInt(words.first()) : 0;
}

/// Where two texts begin to differ; empty where they do not.
inline QString difference(const QString& shown, const QString& wanted)
{
    if (shown == wanted)
        return {};
    qsizetype at = 0;
    while (at < shown.size() && at < wanted.size() && shown[at] == wanted[at])
        ++at;
    const auto around = [at](const QString& text) {
        return text.mid(std::max<qsizetype>(0, at - 20), 60)
            .replace(QLatin1Char('\n'), QStringLiteral("\\n"));
    };
    return QStringLiteral("at %1: \"%2\" rather than \"%3\"").arg(at).arg(around(shown), around(wanted));
}

/// Compares a document with the text of the entries that its first line does not count. The reason why they
/// differ, or an empty text.
inline QString whyWrong(Console& console, const QTextDocument& document)
{
    const int earlier = earlierEntries(document);
    ConsoleText text;
    ConsoleOutline outline;
    ConsoleSpool::Reader reader(console.spool());
    int number = 0;
    for (std::string_view entry; reader.next(entry); ++number) {
        console_entry::write(entry, text);
        if (number < earlier) {
            console_entry::follow(entry, outline);
            text.take();
        }
    }
    text.finish();
    // A document's text has a plain blank for one that keeps words together.
    const QString rest = text.take().replace(QChar::Nbsp, QLatin1Char(' '));

    QString shown = document.toPlainText();
    if (!shown.isEmpty() && !shown.endsWith(QLatin1Char('\n')))
        shown += QLatin1Char('\n');
    if (earlier == 0)
        // After Clear, a heading still knows whether another one came before.
        return shown == rest.mid(2) && rest.startsWith(QLatin1String("\n\n")) ? QString()
                                                                              : difference(shown, rest);
    shown = shown.mid(shown.indexOf(QLatin1Char('\n')));
    // Inside of frames, the headings that opened them are shown again.
    if (outline.isInFrame())
        return shown.endsWith(rest) ? QString() : QStringLiteral("is not the end of all text in its frames");
    return difference(shown, (outline.isLineEmpty() ? QStringLiteral("\n") : QString()) + rest);
}

} // namespace console_oracle
