#pragma once

#include "ConsoleFileSink.h"

/// Writes console entries as a page of HTML that needs no other file.
class ConsoleHtml : public ConsoleFileSink {
public:
    /// Begins the page.
    explicit ConsoleHtml(const QString& title);

    void finish() override;

protected:
    void writeEmptyLine() override;
    void writeHeading(const QString& text, ConsoleStyle style) override;
    void writeBody(const QString& text) override;
    void writeLineBreak(ConsoleOutline::LineBreak kind) override;
    void writeLine(const QString& text, LineKind kind, bool isNewLine) override;
    void leaveFrame() override;
};
