#include "FloodSubjects.h"

#include "Client.h"
#include "ClientInterface.h"
#include "FloodSender.h"
#include "Message.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFontDatabase>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTabWidget>
#include <QTableView>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>

using ui::messages::Message;
using ui::messages::recordSize;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace flood {

namespace {

constexpr int patience = 120'000;

/// Records a second that a consumer takes which is called for each. As in the window, a pass of reading lasts
/// ten milliseconds at most and then goes on through the event loop.
double readRecords(int records, const std::function<void(const Message&)>& consume)
{
    QLocalServer server;
    if (!server.listen(QStringLiteral("bench")))
        throw std::runtime_error("cannot listen: " + server.errorString().toStdString());
    constexpr qint64 passLimit = 10;
    int count = 0;
    QLocalSocket* socket = nullptr;
    QElapsedTimer sinceFirst;
    const auto read = [&] {
        Message message;
        QElapsedTimer pass;
        pass.start();
        while (socket->bytesAvailable() >= static_cast<qint64>(recordSize) && !pass.hasExpired(passLimit)) {
            socket->read(message.data(), static_cast<qint64>(recordSize));
            if (count++ == 0)
                sinceFirst.start();
            consume(message);
        }
    };
    QObject::connect(&server, &QLocalServer::newConnection, [&] {
        socket = server.nextPendingConnection();
        socket->setReadBufferSize(64 * static_cast<qint64>(recordSize));
        QObject::connect(socket, &QLocalSocket::readyRead, read);
    });
    const Senders senders(1, QStringLiteral("bench"), records, 0);
    QElapsedTimer waited;
    waited.start();
    while (count < records) {
        const bool isLeft = socket && socket->bytesAvailable() >= static_cast<qint64>(recordSize);
        QCoreApplication::processEvents(isLeft ? QEventLoop::AllEvents : QEventLoop::WaitForMoreEvents);
        if (isLeft)
            read();
        if (waited.hasExpired(patience) || senders.haveFailed())
            throw std::runtime_error("the records did not arrive");
    }
    return records * 1e9 / static_cast<double>(sinceFirst.nsecsElapsed());
}

double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

} // namespace

double measureCeiling(int records)
{
    quint64 types = 0;
    const double rate =
        readRecords(records, [&types](const Message& message) { types += message.rawType(); });
    if (types == 0)
        throw std::runtime_error("the records have no types");
    return rate;
}

double measureBaseline(int records)
{
    constexpr int mostBlocks = 5000;
    QPlainTextEdit view;
    view.setReadOnly(true);
    view.setMaximumBlockCount(mostBlocks);
    view.resize(900, 500);
    view.show();
    return readRecords(records, [&view](const Message& message) {
        const bool isGlError = message.type() == Type::GlError;
        const std::string_view text = message.text(isGlError ? offset::glErrorDescription
                : message.type() == Type::DebugMessage       ? offset::debugText
                                                             : offset::text);
        view.appendPlainText(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    });
}

ListResult measureErrorList(int rows)
{
    ClientInterface page(nullptr, 0, QFontDatabase::systemFont(QFontDatabase::FixedFont));
    page.findChild<QTabWidget*>(QStringLiteral("tabWidget"))->setCurrentIndex(1);
    page.resize(900, 600);
    page.show();
    Message record;
    ListResult result;
    QElapsedTimer timer;
    constexpr int last = 1000;
    for (int i = 0; i < rows; ++i) {
        if (i == rows - last)
            timer.start();
        record = Message::make(i % 7 == 3 ? Type::Warning : Type::Error);
        record.setText(offset::text, "Call " + std::to_string(i) + ": texture level is too large");
        page.receive(record);
        if (i % 500 == 0)
            QCoreApplication::processEvents();
    }
    result.append = milliseconds(timer) * 1000 / last;
    QCoreApplication::processEvents();

    auto& list = *page.findChild<QTableView*>(QStringLiteral("tblErrorList"));
    for (const char* name : {"chkWarnings", "chkErrors", "chkWarnings", "chkErrors"}) {
        timer.start();
        page.findChild<QCheckBox*>(QString::fromLatin1(name))->click();
        list.viewport()->repaint();
        result.tick = std::max(result.tick, milliseconds(timer));
    }
    if (list.model()->rowCount() != rows)
        throw std::runtime_error("the error list has lost rows");
    for (int i = 0; i < 50; ++i) {
        timer.start();
        list.verticalScrollBar()->setValue(i % 2 * list.verticalScrollBar()->maximum() / (i + 1));
        list.viewport()->repaint();
        result.scroll = std::max(result.scroll, milliseconds(timer));
    }
    return result;
}

} // namespace flood
