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

/// In a layout from right to left, a number before a Latin text would go to the text's other end.
QString inOwnDirection(const QString& text, Qt::LayoutDirection layout)
{
    constexpr QChar leftToRightIsolate(0x2066);
    constexpr QChar endOfIsolate(0x2069);
    if (layout == Qt::LeftToRight || text.isRightToLeft())
        return text;
    return leftToRightIsolate + text + endOfIsolate;
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
    option->text = inOwnDirection(cut(option->text, lettersAcross(*option)), option->direction);
}

bool ErrorListDelegate::helpEvent(
    QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString text = index.data(Qt::DisplayRole).toString();
    const bool fits = text.size() <= std::min(rowLength, lettersAcross(option))
        && !text.contains(QLatin1Char('\n')) && sizeHint(option, index).width() <= option.rect.width();
    QToolTip::showText(event->globalPos(),
        fits ? QString() : plainToolTip(inOwnDirection(cut(text, toolTipLength), option.direction)),
        view->viewport(), view->visualRect(index));
    return true;
}
