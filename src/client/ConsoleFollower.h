#pragma once

#include "EndFollower.h"

#include <functional>
#include <memory>

class QTextCursor;
class QTextEdit;
class QWheelEvent;
class TextViewPlace;

/// Follows the end of a console's text view, or leaves what the reader sees and has selected where it is: a
/// selection stops following, nothing moves while the mouse button is held down in the text, and a view that
/// lays its text out anew keeps its place.
class ConsoleFollower : public EndFollower {
    Q_OBJECT

public:
    ConsoleFollower(QTextEdit* view, QAbstractButton* button);
    ~ConsoleFollower() override;

    /// Scrolls to the end of the text, where a cursor stands.
    void showEnd(const QTextCursor& end);
    /// Makes it the view's cursor, and scrolls where it is not to be seen with a line around it.
    void showCursor(const QTextCursor& cursor);
    /// The first position of the document that the reader sees or has selected.
    int firstPositionInUse() const;
    /// Keeps what the reader sees and has selected while the same text is written again.
    void keepDuring(const std::function<void()>& rewriting);

Q_SIGNALS:
    void paletteChanged();
    void viewShown();
    /// The reader has turned the wheel with Ctrl: notches upwards.
    void zoomWanted(int notches);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void viewEvent(const QEvent& event);
    void viewportEvent(const QEvent& event);
    void keyPressed();
    void zoom(const QWheelEvent& event);
    void keepPlaceDuringLayout();

    QTextEdit* m_view;
    int m_wheelAngle = 0; ///< Turned with Ctrl, short of a notch.
    std::unique_ptr<TextViewPlace> m_place; ///< While the view lays its text out anew.
};
