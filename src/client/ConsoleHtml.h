#pragma once

#include "ConsoleSink.h"

/// Writes console entries as a page of HTML that needs no other file.
class ConsoleHtml : public ConsoleSink {
public:
    /// Begins the page.
    explicit ConsoleHtml(const QString& title);

    void heading(const QString& text, ConsoleStyle style) override;
    void body(const QString& text) override;
    void lineBreak() override;
    void plainText(const QString& text) override { line(text, "line"); }
    void closingLine(const QString& text) override;

    /// What has been written since the last call.
    QString take();
    /// Ends the page. Nothing may be written after it.
    void finish();

private:
    void line(const QString& text, const char* kind);
    void leaveFrames();

    QString m_page;
    int m_depth = 0;
    bool m_lineEmpty = true;
    bool m_lastWasHeading = false;
};
