#include "ReadingSessions.h"

#include "ClientInterface.h"
#include "ClientRecorder.h"
#include "ClientTabWidget.h"
#include "ErrorListModel.h"
#include "MainWindow.h"
#include "Preferences.h"
#include "ReplayedClient.h"
#include "SessionWriter.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextStream>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace reading {

namespace {

constexpr int patience = 120'000; // milliseconds

void row(QTextStream& out, const char* what, double value, int decimals, const char* wanted)
{
    out << QString::fromLatin1(what).leftJustified(58)
        << QString::number(value, 'f', decimals).rightJustified(16) << "   " << wanted << Qt::endl;
}

/// As in the flood: 60 % errors with a code, 20 % debug messages, 10 % plain text, 10 % warnings, each with a
/// text of its own.
sessions::Record recordOf(int number, std::string& payload)
{
    const std::string text = "glDrawElements(mode = GL_TRIANGLES, count = " + std::to_string(number)
        + ", type = GL_UNSIGNED_SHORT) was called while "
        + std::string(static_cast<std::size_t>(number % 100), static_cast<char>('a' + number % 26));
    Type type = Type::GlError;
    switch (number % 10) {
    case 6:
    case 7:
        type = Type::DebugMessage;
        payload.assign(offset::debugText - offset::payload, '\0');
        break;
    case 8:
        type = Type::Information;
        payload.clear();
        break;
    case 9:
        type = Type::Warning;
        payload.clear();
        break;
    default:
        payload.assign("\x02\x05\0\0glDrawElements", 18);
        payload.resize(offset::glErrorDescription - offset::payload, '\0');
    }
    payload += text;
    return {static_cast<std::uint32_t>(type), static_cast<std::uint32_t>(number / 100), payload};
}

void writeSession(const QString& path, int records)
{
    sessions::SessionWriter writer;
    writer.open(QFile::encodeName(path).toStdString());
    writer.beginClient(1, "bench", {}, {});
    std::string payload;
    for (int i = 0; i < records; ++i)
        writer.add(0, recordOf(i, payload), std::chrono::microseconds(10) * i);
    writer.endClient(0, sessions::ClientEnd::Clean, {}, std::chrono::microseconds(10) * records);
    if (!writer.close())
        throw std::runtime_error(writer.reason());
}

void measureOpening(QTextStream& out, const QString& path, int records)
{
    Preferences preferences("Bench");
    MainWindow window(nullptr, preferences);
    window.resize(900, 640);
    window.show();
    QCoreApplication::processEvents();
    QElapsedTimer time;
    time.start();
    window.openSession(path);
    ClientInterface* page = window.findChild<ClientTabWidget*>()->pageAt(0);
    page->showSubPage(0);
    const QTextDocument& console = *page->findChild<QTextEdit*>(QStringLiteral("txtConsole"))->document();
    double firstScreen = 0;
    double gap = 0;
    while (page->state() != ClientInterface::State::Finished) {
        QElapsedTimer pass;
        pass.start();
        QCoreApplication::processEvents();
        gap = std::max(gap, static_cast<double>(pass.nsecsElapsed()) / 1e6);
        if (firstScreen == 0 && console.blockCount() > 20)
            firstScreen = static_cast<double>(time.nsecsElapsed()) / 1e6;
        if (time.hasExpired(patience))
            throw std::runtime_error("the session is not read to its end");
    }
    const double complete = static_cast<double>(time.nsecsElapsed()) / 1e6;
    if (page->errorListModel().rowCount() != records / 10 * 7)
        throw std::runtime_error("the error list has not one row for each error and warning");
    row(out, "session: first screen, ms", firstScreen, 0, "<= 500");
    row(out, "session: complete, ms", complete, 0, "<= 3000");
    row(out, "session: longest gap, ms", gap, 1, "< 50");
}

/// Microseconds that it takes a client to announce a record, with a recorder or without one.
double announceTime(int records, bool isRecorded)
{
    ReplayedClient client({}, {}, nullptr);
    std::unique_ptr<ClientRecorder> recorder;
    if (isRecorded)
        recorder = std::make_unique<ClientRecorder>(client, QString(), nullptr);
    std::string payload;
    QElapsedTimer time;
    time.start();
    for (int i = 0; i < records; ++i)
        client.give({0, {}, recordOf(i, payload)}, true);
    return static_cast<double>(time.nsecsElapsed()) / 1e3 / records;
}

} // namespace

void measureSessions(QTextStream& out, int records)
{
    const QString path = QDir::temp().filePath(QStringLiteral("bench.corvale-session"));
    writeSession(path, records);
    row(out, "session: bytes a record in the file", static_cast<double>(QFile(path).size()) / records, 1, "");
    measureOpening(out, path, records);
    QFile::remove(path);
    const double bare = announceTime(records, false);
    row(out, "recording: microseconds a record", announceTime(records, true) - bare, 2, "");
}

} // namespace reading
