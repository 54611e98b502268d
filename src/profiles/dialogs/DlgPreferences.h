#pragma once

#include <QDialog>
#include <QStringList>

#include <memory>

class ClickableLabel;
class ElidedLabel;
class FileListWidget;
class Preferences;
class ProfileImport;

namespace Ui {
class DlgPreferences;
}

/// Edits the preferences of the profiles and imports profile files. It always ends through close(), so the
/// result of exec() tells nothing.
class DlgPreferences : public QDialog {
    Q_OBJECT

public:
    /// The store must live longer.
    explicit DlgPreferences(Preferences* preferences, QWidget* parent = nullptr);
    ~DlgPreferences() override;

    /// The profile files that were written by imports.
    const QStringList& savedFiles() const { return m_savedFiles; }

public Q_SLOTS:
    void accept() override;
    void browseProfilesDirectory();
    void importBrowseProfiles();
    void importProfiles();
    void advancedExpandChanged(int state);
    void updateImportButtonText();
    void showWhatsThisContextMode();

private:
    void addHelpLabel();
    void addFileList();
    void addDirectoryHint();
    void setUpConnections();
    void explainDirectory();
    /// Whether profiles can be kept in the directory that was entered; offers to make it.
    bool isDirectoryUsable();
    void saveImport(const ProfileImport& import, const QString& path);

    std::unique_ptr<Ui::DlgPreferences> m_ui;
    FileListWidget* m_files = nullptr;
    Preferences* m_preferences;
    ClickableLabel* m_contextModeHelp = nullptr;
    ElidedLabel* m_directoryHint = nullptr;
    QString m_directoryBefore;
    QStringList m_savedFiles;
};
