#include "ConsoleMargin.h"

#include "ConsoleHistory.h"
#include "Message.h"

#include <QDateTime>
#include <QEvent>
#include <QLocale>
#include <QPainter>
#include <QTextEdit>

namespace {

/// Pixels between two columns.
constexpr int gap = 8;

} // namespace

ConsoleMargin::ConsoleMargin(const QTextEdit* view, const ConsoleHistory& history, QWidget* parent)
    : QWidget(parent)
    , m_view(view)
    , m_history(history)
{
    setObjectName(QStringLiteral("consoleMargin"));
    setToolTip(tr("The time at which each entry arrived, and its frame"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
    // Whatever changes what the view shows has it painted.
    view->viewport()->installEventFilter(this);
    hide();
}

QString ConsoleMargin::timeText(std::int64_t time)
{
    return QDateTime::fromMSecsSinceEpoch(time).toString(QStringLiteral("HH:mm:ss.zzz"));
}

void ConsoleMargin::setStampsShown(bool shown)
{
    m_showsStamps = shown;
    showIfUseful();
}

void ConsoleMargin::setRepeatsShown(bool shown)
{
    m_showsRepeats = shown;
    showIfUseful();
}

void ConsoleMargin::showIfUseful()
{
    setVisible(m_showsStamps || m_showsRepeats);
    updateGeometry();
    update();
}

int ConsoleMargin::repeatsWidth() const
{
    return m_showsRepeats ? m_view->fontMetrics().horizontalAdvance(QStringLiteral("\u00D7 100,000")) + gap
                          : 0;
}

int ConsoleMargin::timeWidth() const
{
    return m_showsStamps ? m_view->fontMetrics().horizontalAdvance(QStringLiteral("00:00:00.000")) + gap : 0;
}

int ConsoleMargin::frameWidth() const
{
    return m_showsStamps ? m_view->fontMetrics().horizontalAdvance(QStringLiteral("100000")) + gap : 0;
}

QSize ConsoleMargin::sizeHint() const
{
    return {repeatsWidth() + timeWidth() + frameWidth(), 0};
}

bool ConsoleMargin::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Paint)
        update();
    else if (event->type() == QEvent::FontChange)
        updateGeometry();
    return QWidget::eventFilter(watched, event);
}

void ConsoleMargin::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    painter.setFont(m_view->font());
    painter.setPen(m_view->palette().color(QPalette::PlaceholderText));
    const int offset = m_view->viewport()->mapTo(m_view, QPoint()).y() + m_view->y() - y();
    const int line = m_view->fontMetrics().lineSpacing();
    int last = -line;
    m_history.forEachInView([&](const ConsoleDocument::Shown& entry, int top) {
        // Entries without a line of their own have no room.
        if (top < last + line)
            return;
        last = top;
        drawEntry(painter, entry, top + offset);
    });
}

void ConsoleMargin::drawEntry(QPainter& painter, const ConsoleDocument::Shown& entry, int y) const
{
    const int height = m_view->fontMetrics().height();
    int x = 0;
    const auto draw = [&](int width, const QString& text) {
        painter.drawText(QRect(x, y, width - gap, height), Qt::AlignRight | Qt::AlignVCenter, text);
        x += width;
    };
    if (m_showsRepeats)
        draw(repeatsWidth(),
            entry.count > 1
                ? QStringLiteral("\u00D7 ") + QLocale().toString(static_cast<qulonglong>(entry.count))
                : QString());
    if (!m_showsStamps)
        return;
    draw(timeWidth(), timeText(entry.stamp.time));
    draw(frameWidth(),
        entry.stamp.frame == ui::messages::noFrame ? QString() : QString::number(entry.stamp.frame));
}
