#include "ErrorListDelegate.h"

#include "PlainToolTip.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

namespace {

/// Characters of a cell that a tool tip shows; "View contents" shows all of them.
constexpr qsizetype toolTipLength = 1000;

} // namespace

QString ErrorListDelegate::displayText(const QVariant& value, const QLocale& locale) const
{
    QString text = QStyledItemDelegate::displayText(value, locale);
    // The view draws line breaks as such, which a row of one line cannot show.
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    text.replace(QChar(QChar::LineSeparator), QLatin1Char(' '));
    text.replace(QLatin1Char('\t'), QLatin1Char(' '));
    return text;
}

bool ErrorListDelegate::helpEvent(
    QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QString text = index.data(Qt::DisplayRole).toString();
    const bool fits =
        !text.contains(QLatin1Char('\n')) && sizeHint(option, index).width() <= option.rect.width();
    if (text.size() > toolTipLength)
        text = text.left(toolTipLength) + QChar(0x2026);
    QToolTip::showText(
        event->globalPos(), fits ? QString() : plainToolTip(text), view->viewport(), view->visualRect(index));
    return true;
}
