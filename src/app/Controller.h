#pragma once

#include "MainWindow.h"
#include "Preferences.h"
#include "ProfileCatalogue.h"
#include "StartUpLock.h"
#include "WindowController.h"

#include <QApplication>

#include <memory>
#include <string>
#include <vector>

class QLocalServer;

/// The application object: makes sure that only one instance runs for a user, and owns the preference store,
/// the main window and the profiles.
class Controller : public QApplication, public WindowController {
    Q_OBJECT

public:
    /// Starts up; throws std::runtime_error with a text for the user where that fails, as on a second
    /// instance. Both arguments must live as long as the Controller.
    Controller(int& argc, char** argv);
    ~Controller() override;

    /// Shows the main window, with the sessions in these files, and runs the event loop; returns its exit
    /// code.
    int run(const std::vector<std::string>& sessionFiles = {});

    void editPreferences() override;
    std::string directoryForSaving() override;
    bool askForCopy() override;
    bool mayReplace(const std::string& fileName) override;
    bool save(ProfileData& profile, const std::string& directory) override;
    bool saveAs(ProfileData& profile, const std::string& directory) override;

private:
    void refuseSecondInstance() const;
    void answerOtherInstances();
    void endOnSignals();

    StartUpLock m_startUpLock;
    Preferences m_preferences;
    MainWindow m_mainWindow;
    ProfileCatalogue m_catalogue;
    QLocalServer* m_instanceServer;
};
