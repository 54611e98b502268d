#include "GenericValueSelector.h"

#include "GenericValueSelectorItemDelegate.h"
#include "SelectorListView.h"

#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QStylePainter>
#include <QWheelEvent>

#include <algorithm>

namespace widgets {

GenericValueSelector::GenericValueSelector(QWidget* parent, const QStringList& values, const QString& current)
    : QComboBox(parent)
{
    // A list that drops down and scrolls: a menu of several hundred extensions would fill the screen.
    setStyleSheet(QStringLiteral("QComboBox { combobox-popup: 0; }"));
    constexpr int visibleItems = 20;
    setMaxVisibleItems(visibleItems);
    setView(new SelectorListView(this));
    setItemDelegate(new GenericValueSelectorItemDelegate(this));
    setAutoFillBackground(true);
    insertItem(0, current);
    insertSeparator(1);
    addItems(values);
    connect(this, &QComboBox::activated, this, [this] {
        if (!m_handlingKey)
            Q_EMIT chosen();
    });
    // Screen readers would read the stored value.
    connect(this, &QComboBox::currentTextChanged, this,
        [this](const QString& value) { setAccessibleDescription(displayText(value)); });
}

QString GenericValueSelector::displayText(const QString& value) const
{
    return value;
}

QStringList GenericValueSelector::namesOfItems() const
{
    QStringList names;
    for (int i = 0; i < count(); ++i)
        names += displayText(itemText(i));
    return names;
}

QSize GenericValueSelector::sizeHint() const
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    QSize contents(0, fontMetrics().height() + 2);
    for (const QString& name : namesOfItems())
        contents.setWidth(std::max(contents.width(), fontMetrics().horizontalAdvance(name)));
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, contents, this);
}

QSize GenericValueSelector::minimumSizeHint() const
{
    return sizeHint();
}

void GenericValueSelector::showPopup()
{
    const QStringList names = namesOfItems();
    for (int i = 0; i < count(); ++i) {
        if (!GenericValueSelectorItemDelegate::isSeparator(model()->index(i, modelColumn())))
            setItemData(i, names.at(i), Qt::AccessibleTextRole);
    }
    // The combo box has switched it off when the style it began with shows a menu.
    view()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    const int scrollBar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, view());
    view()->setMinimumWidth(view()->sizeHintForColumn(modelColumn()) + scrollBar + 2 * view()->frameWidth());
    QComboBox::showPopup();
}

void GenericValueSelector::paintEvent(QPaintEvent* /*event*/)
{
    QStylePainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setPen(palette().color(QPalette::Text));
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QRect label =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    option.currentText =
        fontMetrics().elidedText(displayText(currentText()), Qt::ElideRight, label.width() - 2);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void GenericValueSelector::keyPressEvent(QKeyEvent* event)
{
    const QScopedValueRollback<bool> handling(m_handlingKey, true);
    QComboBox::keyPressEvent(event);
}

void GenericValueSelector::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

} // namespace widgets
