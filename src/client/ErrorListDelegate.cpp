#include "ErrorListDelegate.h"

#include "PlainToolTip.h"

#include <QAbstractItemView>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QToolTip>

#include <algorithm>

namespace {

/// Characters of a cell that a tool tip shows; "View contents" shows all of them.
constexpr qsizetype toolTipLength = 1000;

/// More characters than any screen shows in one row. How many a cell shows depends on its width.
constexpr qsizetype rowLength = 2000;

QString cut(const QString& text, qsizetype length)
{
    return text.size() > length ? text.left(length) + QChar(0x2026) : text;
}

/// As many characters as fill a cell, however narrow they are. Shaping more of them, several times at every
/// repaint, would be for nothing.
qsizetype lettersAcross(const QStyleOptionViewItem& option)
{
    const QFontMetricsF metrics(option.fontMetrics);
    qreal narrowest = metrics.averageCharWidth();
    for (const char letter : {'i', 'l', '.', '\''})
        narrowest = std::min(narrowest, metrics.horizontalAdvance(QLatin1Char(letter)));
    return static_cast<qsizetype>(option.rect.width() / std::max(1.0, narrowest)) + 1;
}

} // namespace

QString ErrorListDelegate::displayText(const QVariant& value, const QLocale& locale) const
{
    Q_UNUSED(locale)
    QString text = cut(value.toString(), rowLength);
    // The view draws line breaks as such, which a row of one line cannot show.
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    text.replace(QChar(QChar::LineSeparator), QLatin1Char(' '));
    text.replace(QLatin1Char('\t'), QLatin1Char(' '));
    return text;
}

void ErrorListDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->text = cut(option->text, lettersAcross(*option));
}

bool ErrorListDelegate::helpEvent(
    QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString text = index.data(Qt::DisplayRole).toString();
    const bool fits = text.size() <= std::min(rowLength, lettersAcross(option))
        && !text.contains(QLatin1Char('\n')) && sizeHint(option, index).width() <= option.rect.width();
    QToolTip::showText(event->globalPos(), fits ? QString() : plainToolTip(cut(text, toolTipLength)),
        view->viewport(), view->visualRect(index));
    return true;
}
