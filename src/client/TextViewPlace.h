#pragma once

#include <QTextCursor>

class QTextEdit;

/// The text at the top of a view, which stays there while the document changes above it or is laid out anew.
class TextViewPlace {
public:
    /// Remembers the place that a view shows. The view must live at least as long.
    explicit TextViewPlace(QTextEdit* view);
    /// A place that the view is to show: the line of a cursor at a given height.
    TextViewPlace(QTextEdit* view, const QTextCursor& top, int y);

    /// Scrolls back to the place.
    void restore() const;

    /// The position of the text in the document.
    int position() const { return m_top.position(); }
    /// For a document that was written again with the same text.
    void setPosition(int position) { m_top.setPosition(position); }

private:
    QTextEdit* m_view;
    QTextCursor m_top;
    int m_y;
};
