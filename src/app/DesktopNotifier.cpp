#include "DesktopNotifier.h"

#include "Preferences.h"

#include <QActionGroup>
#include <QApplication>
#include <QSystemTrayIcon>
#include <QTimer>

namespace {

/// Values of the setting.
constexpr const char* nothing = "off";
constexpr const char* crashesAlone = "crashes";
constexpr const char* everything = "errors";

constexpr int messageTime = 8000; // milliseconds

} // namespace

DesktopNotifier::DesktopNotifier(Preferences& preferences, QWidget& window)
    : QMenu(tr("Desktop &Notifications"), &window)
    , m_preferences(preferences)
    , m_window(window)
{
    setObjectName(QStringLiteral("menuNotifications"));
    setToolTipsVisible(true);
    auto* group = new QActionGroup(this);
    addChoice(*group, tr("&Off"), nothing, tr("Tell nothing through the desktop"));
    addChoice(*group, tr("&Crashes"), crashesAlone,
        tr("Tell when the connection to an application is lost while another window is active"));
    addChoice(*group, tr("First &Errors, Crashes and Ends"), everything,
        tr("Also tell of the first error of each application, and when it ends"));
}

void DesktopNotifier::addChoice(
    QActionGroup& group, const QString& text, const char* name, const QString& toolTip)
{
    QAction* action = addAction(text);
    action->setCheckable(true);
    action->setToolTip(toolTip);
    action->setData(QString::fromLatin1(name));
    group.addAction(action);
    action->setChecked(m_preferences.get(settings::notifications) == name);
    connect(action, &QAction::triggered, this,
        [this, name] { m_preferences.set(settings::notifications, name); });
}

bool DesktopNotifier::isWanted(Event event) const
{
    const std::string wanted = m_preferences.get(settings::notifications);
    return wanted == everything || (wanted == crashesAlone && event == Event::Crash);
}

void DesktopNotifier::notify(Event event, const QString& title)
{
    if (m_window.isActiveWindow() || !isWanted(event))
        return;
    QString text;
    switch (event) {
    case Event::FirstError:
        text = tr("%1 has reported its first error.").arg(title);
        break;
    case Event::End:
        text = tr("%1 has ended.").arg(title);
        break;
    case Event::Crash:
        text = tr("The connection to %1 was lost. It may have crashed.").arg(title);
        break;
    }
    showMessage(text, event == Event::Crash);
    Q_EMIT notified(text);
}

void DesktopNotifier::showMessage(const QString& text, bool isCrash)
{
    if (!QSystemTrayIcon::isSystemTrayAvailable() || !QSystemTrayIcon::supportsMessages()) {
        QApplication::alert(&m_window);
        return;
    }
    // The icon is there while its message is, since only an icon can have one.
    if (!m_tray) {
        m_tray = new QSystemTrayIcon(m_window.windowIcon(), this);
        connect(m_tray, &QSystemTrayIcon::messageClicked, &m_window, [this] {
            m_window.raise();
            m_window.activateWindow();
        });
    }
    m_tray->show();
    QTimer::singleShot(messageTime, m_tray, &QSystemTrayIcon::hide);
    m_tray->showMessage(m_window.windowTitle().remove(QStringLiteral("[*]")), text,
        isCrash ? QSystemTrayIcon::Warning : QSystemTrayIcon::Information, messageTime);
}
