#include "ThemeMenu.h"

#include "PlistPreferences.h"
#include "PreferenceKeys.h"

#include <QActionGroup>

ThemeMenu::ThemeMenu(PlistPreferences& preferences, const QString& title, QWidget* parent)
    : QMenu(title, parent)
    , m_preferences(preferences)
    , m_group(new QActionGroup(this))
{
    std::string name;
    m_preferences.getString(preferencekeys::prefixed(preferencekeys::theme), &name, nullptr, false);
    m_current = theme::fromName(name);
    theme::apply(m_current);
    addTheme(Theme::System, tr("&System"), tr("Use the colors of the desktop"));
    addTheme(Theme::Light, tr("&Light"), tr("Use light colors, whatever the desktop has"));
    addTheme(Theme::Dark, tr("&Dark"), tr("Use dark colors, whatever the desktop has"));
}

void ThemeMenu::addTheme(Theme theme, const QString& text, const QString& statusTip)
{
    const std::string_view name = theme::name(theme);
    QAction* action = addAction(text);
    action->setObjectName(
        QStringLiteral("actionTheme_") + QLatin1String(name.data(), static_cast<qsizetype>(name.size())));
    action->setStatusTip(statusTip);
    action->setCheckable(true);
    action->setChecked(theme == m_current);
    m_group->addAction(action);
    connect(action, &QAction::triggered, this, [this, theme] { choose(theme); });
}

void ThemeMenu::choose(Theme theme)
{
    if (theme == m_current)
        return;
    m_current = theme;
    theme::apply(theme);
    m_preferences.setString(preferencekeys::prefixed(preferencekeys::theme), std::string(theme::name(theme)));
    Q_EMIT stored(m_preferences.save(false));
}
