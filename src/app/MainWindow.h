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
class Controller;
class LocalListener;
class MonitorStatus;
class ProfileCatalogue;
class ProfileChooser;
class ProfileDataWrapper;
class ProfilePage;
class RecentFilesMenu;
class QLocalServer;
class SystemReportGUIReceiver;
class SystemReportViewer;
class TSRStatsInterface;

namespace Ui {
class MainWindow;
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
    MainWindow(Controller* controller, Preferences& preferences);
    ~MainWindow() override;

    /// Fills the profile chooser, with the remembered profile as the chosen one. The catalogue must live
    /// longer than the window is used.
    void setCatalogue(ProfileCatalogue& catalogue);

    /// Reads the profiles again and shows them. Nothing happens to a chosen profile that is still what it
    /// was; one that has changed on disk or is gone lives until the change of choice has been announced.
    void reloadProfiles();
    /// Chooses a profile as the user would; one that is not in the list is ignored.
    void chooseProfile(const std::shared_ptr<const ProfileDataWrapper>& profile);
    /// Takes over what the preferences dialog has changed: the profiles, and files that were saved there.
    void preferencesEdited(const QStringList& savedFiles);
    /// Puts a profile file into the menu of the recent ones.
    void addRecentProfile(const QString& path);

    /// Tells why other instances cannot see this one; empty when they can.
    void setInstanceProblem(const QString& problem);

    /// Closes the window without a question. False where that has to wait until a console is saved.
    bool end();
    /// Shows the about box as a splash, unless the user does not want that.
    void showSplash();

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
    void setUpMenus();
    void setUpFonts();
    void setUpHelp();
    void setUpPages();
    void setUpServer();
    void countProblems(const ClientInterface& page);
    void clientDisconnected(Client* client, const QString& text, bool isClean);
    void showClientCount();
    void consoleSaved(bool saved);
    void openRecentProfile(const QString& path);
    void reportSave(const SaveOutcome& outcome);

    std::unique_ptr<Ui::MainWindow> m_ui;
    Controller* m_controller;
    Preferences& m_preferences;
    ClientTabWidget* m_clientTabs = nullptr;
    MonitorStatus* m_status = nullptr;
    SystemReportGUIReceiver* m_reportReceiver = nullptr;
    SystemReportViewer* m_reportViewer = nullptr;
    std::shared_ptr<TSRStatsInterface> m_stats;
    AboutBox* m_aboutBox = nullptr;
    ProfileChooser* m_profileChooser = nullptr;
    ProfilePage* m_profilePage = nullptr;
    RecentFilesMenu* m_recentProfiles = nullptr;
    ProfileCatalogue* m_catalogue = nullptr;
    QLocalServer* m_server = nullptr;
    LocalListener* m_listener = nullptr;
    std::set<Client*> m_clients;
    bool m_asksBeforeClosing = true;
    bool m_closesOnceSaved = false;
};
