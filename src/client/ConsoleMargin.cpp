#include "ConsoleMargin.h"

#include "ConsoleHistory.h"
#include "Message.h"

#include <QDateTime>
#include <QEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QTextEdit>

#include <optional>

namespace {

/// Pixels between two columns.
constexpr int gap = 8;

QString frameText(const EntryStamp& stamp)
{
    return stamp.frame == ui::messages::noFrame ? QString() : QString::number(stamp.frame);
}

} // namespace

ConsoleMargin::ConsoleMargin(const QTextEdit* view, const ConsoleHistory& history, QWidget* parent)
    : QWidget(parent)
    , m_view(view)
    , m_history(history)
{
    setObjectName(QStringLiteral("consoleMargin"));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Ignored);
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

void ConsoleMargin::setGroupsShown(bool shown)
{
    m_showsGroups = shown;
    showIfUseful();
}

void ConsoleMargin::showIfUseful()
{
    setVisible(m_showsStamps || m_showsRepeats || m_showsGroups);
    QStringList tips;
    if (m_showsGroups)
        tips += tr("Click beside a group to fold or unfold it (F9 at the cursor)");
    if (m_showsRepeats)
        tips += tr(
            "\u00D7: how often an entry came in a row. With a + even more often: it was not counted from its "
            "first time on.");
    if (m_showsStamps)
        tips += tr("The time at which each entry arrived, and its frame");
    setToolTip(tips.join(QLatin1Char('\n')));
    updateGeometry();
    update();
}

int ConsoleMargin::foldWidth() const
{
    return m_showsRepeats || m_showsGroups ? m_view->fontMetrics().horizontalAdvance(m_widestFold) + gap : 0;
}

int ConsoleMargin::timeWidth() const
{
    return m_showsStamps ? m_view->fontMetrics().horizontalAdvance(QStringLiteral("00:00:00.000")) + gap : 0;
}

int ConsoleMargin::frameWidth() const
{
    return m_showsStamps ? m_view->fontMetrics().horizontalAdvance(m_widestFrame) + gap : 0;
}

QSize ConsoleMargin::sizeHint() const
{
    return {foldWidth() + timeWidth() + frameWidth(), 0};
}

bool ConsoleMargin::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Paint)
        update();
    else if (event->type() == QEvent::FontChange)
        updateGeometry();
    return QWidget::eventFilter(watched, event);
}

/// What stands at the top of the viewport stands so far down here.
int ConsoleMargin::offset() const
{
    return m_view->viewport()->mapTo(m_view, QPoint()).y() + m_view->y() - y();
}

QString ConsoleMargin::foldText(const ConsoleDocument::Shown& entry) const
{
    const auto number = [&entry](std::uint64_t count) {
        return QLocale().toString(static_cast<qulonglong>(count))
            + (entry.isCut ? QStringLiteral("+") : QString());
    };
    const bool isFolded = entry.count > 1;
    if (!entry.opensGroup())
        return isFolded ? QStringLiteral("\u00D7 ") + number(entry.count) : QString();
    if (!m_showsGroups)
        return {};
    return isFolded ? QStringLiteral("\u25B8 ") + number(entry.count - 1) : QStringLiteral("\u25BE");
}

void ConsoleMargin::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !m_showsGroups)
        return;
    const int y = static_cast<int>(event->position().y()) - offset();
    std::optional<std::uint64_t> group;
    m_history.forEachInView([&](const ConsoleDocument::Shown& entry, int top) {
        if (top <= y && y < top + m_view->fontMetrics().lineSpacing())
            group = entry.opensGroup() ? entry.group : std::nullopt;
    });
    if (group)
        Q_EMIT groupClicked(*group);
}

void ConsoleMargin::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    painter.setFont(m_view->font());
    painter.setPen(m_view->palette().color(QPalette::PlaceholderText));
    const int line = m_view->fontMetrics().lineSpacing();
    int last = -line;
    m_history.forEachInView([&](const ConsoleDocument::Shown& entry, int top) {
        // Entries without a line of their own have no room.
        if (top < last + line)
            return;
        last = top;
        makeRoomFor(entry);
        drawEntry(painter, entry, top + offset());
    });
}

/// The columns become wider for numbers with more digits, once this has been drawn.
void ConsoleMargin::makeRoomFor(const ConsoleDocument::Shown& entry)
{
    const auto grow = [this](QString& widest, const QString& text) {
        if (text.size() <= widest.size())
            return;
        widest = text;
        QMetaObject::invokeMethod(this, &QWidget::updateGeometry, Qt::QueuedConnection);
    };
    if (m_showsRepeats || m_showsGroups)
        grow(m_widestFold, foldText(entry));
    if (m_showsStamps)
        grow(m_widestFrame, frameText(entry.stamp));
}

void ConsoleMargin::drawEntry(QPainter& painter, const ConsoleDocument::Shown& entry, int y) const
{
    const int height = m_view->fontMetrics().height();
    int x = 0;
    const auto draw = [&](int width, const QString& text) {
        painter.drawText(QRect(x, y, width - gap, height), Qt::AlignRight | Qt::AlignVCenter, text);
        x += width;
    };
    if (m_showsRepeats || m_showsGroups)
        draw(foldWidth(), foldText(entry));
    if (!m_showsStamps)
        return;
    draw(timeWidth(), timeText(entry.stamp.time));
    draw(frameWidth(), frameText(entry.stamp));
}
