#include "ProgramRunner.h"

#include "LauncherFile.h"
#include "StartedProgram.h"

#include <QProcessEnvironment>

ProgramRunner::ProgramRunner(QObject* parent)
    : QObject(parent)
{
}

void ProgramRunner::start(const ProgramRun& run)
{
    if (const auto problem = run.problem()) {
        Q_EMIT failed(problem->text);
        return;
    }
    const QString launcher = launcher_file::find();
    if (launcher.isEmpty()) {
        Q_EMIT failed(launcher_file::missingText());
        return;
    }
    auto* program = new StartedProgram(this);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The launcher gives the program a terminal, so that lines come as they are written. Consoles show no
    // colors.
    environment.insert(QStringLiteral("TERM"), QStringLiteral("dumb"));
    for (const QString& variable : run.environment)
        environment.insert(variable.section(QLatin1Char('='), 0, 0), variable.section(QLatin1Char('='), 1));
    program->setProcessEnvironment(environment);
    program->setWorkingDirectory(run.folderPath());
    const QString name = run.name();
    connect(program, &QProcess::started, this, [this, name] { Q_EMIT started(name); });
    connect(program, &QProcess::finished, this, [this, program, name] { finish(program, name); });
    connect(program, &QProcess::errorOccurred, this, [this, program, launcher](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        remove(program);
        Q_EMIT failed(tr("\"%1\" could not be started: %2").arg(launcher, program->errorString()));
    });
    ++m_count;
    Q_EMIT countChanged();
    const QStringList options{
        QStringLiteral("--show-output"), QStringLiteral("--profile=") + run.profile, QStringLiteral("--")};
    program->start(launcher, options + run.arguments());
}

void ProgramRunner::finish(StartedProgram* program, const QString& name)
{
    remove(program);
    const QString failure = program->launcherFailure();
    if (!failure.isEmpty())
        Q_EMIT failed(failure);
    else if (program->exitStatus() == QProcess::CrashExit)
        Q_EMIT ended(tr("\"%1\" was ended by a signal.").arg(name));
    else
        Q_EMIT ended(tr("\"%1\" has ended with exit status %2.").arg(name).arg(program->exitCode()));
}

void ProgramRunner::remove(StartedProgram* program)
{
    --m_count;
    program->deleteLater();
    Q_EMIT countChanged();
}

void ProgramRunner::stopAll()
{
    for (StartedProgram* program : findChildren<StartedProgram*>())
        program->stop();
}
