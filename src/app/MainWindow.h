#pragma once

#include "MetaTypes.h"
#include "Preferences.h"

#include <QMainWindow>

#include <memory>
#include <set>

class AboutBox;
class Client;
class ClientInterface;
class ClientTabWidget;
class ConsoleFontSize;
class ConsoleViewActions;
class KeptFilters;
class DesktopNotifier;
class LocalListener;
class MonitorStatus;
class MutedErrors;
class PreferencesReporter;
class ProfileCatalogue;
class ProfileChooser;
class RecentProfilesMenu;
class SessionActions;
class SessionPages;
class QLocalServer;
class SystemReportGUIReceiver;
class SystemReportViewer;
class TSRStatsInterface;
class WindowController;
class WindowState;

namespace Ui {
class MainWindow;
}

namespace models {
class CurrentProfile;
}

namespace widgets {
class Profile;
}

/// What fatalError() reports.
enum class Error {
    SocketNotCreated,
};
Q_DECLARE_METATYPE(Error)

/// The program's window. It listens for emulated applications, gives each a tab, and carries the pages and
/// menus.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    /// The controller may be none, where the window stands for itself. The preference store must live longer.
    MainWindow(WindowController* controller, Preferences& preferences);
    ~MainWindow() override;

    /// Shows the profiles of the catalogue, which must live longer than the window is used, with the
    /// remembered one as the chosen one.
    void setCatalogue(ProfileCatalogue& catalogue);

    /// Reads the profiles again and shows them.
    void reloadProfiles();
    /// Takes over what the preferences dialog has changed: the profiles, and files that were saved there.
    void preferencesEdited(const QStringList& savedFiles);
    /// Puts a profile file into the menu of the recent ones.
    void addRecentProfile(const QString& path);

    /// Shows a session file.
    void openSession(const QString& path);

    /// Tells why other instances cannot see this one; empty when they can.
    void setInstanceProblem(const QString& problem);

    /// Closes the window without a question. False where that has to wait until a console is saved.
    bool end();
    /// Shows the about box as a splash, unless the user does not want that.
    void showSplash();

    /// Gives the window the size, the place and the choices of the last time, and remembers those of this
    /// time. To be called before it is shown.
    void restorePlace();

public Q_SLOTS:
    void onAbout();
    void onFeedback();
    void onHelp();
    void onPreferences();
    void optionChanged();
    void clientCleanDisconnect(Client* client);
    void clientIckyDisconnect(Client* client);
    void setClientPID(Client* client, PID_TYPE);
    void setClientName(Client* client, const QString& name);
    void closeTab(const int);
    void fontChanged(const QFont&);
    void fatalError(Error);
    void serverNewConnection();
    void newProfile();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void setUpActions();
    void connectFind();
    void setUpMenus();
    void setUpFonts();
    void setUpErrorLists();
    void setUpHelp();
    void setUpSessions();
    void setUpPages();
    void setUpProfiles();
    void setUpServer();
    void followClient(Client* client, ClientInterface* page);
    ClientInterface* addSessionPage(Client* client, const QString& session);
    void countProblems(ClientInterface& page);
    void clientDisconnected(Client* client, const QString& text, bool isClean);
    void showClientCount();
    void consoleSaved(bool saved);
    void markEdits(bool edited);

    std::unique_ptr<Ui::MainWindow> m_ui;
    WindowController* m_controller;
    Preferences& m_preferences;
    ClientTabWidget* m_clientTabs = nullptr;
    std::unique_ptr<KeptFilters> m_keptFilters;
    MutedErrors* m_mutedErrors = nullptr;
    DesktopNotifier* m_notifier = nullptr;
    MonitorStatus* m_status = nullptr;
    std::unique_ptr<PreferencesReporter> m_preferencesReporter;
    SystemReportGUIReceiver* m_reportReceiver = nullptr;
    SystemReportViewer* m_reportViewer = nullptr;
    std::shared_ptr<TSRStatsInterface> m_stats;
    AboutBox* m_aboutBox = nullptr;
    models::CurrentProfile* m_currentProfile = nullptr;
    ProfileChooser* m_profileChooser = nullptr;
    widgets::Profile* m_profilePanel = nullptr;
    ConsoleViewActions* m_consoleView = nullptr;
    ConsoleFontSize* m_consoleFontSize = nullptr;
    WindowState* m_windowState = nullptr;
    RecentProfilesMenu* m_recentProfiles = nullptr;
    SessionPages* m_sessionPages = nullptr;
    SessionActions* m_sessionActions = nullptr;
    QLocalServer* m_server = nullptr;
    LocalListener* m_listener = nullptr;
    std::set<Client*> m_clients;
    bool m_asksBeforeClosing = true;
    bool m_closesOnceSaved = false;
};
