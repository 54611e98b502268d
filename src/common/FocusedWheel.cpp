#include "FocusedWheel.h"

#include <QEvent>
#include <QWidget>

FocusedWheel::FocusedWheel(QWidget* widget)
    : QObject(widget)
{
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->installEventFilter(this);
}

bool FocusedWheel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Wheel && !static_cast<QWidget*>(watched)->hasFocus())
        return true;
    return QObject::eventFilter(watched, event);
}
