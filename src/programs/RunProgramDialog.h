#pragma once

#include "ProgramRun.h"

#include <QDialog>
#include <QList>

#include <memory>

namespace Ui {
class RunProgramDialog;
}

/// Asks which program is to be run, with which arguments, where, and in which environment. It is accepted
/// only with a run that has no problem.
class RunProgramDialog : public QDialog {
    Q_OBJECT

public:
    /// The first of the recent runs fills the fields.
    RunProgramDialog(const QList<ProgramRun>& recent, QWidget* parent);
    ~RunProgramDialog() override;

    ProgramRun run() const;
    void accept() override;

private:
    void setUpRecent();
    void fill(const ProgramRun& run);
    void clearProblem();
    void browseProgram();
    void browseFolder();

    std::unique_ptr<Ui::RunProgramDialog> m_ui;
    QList<ProgramRun> m_recent;
};
