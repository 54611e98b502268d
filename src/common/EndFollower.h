#pragma once

#include <QObject>
#include <QPointer>

class QAbstractButton;
class QAbstractScrollArea;

/// Tells a growing view whether to follow its end: as long as a button is checked. A reader who scrolls up,
/// or who leaves the end with a key, unchecks it. The console and the error list share these rules.
class EndFollower : public QObject {
    Q_OBJECT

public:
    /// The view must live at least as long.
    explicit EndFollower(QAbstractScrollArea* view);

    /// Without a button nothing is followed.
    void setButton(QAbstractButton* button);
    bool isFollowing() const;
    void stopFollowing();

    /// Pixels below what the view shows.
    int distanceToEnd() const;
    /// Judges a key that the view has handled, by the distance to the end before it.
    void keyHandled(int distanceBefore, bool hasCursorLeftEnd);
    /// Nothing is followed while the reader holds the view, as in the middle of a selection.
    void setHeld(bool held);
    bool isHeld() const { return m_held; }

Q_SIGNALS:
    /// The reader has just asked for the end, or let go of a view that follows.
    void endWanted();
    /// The reader has scrolled, or moved with a key, and the view has followed.
    void readerMoved();

private:
    void buttonToggled(bool checked);
    void readerScrolled();

    QAbstractScrollArea* m_view;
    QPointer<QAbstractButton> m_button;
    bool m_held = false;
};
