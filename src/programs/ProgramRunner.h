#pragma once

#include "ProgramRun.h"

#include <QObject>

class StartedProgram;

/// Runs programs through the launcher, so that they appear in the window. Those that still run when it is
/// destroyed go on.
class ProgramRunner : public QObject {
    Q_OBJECT

public:
    explicit ProgramRunner(QObject* parent = nullptr);

    /// Starts a program that sees the device of its profile, which is never empty here; failed() or started()
    /// tells what became of that.
    void start(const ProgramRun& run);
    /// Ends the programs that run.
    void stopAll();
    bool isRunning() const { return m_count > 0; }

Q_SIGNALS:
    void started(const QString& name);
    /// A program could not be run; the text for the user says why.
    void failed(const QString& text);
    /// A program that had been started has ended; the text for the user says how.
    void ended(const QString& text);
    /// isRunning() may have changed.
    void countChanged();

private:
    void finish(StartedProgram* program, const QString& name);
    void remove(StartedProgram* program);

    int m_count = 0;
};
