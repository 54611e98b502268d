#include "ThemeMenu.h"

#include "Preferences.h"

#include <QActionGroup>
#include <QEvent>

ThemeMenu::ThemeMenu(Preferences& preferences, const QString& title, QWidget* window)
    : QMenu(title, window)
    , m_preferences(preferences)
    , m_group(new QActionGroup(this))
{
    m_current = theme::fromName(m_preferences.get(settings::theme));
    m_applyAgain.setSingleShot(true);
    connect(&m_applyAgain, &QTimer::timeout, this, &ThemeMenu::apply);
    m_updateSheets.setSingleShot(true);
    connect(&m_updateSheets, &QTimer::timeout, this, &theme::updateStyleSheets);
    apply();
    window->installEventFilter(this);
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
    apply();
    m_preferences.set(settings::theme, std::string(theme::name(theme)));
}

void ThemeMenu::apply()
{
    theme::apply(m_current);
    m_windowColor = windowColor();
}

QColor ThemeMenu::windowColor() const
{
    return parentWidget()->palette().color(QPalette::Window);
}

bool ThemeMenu::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        // Later, since the desktop may not be through with all widgets yet.
        m_updateSheets.start(0);
        if (m_current != Theme::System && windowColor() != m_windowColor)
            m_applyAgain.start(0);
    }
    return QMenu::eventFilter(watched, event);
}
