#include "ConsoleViewActions.h"

#include "Client.h"
#include "ClientInterface.h"
#include "Console.h"
#include "ConsoleMargin.h"
#include "Preferences.h"

#include <QMenu>

ConsoleViewActions::ConsoleViewActions(Preferences& preferences, QMenu* menu)
    : QObject(menu)
    , m_preferences(preferences)
    , m_menu(menu)
{
    menu->addSeparator();
    add("actionConsoleMargin", tr("&Time and Frame in the Console"),
        tr("Show when each entry of a console arrived, and in which frame"), settings::consoleMargin,
        [](ClientInterface& page, bool on) { page.consoleMargin().setStampsShown(on); });
    add("actionFoldRepeats", tr("Fold &Repeated Entries"),
        tr("Show equal entries of a console that follow each other once, with their number"),
        settings::foldRepeats, [](ClientInterface& page, bool on) {
            page.consoleMargin().setRepeatsShown(on);
            page.console().setFoldsRepeats(on);
        });
    add("actionFoldGroups", tr("Fold &Groups"),
        tr("Show of the messages with a number and of what stands in their frames the first lines only"),
        settings::foldGroups, [](ClientInterface& page, bool on) { page.console().setFoldsGroups(on); });
    // Beside F9 in a console, for the group at the cursor.
    m_choices.back().action->setShortcut(Qt::SHIFT | Qt::Key_F9);
}

void ConsoleViewActions::add(const char* objectName, const QString& text, const QString& statusTip,
    const Setting<bool>& setting, Apply apply)
{
    QAction* action = m_menu->addAction(text);
    action->setObjectName(QLatin1String(objectName));
    action->setStatusTip(statusTip);
    action->setCheckable(true);
    action->setChecked(m_preferences.get(setting));
    connect(action, &QAction::triggered, this, [this, &setting](bool on) { m_preferences.set(setting, on); });
    m_choices.push_back({action, apply});
}

void ConsoleViewActions::follow(ClientInterface& page)
{
    for (const Choice& choice : m_choices) {
        const auto show = [&page, apply = choice.apply](bool on) {
            apply(page, on);
        };
        show(choice.action->isChecked());
        page.addConsoleAction(choice.action);
        connect(choice.action, &QAction::toggled, &page, show);
    }
}
