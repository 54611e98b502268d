#pragma once

#include <QFrame>
#include <QString>

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace widgets {

/// A line of the page that says something and offers buttons for it. Hidden until it has a text.
class NoticeBar : public QFrame {
    Q_OBJECT

public:
    /// The label's object name is this one's with "Text" behind it.
    NoticeBar(const QString& objectName, QWidget* parent);

    /// Shows the text as it is, or hides the notice when there is none.
    void setText(const QString& text, const QString& toolTip = {});
    /// Adds a button behind the text. It works when it is clicked.
    QPushButton* addButton(const QString& objectName, const QString& text, const QString& toolTip);

private:
    QHBoxLayout* m_layout;
    QLabel* m_label;
};

} // namespace widgets
