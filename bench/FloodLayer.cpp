#include "FloodLayer.h"

#include "ErrorList.h"
#include "ErrorListModel.h"
#include "FloodSender.h"
#include "FloodedWindow.h"

#include <QProcess>
#include <QTimer>

#include <functional>
#include <stdexcept>
#include <vector>

#include <sys/resource.h>

using ui::messages::Message;
using ui::messages::Type;

namespace flood {

namespace {

/// Exit code of gles-calls where there is no OpenGL ES.
constexpr int noGles = 77;

/// Counts the rows of the error list by the numbers in them.
void countRows(const ClientInterface& page, int errors, ErrorFlood& result)
{
    std::vector<int> rows(static_cast<std::size_t>(errors));
    const ErrorListModel& list = page.errorListModel();
    const QString before = QStringLiteral("(cap = 0x");
    for (int i = 0; i < list.rowCount(); ++i) {
        const QString text = list.data(list.index(i, error_list::DescriptionColumn)).toString();
        const int number =
            text.section(before, 1).section(QLatin1Char(')'), 0, 0).toInt(nullptr, 16) - firstWrongEnumerant;
        if (number >= 0 && number < errors)
            ++rows[static_cast<std::size_t>(number)];
    }
    for (const int count : rows) {
        result.lost += count == 0 ? 1 : 0;
        result.doubled += count > 1 ? 1 : 0;
    }
}

/// Takes errors until all are there or nothing more will come.
ErrorFlood takeErrors(Window& window, int errors, const std::function<bool()>& isOver)
{
    int seen = 0;
    const ClientInterface* page = nullptr;
    QElapsedTimer sinceFirst;
    double last = 0;
    double workBefore = 0;
    window.onRecord = [&](const Message& record) {
        if (record.type() != Type::GlError)
            return;
        if (seen++ == 0) {
            page = &window.page();
            sinceFirst.start();
            workBefore = processorTime();
        }
        last = milliseconds(sinceFirst);
    };
    // So that the end of a process is seen, too.
    QTimer heartbeat;
    heartbeat.start(10);
    QElapsedTimer waited;
    waited.start();
    while (seen < errors && !isOver()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (waited.hasExpired(patience))
            throw std::runtime_error("the errors did not arrive");
    }
    if (!page)
        return {};
    const double work = processorTime() - workBefore;
    // Those that come twice would be the last.
    while (!isOver() && milliseconds(sinceFirst) < last + 200)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    ErrorFlood result;
    result.rate = (seen - 1) * 1000.0 / last;
    result.windowWork = work * 1000 / (seen - 1);
    countRows(*page, errors, result);
    return result;
}

/// Milliseconds that children which have ended had a processor.
double timeOfChildren()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000
        + static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000;
}

} // namespace

ErrorFlood measureLayer(int errors, const QString& log, bool isWindowStopped)
{
    const double before = timeOfChildren();
    Window window;
    QProcess launcher;
    QStringList arguments{QStringLiteral(CORVALE_GLES_CALLS), QStringLiteral("1"), QString::number(errors)};
    if (!log.isEmpty())
        arguments = QStringList{QStringLiteral("--log"), log} + arguments;
    launcher.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    launcher.start(QStringLiteral(CORVALE_RUN), arguments);
    // This is how long nobody accepts or reads.
    if (isWindowStopped)
        launcher.waitForReadyRead();
    ErrorFlood result = takeErrors(window, errors, [&] { return launcher.state() == QProcess::NotRunning; });
    launcher.waitForFinished();
    if (result.rate == 0 && launcher.exitCode() != noGles)
        throw std::runtime_error("the errors did not arrive");
    result.othersWork = (timeOfChildren() - before) * 1000 / errors;
    result.costOfError =
        QString::fromLatin1(launcher.readAllStandardOutput()).section(QLatin1Char(' '), 2).toDouble();
    return result;
}

ErrorFlood measurePlainErrors(int errors)
{
    Window window;
    const Senders senders(1, QStringLiteral("Corvale"), errors, 0, Content::Errors);
    return takeErrors(window, errors, [&] { return senders.haveFailed(); });
}

} // namespace flood
