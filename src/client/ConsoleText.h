#pragma once

#include "ConsoleSink.h"

/// Writes console entries as plain text, as the document on the screen would be copied.
class ConsoleText : public ConsoleSink {
public:
    void heading(const QString& text, ConsoleStyle style) override;
    void body(const QString& text) override;
    void lineBreak() override;
    void plainText(const QString& text) override;
    void closingLine(const QString& text) override;

    /// What has been written since the last call.
    QString take();
    /// Ends the text. Nothing may be written after it.
    void finish();

private:
    void leaveFrames();

    QString m_text;
    int m_depth = 0;
    bool m_lineEmpty = true;
    bool m_lastWasHeading = false;
};
