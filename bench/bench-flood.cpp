// How fast, how smooth and how small is the window in a flood of records? Another process, this program
// again, sends them over the real socket. The same run measures a plain text view that shows one line a
// record (the baseline) and a loop that only cuts and counts (the ceiling), so that the numbers can be
// compared on any machine. Options: --short for a run that only sees whether it works, --full for a million
// records as well, --layer for the ceiling and what comes through the client layer alone.

#include "FloodLayer.h"
#include "FloodSender.h"
#include "FloodSubjects.h"
#include "FloodWindow.h"
#include "Resources.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <optional>
#include <stdexcept>

namespace {

QTextStream& out()
{
    static QTextStream stream(stdout);
    return stream;
}

void printMachine()
{
    QFile info(QStringLiteral("/proc/cpuinfo"));
    QString processor;
    if (info.open(QIODevice::ReadOnly)) {
        for (const QString& line : QString::fromLatin1(info.readAll()).split(QLatin1Char('\n'))) {
            if (line.startsWith(QLatin1String("model name")))
                processor = line.section(QStringLiteral(": "), 1);
        }
    }
    out() << QThread::idealThreadCount() << " x " << processor << ", " << QSysInfo::prettyProductName()
          << ", Qt " << qVersion() << ", platform " << QGuiApplication::platformName() << "\n";
}

void row(const QString& what, const QString& value, const QString& wanted = QString())
{
    out() << what.leftJustified(58) << value.rightJustified(16) << "   " << wanted << Qt::endl;
}

QString number(double value, int decimals = 0)
{
    return QString::number(value, 'f', decimals);
}

/// By the clock, and in brackets by the processor time that the window itself took: on a busy machine others
/// run in between.
QString both(const flood::Span& span, int decimals)
{
    return QStringLiteral("%1 (%2)").arg(span.clock, 0, 'f', decimals).arg(span.work, 0, 'f', decimals);
}

double printCeiling(int records)
{
    const double ceiling = flood::measureCeiling(records);
    row(QStringLiteral("ceiling: cut and count, records/s"), number(ceiling));
    return ceiling;
}

void printFlood(int count, const flood::Result& result, double baseline, double ceiling)
{
    const QString title = QStringLiteral("window, %1 records: ").arg(count);
    row(title + QStringLiteral("records/s"), number(result.rate));
    row(title + QStringLiteral("own work, microseconds each"), number(result.work, 2));
    row(title + QStringLiteral("times the baseline"), number(result.rate / baseline, 1),
        QStringLiteral(">= 25"));
    row(title + QStringLiteral("part of the ceiling"), number(result.rate / ceiling, 3),
        QStringLiteral(">= 0.125"));
    row(title + QStringLiteral("last / first tenth (own work)"), both(result.flatness, 2),
        QStringLiteral(">= 0.8"));
    row(title + QStringLiteral("longest gap, ms (own work)"), both(result.longestGap, 1),
        QStringLiteral("< 50"));
    row(title + QStringLiteral("console filled up after, ms"), number(result.settled));
    row(title + QStringLiteral("rows of the error list"), number(result.rows));
    row(title + QStringLiteral("bytes a row beyond its text"), number(result.bytesPerRow),
        QStringLiteral("<= 96"));
}

#ifdef CORVALE_RUN
void printErrors(const QString& title, const flood::ErrorFlood& result, const QString& wanted)
{
    row(title + QStringLiteral(": records/s"), number(result.rate), wanted);
    row(title + QStringLiteral(": lost, twice"),
        QStringLiteral("%1, %2").arg(result.lost).arg(result.doubled), QStringLiteral("0, 0"));
    row(title + QStringLiteral(": us of window, of others"),
        QStringLiteral("%1, %2").arg(result.windowWork, 0, 'f', 2).arg(result.othersWork, 0, 'f', 2));
    if (result.costOfError > 0)
        row(title + QStringLiteral(": ns an error takes the program"), number(result.costOfError));
}

void measureLayer(int errors)
{
    printErrors(QStringLiteral("a plain sender's errors"), flood::measurePlainErrors(errors), {});
    const flood::ErrorFlood layer = flood::measureLayer(errors);
    if (layer.rate == 0) {
        row(QStringLiteral("a program through the layer"), QStringLiteral("no OpenGL ES"));
        return;
    }
    printErrors(QStringLiteral("a program through the layer"), layer, QStringLiteral(">= 200000"));
    printErrors(QStringLiteral("the same with a log"),
        flood::measureLayer(errors, QDir::tempPath() + QStringLiteral("/log")), {});
    const flood::ErrorFlood stopped = flood::measureLayer(errors, {}, true);
    row(QStringLiteral("a stopped window: ms of the program"), number(stopped.costOfError * errors / 1e6),
        QStringLiteral("< 1000"));
    row(QStringLiteral("a stopped window: lost, twice"),
        QStringLiteral("%1, %2").arg(stopped.lost).arg(stopped.doubled), QStringLiteral("0, 0"));
}
#else
void measureLayer(int)
{
    row(QStringLiteral("a program through the layer"), QStringLiteral("not built"));
}
#endif

void measure(bool brief, bool full)
{
    const int count = brief ? 3000 : 100'000;
    const double ceiling = printCeiling(brief ? 3000 : 300'000);
    const double baseline = flood::measureBaseline(brief ? 1000 : 15'000);
    row(QStringLiteral("baseline: plain lines, records/s"), number(baseline));
    const flood::Result alone = flood::measureWindow(count);
    printFlood(count, alone, baseline, ceiling);
    const flood::Result recorded = flood::measureWindow(count, flood::Meanwhile::Recording);
    row(QStringLiteral("all sessions are recorded: records/s"), number(recorded.rate));
    row(QStringLiteral("all sessions are recorded: own work more, %"),
        number((recorded.work / alone.work - 1) * 100, 1), QStringLiteral("< 10"));
    const flood::Result clicked = flood::measureWindow(count, flood::Meanwhile::Clicks);
    row(QStringLiteral("somebody clicks on tabs: slowest answer, ms"), number(clicked.slowestClick, 1),
        QStringLiteral("< 100"));
    row(QStringLiteral("somebody clicks on tabs: longest gap, ms (own work)"), both(clicked.longestGap, 1));
    row(QStringLiteral("idle window: timer events, processor ms in 2 s"), flood::measureIdle());
    const flood::ListResult list = flood::measureErrorList(brief ? 5000 : 200'000);
    row(QStringLiteral("error list: slowest tick of a box, ms"), number(list.tick, 1),
        QStringLiteral("< 500"));
    row(QStringLiteral("error list: slowest step of scrolling, ms"), number(list.scroll, 1));
    row(QStringLiteral("error list: last 1,000 rows, microseconds each"), number(list.append, 1));
    const int clients = brief ? 8 : 64;
    const flood::CrowdResult crowd = flood::measureCrowd(clients, 500, brief ? 1 : 10);
    const QString many = QStringLiteral("%1 clients: ").arg(clients);
    row(many + QStringLiteral("records/s in all"), number(crowd.rate),
        QStringLiteral("%1 are sent").arg(clients * 500));
    row(many + QStringLiteral("slowest / mean"), number(crowd.fairness, 2), QStringLiteral(">= 0.5"));
    row(many + QStringLiteral("longest gap, ms (own work)"), both(crowd.longestGap, 1),
        QStringLiteral("< 50"));
    measureLayer(brief ? 3000 : 200'000);
    if (full)
        printFlood(1'000'000, flood::measureWindow(1'000'000), baseline, ceiling);
}

} // namespace

int main(int argc, char** argv)
{
    if (const std::optional<int> code = flood::runAsSender(argc, argv))
        return *code;
    // Where nothing is said it needs no display.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir room(QStringLiteral("/tmp/cvb.XXXXXX"));
    for (const char* name : {"TMPDIR", "HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
        qputenv(name, room.path().toLocal8Bit());
    QApplication application(argc, argv);
    registerResources();
    const QStringList arguments = QCoreApplication::arguments();
    try {
        printMachine();
        if (arguments.contains(QStringLiteral("--layer"))) {
            printCeiling(300'000);
            measureLayer(200'000);
        } else {
            measure(
                arguments.contains(QStringLiteral("--short")), arguments.contains(QStringLiteral("--full")));
        }
    } catch (const std::runtime_error& failure) {
        QTextStream(stderr) << "bench-flood: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
