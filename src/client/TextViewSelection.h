#pragma once

#include <QTextCursor>

class QTextEdit;

/// Keeps what is selected in a view, as long as this lives, while the document changes before and behind it:
/// a cursor alone takes in what is inserted at its ends.
class TextViewSelection {
public:
    explicit TextViewSelection(QTextEdit* view);
    ~TextViewSelection();
    TextViewSelection(const TextViewSelection&) = delete;
    TextViewSelection& operator=(const TextViewSelection&) = delete;

private:
    QTextEdit* m_view;
    QTextCursor m_first; ///< None where nothing is selected.
    QTextCursor m_last;
};
