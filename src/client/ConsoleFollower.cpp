#include "ConsoleFollower.h"

#include "TextViewPlace.h"

#include <QAbstractButton>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextEdit>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

ConsoleFollower::ConsoleFollower(QTextEdit* view, QAbstractButton* button)
    : EndFollower(view)
    , m_view(view)
{
    setButton(button);
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
    connect(view->verticalScrollBar(), &QAbstractSlider::rangeChanged, this, [this](int, int maximum) {
        // A text in another width or font is laid out bit by bit.
        if (isFollowing())
            m_view->verticalScrollBar()->setValue(maximum);
    });
    connect(view, &QTextEdit::selectionChanged, this, [this] {
        if (m_view->textCursor().hasSelection())
            stopFollowing();
    });
}

ConsoleFollower::~ConsoleFollower() = default;

void ConsoleFollower::showEnd(const QTextCursor& end)
{
    m_view->setTextCursor(end);
    m_view->ensureCursorVisible();
}

void ConsoleFollower::showCursor(const QTextCursor& cursor)
{
    const int line = m_view->fontMetrics().lineSpacing();
    const QRect comfortable = m_view->viewport()->rect().adjusted(0, line, 0, -line);
    const bool isInView = comfortable.contains(m_view->cursorRect(cursor));
    m_view->setTextCursor(cursor);
    if (isInView)
        return;
    const TextViewPlace place(m_view, cursor, m_view->viewport()->height() / 3);
    place.restore();
    if (m_place)
        *m_place = place;
}

int ConsoleFollower::firstPositionInUse() const
{
    const QTextCursor cursor = m_view->textCursor();
    const int top = m_view->cursorForPosition(QPoint(0, 0)).position();
    return cursor.hasSelection() ? std::min(top, cursor.selectionStart()) : top;
}

void ConsoleFollower::keepDuring(const std::function<void()>& rewriting)
{
    const int scrolled = m_view->verticalScrollBar()->value();
    QTextCursor cursor = m_view->textCursor();
    const auto [anchor, position] = std::pair(cursor.anchor(), cursor.position());
    const int top = m_place ? m_place->position() : 0;
    rewriting();
    if (m_place)
        m_place->setPosition(top);
    cursor.setPosition(anchor);
    cursor.setPosition(position, QTextCursor::KeepAnchor);
    m_view->setTextCursor(cursor);
    m_view->verticalScrollBar()->setValue(scrolled);
}

bool ConsoleFollower::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Wheel && watched == m_view->viewport()) {
        const auto& wheel = static_cast<const QWheelEvent&>(*event);
        if (wheel.modifiers().testFlag(Qt::ControlModifier)) {
            zoom(wheel);
            return true; // The view would change its own font only.
        }
    }
    if (event->type() == QEvent::FontChange || event->type() == QEvent::Resize)
        keepPlaceDuringLayout();
    else if (watched == m_view)
        viewEvent(*event);
    else
        viewportEvent(*event);
    return EndFollower::eventFilter(watched, event);
}

void ConsoleFollower::zoom(const QWheelEvent& event)
{
    m_wheelAngle += event.angleDelta().y();
    const int notches = m_wheelAngle / QWheelEvent::DefaultDeltasPerStep;
    m_wheelAngle %= QWheelEvent::DefaultDeltasPerStep;
    if (notches != 0)
        Q_EMIT zoomWanted(notches);
}

void ConsoleFollower::viewEvent(const QEvent& event)
{
    if (event.type() == QEvent::PaletteChange)
        Q_EMIT paletteChanged();
    else if (event.type() == QEvent::Show)
        Q_EMIT viewShown();
    else if (event.type() == QEvent::KeyPress)
        keyPressed();
}

/// Between a press and the drag that selects from there, nothing may move the text or its cursor.
void ConsoleFollower::viewportEvent(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        if (static_cast<const QMouseEvent&>(event).button() == Qt::LeftButton)
            setHeld(true);
        break;
    case QEvent::MouseButtonRelease:
    case QEvent::Leave: // where something else has taken the release
    case QEvent::Hide:
        setHeld(false);
        break;
    default:
        break;
    }
}

/// Keys move the cursor, and with it the text, once the view has handled them.
void ConsoleFollower::keyPressed()
{
    QMetaObject::invokeMethod(
        this,
        [this, cursor = m_view->textCursor(), before = distanceToEnd()] {
            keyHandled(before, m_view->textCursor() < cursor);
        },
        Qt::QueuedConnection);
}

/// The view lays its text out anew right after the event that announces it.
void ConsoleFollower::keepPlaceDuringLayout()
{
    if (isFollowing() || m_place)
        return;
    m_place = std::make_unique<TextViewPlace>(m_view);
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_place->restore();
            m_place.reset();
        },
        Qt::QueuedConnection);
}
