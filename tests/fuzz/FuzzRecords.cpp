// Sends records over a socket in pieces: however they are cut, the same records must come out, up to the
// first that ends reading or drops what is buffered behind it.

#include "ConnectedClient.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

using namespace records;

namespace {

void demand(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

Message someRecord(FuzzedDataProvider& input)
{
    Message message =
        make(static_cast<Type>(input.ConsumeBool() ? input.ConsumeIntegralInRange<std::uint32_t>(0, 22)
                                                   : input.ConsumeIntegral<std::uint32_t>()));
    message.setU32(offset::payload, input.ConsumeIntegral<std::uint32_t>());
    message.setText(input.ConsumeIntegralInRange<std::size_t>(8, ui::messages::recordSize),
        input.ConsumeRandomLengthString(40));
    return message;
}

bool endsReading(const Message& message)
{
    const std::uint32_t type = message.rawType();
    return type == 1 || (type >= 11 && type <= 13) || type > 20;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QCoreApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider input(bytes, size);
    std::vector<Message> sent;
    std::string stream;
    std::size_t certain = 0;
    bool ended = false;
    for (auto left = input.ConsumeIntegralInRange<int>(1, 8); left > 0; --left) {
        sent.push_back(someRecord(input));
        stream += records::bytes(sent.back());
        certain += ended ? 0 : 1;
        ended = ended || endsReading(sent.back());
    }

    ConnectedClient connection;
    Client& client = connection.start();
    std::vector<std::uint32_t> received;
    const auto note = [&](const Message& message) {
        demand(received.size() >= certain || message == sent[received.size()], "a record is as it was sent");
        received.push_back(message.rawType());
    };
    QObject::connect(&client, &Client::clientMessage, note);
    QObject::connect(&client, &Client::systemReportMessage, note);
    QObject::connect(&client, &Client::setPID, [&](Client*, PID_TYPE) { received.push_back(0); });
    QObject::connect(&client, &Client::setName, [&] { received.push_back(2); });
    QObject::connect(&client, &Client::cleanDisconnect, [&] { received.push_back(1); });
    QObject::connect(&client, &Client::badRead, [&] {
        if (received.size() < certain)
            received.push_back(sent[received.size()].rawType());
    });
    // The socket goes with the connection.
    const QPointer<QLocalSocket> socket(connection.socket);

    for (std::string_view rest(stream); !rest.empty();) {
        const std::size_t piece = input.remaining_bytes() > 0
            ? input.ConsumeIntegralInRange<std::size_t>(1, 2 * ui::messages::recordSize)
            : rest.size();
        connection.application->send(rest.substr(0, piece));
        rest.remove_prefix(std::min(piece, rest.size()));
        QCoreApplication::processEvents();
    }
    connection.application->close();
    QElapsedTimer waited;
    for (waited.start(); socket;) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        demand(!waited.hasExpired(10000), "the end arrives");
    }
    demand(received.size() >= certain, "every record arrives before the end");
    for (std::size_t i = 0; i < certain; ++i)
        demand(received[i] == sent[i].rawType(), "the records come in order");
    return 0;
}
