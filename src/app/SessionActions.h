#pragma once

#include "SessionCopy.h"
#include "SessionPages.h"

#include <QObject>

class ClientTabWidget;
class Preferences;
class QAction;
class QMenu;
class RecentFilesMenu;

/// The entries of a menu that save, open, record and compare sessions. Session files can also be dropped on
/// the window.
class SessionActions : public QObject {
    Q_OBJECT

public:
    /// Adds its actions in front of the entry of the menu. The store and the tabs must live longer.
    SessionActions(
        Preferences& preferences, QMenu* menu, QAction* before, ClientTabWidget& tabs, SessionPages& pages);

    /// True while a session is being saved.
    bool isSaving() const { return m_copy.isBusy(); }

Q_SIGNALS:
    /// Text that passes.
    void statusMessage(const QString& text);
    /// The page on which sessions appear is to come to the front.
    void pageWanted();
    /// Saving has ended.
    void saved(bool saved);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setUpActions(QMenu* menu, QAction* before);
    void askForSave();
    void askForFile(const std::vector<SessionSource>& sources);
    void askForSession();
    void compare();
    void tellNotOpened(const QString& path, const QString& reason);
    void setRecords(bool records);
    void updateActions();

    QWidget* m_window;
    Preferences& m_preferences;
    ClientTabWidget& m_tabs;
    SessionPages& m_pages;
    SessionCopy m_copy;
    RecentFilesMenu* m_recent = nullptr;
    QAction* m_save = nullptr;
    QAction* m_record = nullptr;
};
