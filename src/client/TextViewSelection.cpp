#include "TextViewSelection.h"

#include <QScrollBar>
#include <QTextEdit>

TextViewSelection::TextViewSelection(QTextEdit* view)
    : m_view(view)
{
    const QTextCursor cursor = view->textCursor();
    if (!cursor.hasSelection())
        return;
    m_first = m_last = QTextCursor(view->document());
    m_first.setPosition(cursor.selectionStart());
    m_last.setPosition(cursor.selectionEnd());
    m_last.setKeepPositionOnInsert(true);
}

TextViewSelection::~TextViewSelection()
{
    QTextCursor cursor = m_view->textCursor();
    const bool isKept =
        cursor.selectionStart() == m_first.position() && cursor.selectionEnd() == m_last.position();
    if (m_first.isNull() || isKept)
        return;
    // What was selected is gone where the two have changed places.
    if (m_first > m_last)
        m_first = m_last;
    const bool backwards = cursor.position() < cursor.anchor();
    cursor.setPosition((backwards ? m_last : m_first).position());
    cursor.setPosition((backwards ? m_first : m_last).position(), QTextCursor::KeepAnchor);
    const int place = m_view->verticalScrollBar()->value();
    m_view->setTextCursor(cursor);
    m_view->verticalScrollBar()->setValue(place);
}
