#pragma once

#include "ConsoleFileSink.h"

/// Writes console entries as plain text, as the document on the screen would be copied.
class ConsoleText : public ConsoleFileSink {
public:
    ConsoleText() = default;

    void finish() override;

protected:
    void writeEmptyLine() override { m_text += QStringLiteral("\n\n"); }
    void writeHeading(const QString& text, ConsoleStyle style) override;
    void writeBody(const QString& text) override { m_text += text; }
    void writeLineBreak(ConsoleOutline::LineBreak kind) override;
    void writeLine(const QString& text, LineKind kind, bool isNewLine) override;
    void leaveFrame() override { m_text += QLatin1Char('\n'); }
};
