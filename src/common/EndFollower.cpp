#include "EndFollower.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QScrollBar>

#include <utility>

EndFollower::EndFollower(QAbstractScrollArea* view)
    : m_view(view)
{
    connect(view->verticalScrollBar(), &QAbstractSlider::actionTriggered, this, &EndFollower::readerScrolled);
    connect(view->verticalScrollBar(), &QAbstractSlider::sliderReleased, this, &EndFollower::readerMoved);
}

void EndFollower::setButton(QAbstractButton* button)
{
    m_button = button;
    connect(button, &QAbstractButton::toggled, this, &EndFollower::buttonToggled);
}

bool EndFollower::isFollowing() const
{
    return m_button && m_button->isChecked() && !m_held;
}

void EndFollower::stopFollowing()
{
    if (m_button)
        m_button->setChecked(false);
}

void EndFollower::buttonToggled(bool checked)
{
    if (!checked)
        return;
    m_held = false;
    Q_EMIT endWanted();
}

/// Only up: who scrolls down does not leave the end, even where it has just moved on.
void EndFollower::readerScrolled()
{
    const QScrollBar& bar = *m_view->verticalScrollBar();
    if (bar.sliderPosition() < bar.value())
        stopFollowing();
    // The bar moves after it has told.
    QMetaObject::invokeMethod(this, &EndFollower::readerMoved, Qt::QueuedConnection);
}

int EndFollower::distanceToEnd() const
{
    const QScrollBar& bar = *m_view->verticalScrollBar();
    return bar.maximum() - bar.value();
}

void EndFollower::keyHandled(int distanceBefore, bool hasCursorLeftEnd)
{
    if (hasCursorLeftEnd || distanceToEnd() > distanceBefore)
        stopFollowing();
    Q_EMIT readerMoved();
}

void EndFollower::setHeld(bool held)
{
    if (std::exchange(m_held, held) && isFollowing())
        Q_EMIT endWanted();
}
