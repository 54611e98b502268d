#include "RefusalTip.h"

#include "PlainToolTip.h"

#include <QGuiApplication>
#include <QTimer>
#include <QToolTip>

namespace widgets {

void showRefusal(QWidget* editor, const QString& reason)
{
    QToolTip::showText(editor->mapToGlobal(editor->rect().bottomLeft()), plainToolTip(reason), editor);
}

void showRefusalLater(QWidget* viewport, const QRect& cell, const QString& reason)
{
    // Moving the focus and releasing a mouse button hide a tool tip, so both must be over.
    constexpr int whileHeld = 50;
    const bool isHeld = QGuiApplication::mouseButtons() != Qt::NoButton;
    QTimer::singleShot(isHeld ? whileHeld : 0, viewport, [viewport, cell, reason] {
        if (QGuiApplication::mouseButtons() != Qt::NoButton)
            showRefusalLater(viewport, cell, reason);
        else if (viewport->isVisible())
            QToolTip::showText(viewport->mapToGlobal(cell.bottomLeft()), plainToolTip(reason), viewport);
    });
}

} // namespace widgets
