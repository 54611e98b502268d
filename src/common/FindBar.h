#pragma once

#include "FindPattern.h"
#include "Findable.h"

#include <QFrame>
#include <QPointer>

class ElidedLabel;
class QHBoxLayout;
class QLineEdit;
class QToolButton;

/// The line in which a user types what to look for in a page, hidden until it is asked for. Return goes to
/// the next match, Shift+Return to the one before, Escape closes it.
class FindBar : public QFrame {
    Q_OBJECT

public:
    /// A bar for what is to be found in a page, which becomes its parent.
    FindBar(Findable* target, QWidget* page);

    /// The bar of the page that is in front in a window; none where that has no bar.
    static FindBar* inFront(const QWidget* window);

    /// Shows the bar and takes what the reader has selected for the text.
    void open();
    void close();
    /// Goes to the next match; asks for a text where there is none.
    void go(Findable::Direction direction);
    /// Has Tab go from a widget to this bar.
    void putBehind(QWidget* widget);
    /// To be called when the target has got other matter.
    void searchAgain();

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QToolButton* addButton(const char* objectName, const QString& text, const QString& toolTip);
    void addSwitches(QHBoxLayout* layout);
    FindQuery query() const;
    void showState();
    QString stateText(const Findable::State& state) const;

    Findable* m_target;
    QLineEdit* m_edit;
    ElidedLabel* m_count;
    QToolButton* m_case = nullptr;
    QToolButton* m_words = nullptr;
    QToolButton* m_expression = nullptr;
    QToolButton* m_previous = nullptr;
    QToolButton* m_next = nullptr;
    FindPattern m_pattern;
    QPointer<QWidget> m_focusBefore;
};
