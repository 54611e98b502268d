#pragma once

#include "ProgramRun.h"

#include <QDialog>
#include <QList>

#include <memory>

namespace Ui {
class RunProgramDialog;
}

/// A profile to choose from.
struct RunProfile {
    QString text; ///< What the user reads.
    QString name; ///< As ProgramRun has it.
};

/// Asks which program is to be run, with which arguments, where, with which profile, and in which
/// environment. It is accepted only with a run that has no problem.
class RunProgramDialog : public QDialog {
    Q_OBJECT

public:
    /// The first of the recent runs fills the fields. The first of the profiles, whose name is empty, is the
    /// one that is chosen in the window.
    RunProgramDialog(const QList<ProgramRun>& recent, const QList<RunProfile>& profiles, QWidget* parent);
    ~RunProgramDialog() override;

    ProgramRun run() const;
    void accept() override;

private:
    void setUpRecent();
    void fill(const ProgramRun& run);
    void showProfile(const QString& name);
    void clearProblem();
    void browseProgram();
    void browseFolder();

    std::unique_ptr<Ui::RunProgramDialog> m_ui;
    QList<ProgramRun> m_recent;
};
