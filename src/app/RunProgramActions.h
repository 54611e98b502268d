#pragma once

#include "ProgramRunner.h"
#include "RecentRuns.h"

#include <QObject>

class QAction;
class QMenu;
class QWidget;

namespace models {
class CurrentProfile;
}

namespace widgets {
class NoticeBar;
}

struct RunProfile;

/// The entries of a menu by which the user runs programs, runs the last one again and ends those that run.
/// What could not be run stays in a notice until the user hides it or the next program starts.
class RunProgramActions : public QObject {
    Q_OBJECT

public:
    /// Adds its actions in front of the entry of the menu, and its notice to the layout of the page. The
    /// store and the current profile must live longer.
    RunProgramActions(Preferences& preferences, const models::CurrentProfile& profile, QMenu* menu,
        QAction* before, QWidget* page);

Q_SIGNALS:
    /// Text that passes.
    void statusMessage(const QString& text);
    /// The page on which programs appear is to come to the front.
    void pageWanted();

private:
    void setUpActions(QMenu* menu, QAction* before);
    void setUpNotice(QWidget* page);
    void ask();
    void run(const ProgramRun& run);
    void runAgain();
    void tellFailure(const QString& text);
    void updateActions();
    QList<RunProfile> profiles() const;

    QWidget* m_window;
    const models::CurrentProfile& m_profile;
    RecentRuns m_recent;
    ProgramRunner m_runner;
    widgets::NoticeBar* m_notice = nullptr;
    QAction* m_run = nullptr;
    QAction* m_runAgain = nullptr;
    QAction* m_stop = nullptr;
};
