#include "ItemFindMarks.h"

#include "ScrollBarMarks.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTreeView>

namespace {

/// Of the colour above the text of a cell.
constexpr int opacity = 80;
/// Pixels around a selected cell.
constexpr int outline = 2;

/// The row below another one in a view.
QModelIndex below(const QAbstractItemView& view, const QModelIndex& index)
{
    if (const auto* tree = qobject_cast<const QTreeView*>(&view))
        return tree->indexBelow(index);
    return index.siblingAtRow(index.row() + 1);
}

} // namespace

ItemFindMarks::ItemFindMarks(QAbstractItemView* view)
    : QWidget(view)
    , m_view(view)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    view->viewport()->installEventFilter(this);
    for (const QScrollBar* bar : {view->verticalScrollBar(), view->horizontalScrollBar()})
        connect(bar, &QAbstractSlider::valueChanged, this, qOverload<>(&QWidget::update));
    hide();
}

void ItemFindMarks::setPattern(const FindPattern& pattern)
{
    m_pattern = pattern;
    setVisible(!pattern.isEmpty());
    followViewport();
    update();
}

void ItemFindMarks::followViewport()
{
    setGeometry(m_view->viewport()->geometry());
    raise();
}

bool ItemFindMarks::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
        followViewport();
    return QWidget::eventFilter(watched, event);
}

void ItemFindMarks::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    if (!m_view->model())
        return;
    QPainter painter(this);
    for (QModelIndex row = m_view->indexAt(QPoint(0, 0)); row.isValid(); row = below(*m_view, row)) {
        const int columns = m_view->model()->columnCount(row.parent());
        bool isBelow = true;
        for (int column = 0; column < columns; ++column) {
            const QModelIndex cell = row.siblingAtColumn(column);
            const QRect place = m_view->visualRect(cell);
            isBelow = isBelow && place.top() > height();
            if (!place.isEmpty() && m_pattern.isIn(cell.data(Qt::DisplayRole).toString()))
                mark(painter, cell, place);
        }
        if (isBelow)
            break;
    }
}

/// The text of a selected cell could hardly be read through a fill.
void ItemFindMarks::mark(QPainter& painter, const QModelIndex& cell, const QRect& place) const
{
    QColor colour = ScrollBarMarks::colour();
    if (m_view->selectionModel()->isSelected(cell)) {
        painter.setPen(QPen(colour, outline));
        painter.drawRect(place.adjusted(outline / 2, outline / 2, -outline / 2, -outline / 2));
        return;
    }
    colour.setAlpha(opacity);
    painter.fillRect(place, colour);
}
