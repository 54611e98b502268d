#include "TextViewPlace.h"

#include <QScrollBar>
#include <QTextEdit>

TextViewPlace::TextViewPlace(QTextEdit* view)
    : m_view(view)
    , m_top(view->cursorForPosition(QPoint(0, 0)))
    , m_y(view->cursorRect(m_top).top())
{
}

void TextViewPlace::restore() const
{
    QScrollBar& bar = *m_view->verticalScrollBar();
    bar.setValue(bar.value() + m_view->cursorRect(m_top).top() - m_y);
}
