// How long does the program take from its start to its window being shown? Starts the real program again and
// again and waits for the window's first exposure, without a display server (offscreen) unless
// QT_QPA_PLATFORM says else.

#include "Program.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMainWindow>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <vector>

namespace {

qint64 now()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// Ends the program as soon as its main window has been painted for the first time.
class Watcher : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && qobject_cast<QMainWindow*>(watched) && m_shown == 0) {
            m_shown = now();
            QTextStream(stdout) << m_shown << Qt::endl;
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    qint64 m_shown = 0;
};

void watchForTheWindow()
{
    if (qEnvironmentVariableIsSet("CORVALE_BENCH_CHILD"))
        qApp->installEventFilter(new Watcher(qApp));
}
Q_COREAPP_STARTUP_FUNCTION(watchForTheWindow)

/// Milliseconds of one start, negative where the window never came.
double measureOnce(const QString& program, const QProcessEnvironment& environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::SeparateChannels);
    const qint64 start = now();
    process.start(program, QStringList());
    if (!process.waitForFinished(30000))
        return -1;
    bool ok = false;
    const qint64 shown = process.readAllStandardOutput().trimmed().toLongLong(&ok);
    return ok ? static_cast<double>(shown - start) / 1000 : -1;
}

int measure(const QString& program, int runs)
{
    const QTemporaryDir room;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("CORVALE_BENCH_CHILD"), QStringLiteral("1"));
    environment.insert(QStringLiteral("TMPDIR"), room.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), room.path());
    if (!environment.contains(QStringLiteral("QT_QPA_PLATFORM")))
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));

    std::vector<double> times;
    for (int i = 0; i <= runs; ++i) {
        const double time = measureOnce(program, environment);
        if (time < 0) {
            QTextStream(stderr) << "bench-startup: the window was never shown\n";
            return 1;
        }
        if (i == 0)
            QTextStream(stdout) << "first start      " << time << " ms\n";
        else
            times.push_back(time);
    }
    std::sort(times.begin(), times.end());
    QTextStream(stdout) << "later starts     min " << times.front() << ", median " << times[times.size() / 2]
                        << ", max " << times.back() << " ms (" << runs << " runs, platform "
                        << environment.value(QStringLiteral("QT_QPA_PLATFORM")) << ")\n";
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsSet("CORVALE_BENCH_CHILD"))
        return runProgram(argc, argv);
    constexpr int runs = 20;
    return measure(QString::fromLocal8Bit(argv[0]), runs);
}
