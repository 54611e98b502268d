// How fast does the window let somebody read? A console of a million entries is searched and jumped through,
// an error list of a million rows is filtered, sorted and folded, and a session of a million records opened.
// Options: --short for a run that only sees whether it works, --sessions for the sessions alone.

#include "ReadingConsole.h"
#include "ReadingErrors.h"
#include "ReadingSessions.h"
#include "Resources.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTextStream>

#include <stdexcept>

int main(int argc, char** argv)
{
    // Where nothing is said it needs no display.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir room(QStringLiteral("/var/tmp/cvb.XXXXXX"));
    for (const char* name : {"TMPDIR", "HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
        qputenv(name, room.path().toLocal8Bit());
    const QApplication application(argc, argv);
    registerResources();
    const bool brief = QCoreApplication::arguments().contains(QStringLiteral("--short"));
    QTextStream out(stdout);
    try {
        const int count = brief ? 20'000 : 1'000'000;
        if (!QCoreApplication::arguments().contains(QStringLiteral("--sessions"))) {
            reading::measureConsole(out, count);
            reading::measureErrors(out, count);
        }
        reading::measureSessions(out, count);
    } catch (const std::runtime_error& failure) {
        QTextStream(stderr) << "bench-reading: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
