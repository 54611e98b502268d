#include "GenericValueSelectorItemDelegate.h"

#include <QPainter>

namespace widgets {

bool GenericValueSelectorItemDelegate::isSeparator(const QModelIndex& index)
{
    // The mark that QComboBox::insertSeparator() leaves.
    return index.data(Qt::AccessibleDescriptionRole).toString() == QLatin1String("separator");
}

void GenericValueSelectorItemDelegate::paint(
    QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (!isSeparator(index)) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    painter->save();
    // A separator is disabled, and the text of what is disabled is faint already.
    QColor faint = option.palette.color(QPalette::Active, QPalette::Text);
    faint.setAlphaF(0.4F);
    painter->setPen(faint);
    const int y = option.rect.center().y();
    painter->drawLine(option.rect.left(), y, option.rect.right(), y);
    painter->restore();
}

QSize GenericValueSelectorItemDelegate::sizeHint(
    const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    constexpr int separatorHeight = 5;
    if (isSeparator(index))
        return {separatorHeight, separatorHeight};
    return QStyledItemDelegate::sizeHint(option, index);
}

} // namespace widgets
