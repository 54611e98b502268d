#include "TextViewPlace.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextEdit>

TextViewPlace::TextViewPlace(QTextEdit* view)
    : m_view(view)
    , m_top(view->cursorForPosition(QPoint(0, 0)))
    , m_y(view->cursorRect(m_top).top())
{
}

TextViewPlace::TextViewPlace(QTextEdit* view, const QTextCursor& top, int y)
    : m_view(view)
    , m_top(top)
    , m_y(y)
{
}

void TextViewPlace::restore() const
{
    QScrollBar& bar = *m_view->verticalScrollBar();
    const int value = bar.value() + m_view->cursorRect(m_top).top() - m_y;
    if (value > bar.maximum()) {
        // The view can be scrolled only as far as its text is laid out, which the layout does not announce.
        QAbstractTextDocumentLayout& layout = *m_view->document()->documentLayout();
        layout.pageCount();
        Q_EMIT layout.documentSizeChanged(layout.documentSize());
    }
    bar.setValue(value);
}
