#pragma once

#include <QObject>

#include <vector>

class ClientInterface;
class Preferences;
class QAction;
class QMenu;
template <typename T> struct Setting;

/// The entries of the menu View that say how all consoles are shown; they are remembered.
class ConsoleViewActions : public QObject {
    Q_OBJECT

public:
    /// Adds the actions to a menu, which becomes the parent.
    ConsoleViewActions(Preferences& preferences, QMenu* menu);

    /// Has a page show its console so, now and whenever the user wants it otherwise.
    void follow(ClientInterface& page);

private:
    using Apply = void (*)(ClientInterface&, bool);
    struct Choice {
        QAction* action;
        Apply apply;
    };

    void add(const char* objectName, const QString& text, const QString& statusTip,
        const Setting<bool>& setting, Apply apply);

    Preferences& m_preferences;
    QMenu* m_menu;
    std::vector<Choice> m_choices;
};
