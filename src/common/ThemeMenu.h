#pragma once

#include "Theme.h"

#include <QMenu>

class PlistPreferences;

/// The menu in which a theme is chosen. It applies the stored one when it is made, and stores the choice.
class ThemeMenu : public QMenu {
    Q_OBJECT

public:
    /// The store must live longer.
    ThemeMenu(PlistPreferences& preferences, const QString& title, QWidget* parent);

Q_SIGNALS:
    /// A choice was stored, and whether the preferences could be saved.
    void stored(bool saved);

private:
    void addTheme(Theme theme, const QString& text, const QString& statusTip);
    void choose(Theme theme);

    PlistPreferences& m_preferences;
    QActionGroup* m_group;
    Theme m_current = Theme::System;
};
