#include "ConsoleFontSize.h"

#include "Preferences.h"

#include <QApplication>
#include <QEvent>
#include <QFontComboBox>
#include <QFontInfo>
#include <QShortcut>

#include <algorithm>

namespace {

/// Points that the console's font may have more or less than the application's, and has at least.
constexpr int mostPoints = 40;
constexpr qreal leastSize = 5;

} // namespace

ConsoleFontSize::ConsoleFontSize(Preferences& preferences, QFontComboBox* box)
    : QObject(box)
    , m_preferences(preferences)
    , m_box(box)
{
    const int stored = QString::fromStdString(preferences.get(settings::consoleFontPoints)).toInt();
    m_points = std::clamp(stored, -mostPoints, mostPoints);
    apply();
    box->installEventFilter(this);
    const auto addKeys = [this](const QList<QKeySequence>& keys, const auto& action) {
        for (const QKeySequence& key : keys)
            connect(new QShortcut(key, m_box->window()), &QShortcut::activated, this, action);
    };
    // The plus is behind Shift on some keyboards, where it is the key of the equals sign.
    addKeys({QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)},
        [this] { change(1); });
    addKeys({QKeySequence(Qt::CTRL | Qt::Key_Minus)}, [this] { change(-1); });
    addKeys({QKeySequence(Qt::CTRL | Qt::Key_0)}, [this] { reset(); });
}

void ConsoleFontSize::change(int points)
{
    // A size at its limit does not go on beyond it, whence the user would have to come back.
    const int least = static_cast<int>(leastSize - QFontInfo(QApplication::font()).pointSizeF());
    choose(std::clamp(m_points + points, std::min(least, 0), mostPoints));
}

void ConsoleFontSize::reset()
{
    choose(0);
}

void ConsoleFontSize::choose(int points)
{
    if (points == m_points)
        return;
    m_points = points;
    m_preferences.set(settings::consoleFontPoints, std::to_string(points));
    apply();
}

void ConsoleFontSize::apply()
{
    QFont font = m_box->currentFont();
    font.setPointSizeF(std::max(leastSize, QFontInfo(QApplication::font()).pointSizeF() + m_points));
    m_box->setCurrentFont(font);
}

bool ConsoleFontSize::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::FontChange)
        apply();
    return QObject::eventFilter(watched, event);
}
