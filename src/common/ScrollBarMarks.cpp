#include "ScrollBarMarks.h"

#include <QEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionSlider>

#include <utility>

namespace {

constexpr int markHeight = 2;

} // namespace

ScrollBarMarks::ScrollBarMarks(QScrollBar* bar)
    : QWidget(bar)
    , m_bar(bar)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    bar->installEventFilter(this);
    hide();
}

QColor ScrollBarMarks::colour()
{
    return {255, 196, 0};
}

void ScrollBarMarks::setMarks(std::vector<double> places)
{
    if (places == m_places)
        return;
    m_places = std::move(places);
    setVisible(!m_places.empty());
    setGeometry(m_bar->rect());
    update();
}

bool ScrollBarMarks::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(m_bar->rect());
    return QWidget::eventFilter(watched, event);
}

void ScrollBarMarks::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QStyleOptionSlider option;
    option.initFrom(m_bar);
    option.orientation = Qt::Vertical;
    option.minimum = m_bar->minimum();
    option.maximum = m_bar->maximum();
    option.pageStep = m_bar->pageStep();
    option.sliderPosition = option.sliderValue = m_bar->value();
    const QRect groove =
        m_bar->style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarGroove, m_bar);
    QPainter painter(this);
    int last = -markHeight;
    for (const double place : m_places) {
        const int y = groove.top() + static_cast<int>(place * (groove.height() - markHeight));
        if (y < last + markHeight)
            continue;
        last = y;
        painter.fillRect(groove.left() + groove.width() / 4, y, groove.width() / 2, markHeight, colour());
    }
}
