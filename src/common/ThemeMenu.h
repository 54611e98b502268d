#pragma once

#include "Theme.h"

#include <QColor>
#include <QMenu>
#include <QTimer>

class Preferences;

/// The menu in which a theme is chosen. It applies the stored one when it is made, and stores the choice.
class ThemeMenu : public QMenu {
    Q_OBJECT

public:
    /// The store must live longer. The window is the one by which the menu notices that the desktop has put
    /// its own colors in place of a chosen theme's.
    ThemeMenu(Preferences& preferences, const QString& title, QWidget* window);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addTheme(Theme theme, const QString& text, const QString& statusTip);
    void choose(Theme theme);
    void apply();
    QColor windowColor() const;

    Preferences& m_preferences;
    QActionGroup* m_group;
    Theme m_current = Theme::System;
    /// As the theme has made it.
    QColor m_windowColor;
    QTimer m_applyAgain;
    QTimer m_updateSheets;
};
