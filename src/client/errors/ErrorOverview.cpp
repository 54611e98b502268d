#include "ErrorOverview.h"

#include "ErrorListFilterProxyModel.h"
#include "ErrorListModel.h"
#include "PlainToolTip.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace {

constexpr int repaintPause = 200; // milliseconds
constexpr int leastBarWidth = 3; // pixels
constexpr float faintness = 0.25F;

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Base).lightness() < 128;
}

} // namespace

ErrorOverview::ErrorOverview(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Errors over frames"));
    setAccessibleDescription(tr("Left and right choose a group of frames, Enter goes to its first row"));
    m_pause.setSingleShot(true);
    m_pause.setInterval(repaintPause);
    connect(&m_pause, &QTimer::timeout, this, &ErrorOverview::showCounts);
    hide();
}

void ErrorOverview::setErrors(const ErrorListFilterProxyModel* shown)
{
    m_shown = shown;
    m_errors = shown->errors();
    // Rows that are found later are looked at a few times a second.
    connect(shown, &QAbstractItemModel::modelReset, this, [this] {
        if (!m_pause.isActive())
            m_pause.start();
    });
    connect(m_errors, &QAbstractItemModel::rowsInserted, this,
        [this](const QModelIndex&, int first, int last) { count(first, last); });
    connect(m_errors, &QAbstractItemModel::modelReset, this, &ErrorOverview::recount);
    recount();
}

void ErrorOverview::count(int first, int last)
{
    for (int row = first; row <= last; ++row)
        m_histogram.add(m_errors->severity(row), m_errors->frame(row));
    if (!m_pause.isActive())
        m_pause.start();
}

void ErrorOverview::recount()
{
    m_histogram.clear();
    m_current = -1;
    count(0, m_errors->rowCount() - 1);
    showCounts();
}

/// Of one frame alone there is nothing to see.
void ErrorOverview::showCounts()
{
    setVisible(m_histogram.lastFrame() > m_histogram.firstFrame());
    update();
    if (m_shown->isFiltered() && !m_shown->isSettled())
        m_pause.start();
}

QSize ErrorOverview::sizeHint() const
{
    return {200, fontMetrics().height() + 10};
}

QSize ErrorOverview::minimumSizeHint() const
{
    return {40, sizeHint().height()};
}

/// As many as there is room for, and no more than frames are counted apart.
int ErrorOverview::barCount() const
{
    const std::int64_t first = m_histogram.binStart(m_histogram.firstFrame());
    const std::int64_t bins = (m_histogram.lastFrame() - first) / m_histogram.binWidth() + 1;
    return static_cast<int>(std::clamp<std::int64_t>(bins, 1, std::max(1, width() / leastBarWidth)));
}

ErrorOverview::Bar ErrorOverview::bar(int number) const
{
    const std::int64_t width = m_histogram.binWidth();
    const std::int64_t first = m_histogram.binStart(m_histogram.firstFrame());
    const std::int64_t bins = (m_histogram.lastFrame() - first) / width + 1;
    const std::int64_t count = barCount();
    return {first + bins * number / count * width, first + bins * (number + 1) / count * width - 1};
}

ErrorHistogram::Bin ErrorOverview::countsOf(int number) const
{
    const Bar frames = bar(number);
    return m_histogram.countOf(frames.first, frames.last);
}

/// The bins of both histograms begin at multiples of their widths, and no bin is wider than a bar.
ErrorHistogram::Bin ErrorOverview::shownCountsOf(int number) const
{
    if (!m_shown->isFiltered())
        return countsOf(number);
    const Bar frames = bar(number);
    return m_shown->shownFrames().countOf(frames.first, frames.last);
}

int ErrorOverview::barAt(int x) const
{
    if (layoutDirection() == Qt::RightToLeft)
        x = width() - 1 - x;
    return std::clamp(x * barCount() / std::max(1, width()), 0, barCount() - 1);
}

