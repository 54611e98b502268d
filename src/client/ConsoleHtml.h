#pragma once

#include "ConsoleSink.h"

/// Writes console entries as a page of HTML that needs no other file.
class ConsoleHtml : public ConsoleSink {
public:
    /// Begins the page.
    explicit ConsoleHtml(const QString& title);

    /// Returns what has been written since the last call.
    QString take();
    /// Ends the page. Nothing may be written after it.
    void finish();

protected:
    void writeEmptyLine() override;
    void writeHeading(const QString& text, ConsoleStyle style) override;
    void writeBody(const QString& text) override;
    void writeLineBreak(ConsoleOutline::LineBreak kind) override;
    void writeLine(const QString& text, LineKind kind, bool isNewLine) override;
    void leaveFrame() override;

private:
    QString m_page;
};
