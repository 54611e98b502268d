#pragma once

#include "ConsoleSink.h"

/// Writes console entries as plain text, as the document on the screen would be copied.
class ConsoleText : public ConsoleSink {
public:
    /// Returns what has been written since the last call.
    QString take();
    /// Ends the text. Nothing may be written after it.
    void finish();

protected:
    void writeEmptyLine() override { m_text += QStringLiteral("\n\n"); }
    void writeHeading(const QString& text, ConsoleStyle style) override;
    void writeBody(const QString& text) override { m_text += text; }
    void writeLineBreak(ConsoleOutline::LineBreak kind) override;
    void writeLine(const QString& text, LineKind kind, bool isNewLine) override;
    void leaveFrame() override { m_text += QLatin1Char('\n'); }

private:
    QString m_text;
};
