#include "ElidedLineEdit.h"

#include "PlainToolTip.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QToolTip>

/// Where an edit without the focus shows its text.
QRect ElidedLineEdit::textRect() const
{
    // Between its frame and its text an edit leaves as much as this.
    constexpr int margin = 2;
    QStyleOptionFrame option;
    initStyleOption(&option);
    return style()
        ->subElementRect(QStyle::SE_LineEditContents, &option, this)
        .marginsRemoved(textMargins())
        .adjusted(margin, 0, -margin, 0);
}

QString ElidedLineEdit::elidedText() const
{
    return fontMetrics().elidedText(displayText(), Qt::ElideRight, textRect().width());
}

bool ElidedLineEdit::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || elidedText() == displayText())
        return QLineEdit::event(event);
    const QString lines = toolTip().isEmpty() ? displayText() : displayText() + QLatin1Char('\n') + toolTip();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(lines), this);
    return true;
}

void ElidedLineEdit::paintEvent(QPaintEvent* event)
{
    const QString shown = elidedText();
    if (hasFocus() || shown == displayText()) {
        QLineEdit::paintEvent(event);
        return;
    }
    QStyleOptionFrame option;
    initStyleOption(&option);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
    const Qt::Alignment alignment = QStyle::visualAlignment(layoutDirection(), this->alignment());
    style()->drawItemText(&painter, textRect(), int(alignment | Qt::AlignVCenter), option.palette,
        isEnabled(), shown, QPalette::Text);
}
