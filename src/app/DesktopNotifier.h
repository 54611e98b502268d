#pragma once

#include <QMenu>
#include <QPointer>

class Preferences;
class QActionGroup;
class QSystemTrayIcon;
class QWidget;

/// Tells through the desktop what happens to applications while the window is not active: in a message where
/// there is a tray, else by marking the window. It is the menu in which the user chooses what is told, which
/// is kept in the preferences.
class DesktopNotifier : public QMenu {
    Q_OBJECT

public:
    enum class Event {
        FirstError, ///< Of an application.
        End, ///< With a good-bye.
        Crash, ///< The connection was lost.
    };

    /// The store must live longer.
    DesktopNotifier(Preferences& preferences, QWidget& window);

    /// Tells of an event of an application with a title, if the user wants that.
    void notify(Event event, const QString& title);

Q_SIGNALS:
    /// A message came up, or the window was marked; told for whatever follows.
    void notified(const QString& text);

private:
    void addChoice(QActionGroup& group, const QString& text, const char* name, const QString& toolTip);
    bool isWanted(Event event) const;
    void showMessage(const QString& text, bool isCrash);

    Preferences& m_preferences;
    QWidget& m_window;
    QPointer<QSystemTrayIcon> m_tray;
};
