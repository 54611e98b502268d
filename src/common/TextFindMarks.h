#pragma once

#include "FindPattern.h"

#include <QObject>
#include <QTextCursor>
#include <QTextEdit>
#include <QTimer>

#include <functional>

class QAbstractScrollArea;
class QPlainTextEdit;

/// Marks what a pattern matches in the part of a text that its view shows.
class TextFindMarks : public QObject {
    Q_OBJECT

public:
    /// Marks in a view, which becomes the parent.
    explicit TextFindMarks(QTextEdit* view);
    explicit TextFindMarks(QPlainTextEdit* view);

    void setPattern(const FindPattern& pattern);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    template <typename View> void setUp(View* view);
    void mark();

    QAbstractScrollArea* m_view;
    std::function<QTextCursor(const QPoint&)> m_cursorAt;
    std::function<void(const QList<QTextEdit::ExtraSelection>&)> m_setMarks;
    FindPattern m_pattern;
    QTimer m_timer;
};
