#include "StartedProgram.h"

#include <QFile>
#include <QTimer>

#include <algorithm>
#include <csignal>
#include <initializer_list>

#include <unistd.h>

namespace {

/// Milliseconds that a program has to end by itself.
constexpr int politeTime = 3000;
/// Bytes of standard error that are kept.
constexpr qsizetype keptErrors = 4096;

/// Exit codes of a launcher that does not understand its arguments, cannot run the program or cannot find it.
constexpr std::initializer_list<int> failureCodes{2, 126, 127};

} // namespace

StartedProgram::StartedProgram(QObject* parent)
    : QProcess(parent)
{
    // The window shows the output in the program's console, so that nobody needs to read it here. The
    // launcher goes on when nobody reads its standard error any more.
    setStandardInputFile(nullDevice());
    setStandardOutputFile(nullDevice());
    setChildProcessModifier([] { setsid(); });
    connect(this, &QProcess::started, this, [this] { m_group = processId(); });
    connect(this, &QProcess::readyReadStandardError, this, &StartedProgram::keepErrors);
    connect(this, &QProcess::finished, this, [this] {
        keepErrors();
        // What a script has started does not always end with it.
        if (m_isStopping)
            ::kill(static_cast<pid_t>(-m_group), m_isKilled ? SIGKILL : SIGTERM);
    });
}

StartedProgram::~StartedProgram()
{
    // QProcess would kill what runs.
    disconnect();
    setProcessState(NotRunning);
}

void StartedProgram::keepErrors()
{
    m_errors = (m_errors + readAllStandardError()).right(keptErrors);
}

QString StartedProgram::launcherFailure() const
{
    constexpr QByteArrayView sender = "corvale-run: ";
    const bool hasFailed = exitStatus() == NormalExit
        && std::find(failureCodes.begin(), failureCodes.end(), exitCode()) != failureCodes.end();
    const qsizetype at = m_errors.lastIndexOf(sender);
    if (!hasFailed || at < 0 || (at > 0 && m_errors[at - 1] != '\n'))
        return {};
    return QString::fromLocal8Bit(m_errors.mid(at + sender.size())).simplified();
}

void StartedProgram::stop()
{
    if (state() == NotRunning || m_isStopping)
        return;
    m_isStopping = true;
    terminate();
    QTimer::singleShot(politeTime, this, &StartedProgram::kill);
}

void StartedProgram::kill()
{
    if (state() == NotRunning)
        return;
    m_isKilled = true;
    // Only the program, if it can be told from its launcher, which then tells how the program has ended.
    const QString id = QString::number(m_group);
    QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(id));
    QList<QByteArray> found;
    if (children.open(QIODevice::ReadOnly))
        found = children.readAll().simplified().split(' ');
    found.removeAll(QByteArray());
    for (const QByteArray& child : found)
        ::kill(static_cast<pid_t>(child.toInt()), SIGKILL);
    if (found.isEmpty())
        ::kill(static_cast<pid_t>(-m_group), SIGKILL);
}
