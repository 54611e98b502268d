#pragma once

#include <QStyledItemDelegate>

namespace widgets {

/// Paints the list of a selector; subclasses override displayText().
class GenericValueSelectorItemDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static bool isSeparator(const QModelIndex& index);

    void paint(
        QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace widgets