void ErrorOverview::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    const int count = barCount();
    std::uint32_t most = 1;
    for (int i = 0; i < count; ++i)
        most = std::max(most, countsOf(i).sum());
    const int room = height() - 4;
    const auto heightOf = [most, room](const ErrorHistogram::Bin& counts) {
        const double part = std::log1p(counts.sum()) / std::log1p(most);
        return counts.sum() == 0 ? 0 : std::max(2, static_cast<int>(std::lround(part * room)));
    };
    for (int i = 0; i < count; ++i) {
        const ErrorHistogram::Bin all = countsOf(i);
        if (all.sum() == 0)
            continue;
        int left = width() * i / count;
        const int wide = std::max(1, width() * (i + 1) / count - left - 1);
        if (layoutDirection() == Qt::RightToLeft)
            left = width() - left - wide;
        const ErrorHistogram::Bin shown = shownCountsOf(i);
        const int bottom = height() - 2;
        if (shown.sum() < all.sum())
            drawBar(painter, {left, bottom - heightOf(all), wide, heightOf(all)}, all, true);
        drawBar(painter, {left, bottom - heightOf(shown), wide, heightOf(shown)}, shown, false);
        if (hasFocus() && i == m_current)
            painter.fillRect(left, bottom, wide, 2, palette().color(QPalette::Highlight));
    }
    painter.setPen(palette().color(hasFocus() ? QPalette::Highlight : QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void ErrorOverview::drawBar(
    QPainter& painter, const QRect& place, const ErrorHistogram::Bin& counts, bool isFaint) const
{
    if (place.isEmpty())
        return;
    QColor error = isDark(palette()) ? QColor(255, 100, 90) : QColor(200, 30, 30);
    QColor warning = isDark(palette()) ? QColor(240, 200, 60) : QColor(190, 140, 0);
    if (isFaint) {
        error.setAlphaF(faintness);
        warning.setAlphaF(faintness);
    }
    const int errors = static_cast<int>(std::lround(double(place.height()) * counts.errors / counts.sum()));
    painter.fillRect(place.adjusted(0, place.height() - errors, 0, 0), error);
    painter.fillRect(place.adjusted(0, 0, 0, -errors), warning);
}

QString ErrorOverview::toolTipOf(int number) const
{
    const Bar frames = bar(number);
    const ErrorHistogram::Bin counts = countsOf(number);
    const QLocale locale;
    const auto words = [&locale](const ErrorHistogram::Bin& bin) {
        return tr("%1 errors, %2 warnings").arg(locale.toString(bin.errors), locale.toString(bin.warnings));
    };
    const ErrorHistogram::Bin shown = shownCountsOf(number);
    const QString counted = shown.sum() == counts.sum()
        ? words(counts)
        : tr("%1 (with hidden ones: %2)").arg(words(shown), words(counts));
    if (frames.first == frames.last)
        return tr("Frame %1: %2").arg(frames.first).arg(counted);
    return tr("Frames %1 to %2: %3").arg(frames.first).arg(frames.last).arg(counted);
}

bool ErrorOverview::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<const QHelpEvent*>(event);
    QToolTip::showText(help->globalPos(), plainToolTip(toolTipOf(barAt(help->pos().x()))), this);
    return true;
}

void ErrorOverview::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        choose(nearestFilled(barAt(event->position().toPoint().x())));
}

/// The bar itself or the nearest one with rows that are shown.
int ErrorOverview::nearestFilled(int number) const
{
    for (int distance = 0; distance < barCount(); ++distance) {
        for (const int other : {number - distance, number + distance}) {
            if (other >= 0 && other < barCount() && shownCountsOf(other).sum() > 0)
                return other;
        }
    }
    return number;
}

void ErrorOverview::choose(int number)
{
    m_current = number;
    update();
    const Bar frames = bar(number);
    Q_EMIT framesChosen(static_cast<int>(std::max<std::int64_t>(frames.first, m_histogram.firstFrame())),
        static_cast<int>(std::min<std::int64_t>(frames.last, m_histogram.lastFrame())));
}

void ErrorOverview::keyPressEvent(QKeyEvent* event)
{
    const int forward = layoutDirection() == Qt::RightToLeft ? Qt::Key_Left : Qt::Key_Right;
    const int back = layoutDirection() == Qt::RightToLeft ? Qt::Key_Right : Qt::Key_Left;
    const int step = event->key() == forward ? 1 : event->key() == back ? -1 : 0;
    if (step != 0) {
        int next = std::clamp(m_current, -1, barCount()) + step;
        while (next >= 0 && next < barCount() && shownCountsOf(next).sum() == 0)
            next += step;
        if (next < 0 || next >= barCount())
            return;
        m_current = next;
        const int x = width() * next / barCount();
        QToolTip::showText(mapToGlobal(QPoint(x, height())), plainToolTip(toolTipOf(next)), this);
        update();
    } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && m_current >= 0) {
        choose(std::min(m_current, barCount() - 1));
    } else {
        QWidget::keyPressEvent(event);
    }
}
