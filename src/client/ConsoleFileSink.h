#pragma once

#include "ConsoleSink.h"

#include <utility>

/// A sink whose text goes to a file piece by piece.
class ConsoleFileSink : public ConsoleSink {
public:
    /// Returns what has been written since the last call.
    QString take() { return std::exchange(m_text, QString()); }
    /// Ends the text. Nothing may be written after it.
    virtual void finish() = 0;

protected:
    explicit ConsoleFileSink(const QString& start = QString())
        : m_text(start)
    {
    }

    QString m_text;
};
