#include "ConnectedClient.h"
#include "EventLoopBudget.h"
#include "MetaObjects.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThread>

#include <array>
#include <atomic>
#include <thread>

using namespace records;

namespace {

/// Everything a Client reports, in order, as texts that are easy to compare.
class Journal : public QObject {
public:
    explicit Journal(Client& client)
    {
        connect(&client, &Client::setPID, this, [this](Client*, PID_TYPE pid) { note("pid %1", pid); });
        connect(&client, &Client::setName, this,
            [this](Client*, const QString& name) { entries.append(QStringLiteral("name ") + name); });
        connect(
            &client, &Client::clientMessage, this, [this](const Message& m) { noteRecord("message", m); });
        connect(&client, &Client::systemReportMessage, this,
            [this](const Message& m) { noteRecord("report", m); });
        connect(&client, &Client::cleanDisconnect, this, [this] { note("clean"); });
        connect(&client, &Client::ickyDisconnect, this, [this] { note("icky"); });
        connect(&client, &Client::badRead, this, [this] { note("bad"); });
    }

    QStringList entries;

private:
    void note(const char* text) { entries.append(QString::fromLatin1(text)); }
    void note(const char* text, quint32 number) { entries.append(QString::fromLatin1(text).arg(number)); }
    void noteRecord(const char* kind, const Message& message)
    {
        const std::string_view text = message.text(offset::text);
        entries.append(QStringLiteral("%1 %2 ").arg(QLatin1String(kind)).arg(message.rawType())
            + QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    }
};

} // namespace

class TestClient : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void metaObjectOrder();
    void everyTypeHasItsSignal();
    void anyCutGivesTheSameRecords();
    void goodbyeLeavesTheRestUnread();
    void badTypeDropsWhatIsBuffered_data();
    void badTypeDropsWhatIsBuffered();
    void recordsBeforeTheClientAreRead();
    void everythingBeforeADisconnectIsRead();
    void endBetweenTwoPassesDrainsFirst();
    void endDuringAPassWaitsForIt();
    void writingToAGoneApplicationLosesNothing();
    void wireframeUntilTheEndLosesNothing();
    void unreadControlRecordsEndWithTheLastState();
    void goodbyeLetsTheApplicationGoOn();
    void passesLetTheEventLoopRun();
    void clientsShareAnIteration();
    void failedReadIsABadRead();
    void controlRecordsArrive();
    void deletionWhileReading();
};

void TestClient::metaObjectOrder()
{
    QCOMPARE(ownMethods(Client::staticMetaObject),
        QStringList({"setPID(Client*,PID_TYPE)", "setName(Client*,QString)",
            "systemReportMessage(ui::messages::Message)", "clientMessage(ui::messages::Message)",
            "cleanDisconnect(Client*)", "ickyDisconnect(Client*)", "badRead(Client*)", "wireframeOn()",
            "wireframeOff()", "notifyServerStop()", "socketDisconnected()", "socketReadyRead()"}));
    registerClientMetaTypes();
    QVERIFY(QMetaType::fromName("ui::messages::Message").isValid());
    QVERIFY(QMetaType::fromName("PID_TYPE").isValid());
}

void TestClient::everyTypeHasItsSignal()
{
    ConnectedClient connection;
    Journal journal(connection.start());
    QStringList expected{QStringLiteral("pid 4294967295"), QStringLiteral("name raven run")};
    std::string stream = bytes(pid(0xFFFFFFFF)) + bytes(text(Type::SetName, "raven\nrun"));
    for (quint32 type = 3; type <= 20; ++type) {
        if (type >= 11 && type <= 13)
            continue;
        stream += bytes(text(static_cast<Type>(type), "x"));
        expected.append(QStringLiteral("%1 %2 x").arg(type <= 10 ? "message" : "report").arg(type));
    }
    QVERIFY(connection.application->send(stream));
    QTRY_COMPARE(journal.entries.size(), expected.size());
    QCOMPARE(journal.entries, expected);
}

void TestClient::anyCutGivesTheSameRecords()
{
    const std::string stream = bytes(text(Type::Error, "last")) + bytes(text(Type::SetName, "n"));
    ConnectedClient connection;
    Journal journal(connection.start());
    const QStringList expected{QStringLiteral("message 8 last"), QStringLiteral("name n")};
    // A pass that takes too long hands the rest on through the event loop.
    const auto wait = [&connection] {
        connection.socket->waitForReadyRead(10);
        QCoreApplication::processEvents();
    };
    for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
        journal.entries.clear();
        const std::string_view view(stream);
        connection.application->send(view.substr(0, cut));
        while (connection.socket->bytesAvailable() < static_cast<qint64>(cut % ui::messages::recordSize)
            || journal.entries.size() < static_cast<qsizetype>(cut / ui::messages::recordSize))
            wait();
        QCOMPARE(journal.entries.size(), static_cast<qsizetype>(cut / ui::messages::recordSize));
        connection.application->send(view.substr(cut));
        while (journal.entries.size() < 2)
            wait();
        QCOMPARE(journal.entries, expected);
    }
}

void TestClient::goodbyeLeavesTheRestUnread()
{
    ConnectedClient connection;
    Journal journal(connection.start());
    connection.application->send(bytes(make(Type::CleanDisconnect)) + bytes(text(Type::Error, "too late")));
    QTRY_COMPARE(journal.entries, QStringList("clean"));
    connection.client->wireframeOn();
    QCOMPARE(connection.socket->bytesAvailable(), static_cast<qint64>(ui::messages::recordSize));
    connection.application->send(text(Type::Error, "even later"));
    connection.application->close();
    const QPointer<QLocalSocket> socket(connection.socket);
    QTRY_VERIFY(!socket);
    QCOMPARE(journal.entries, QStringList("clean"));
}

void TestClient::badTypeDropsWhatIsBuffered_data()
{
    QTest::addColumn<quint32>("type");
    for (const quint32 type : {11U, 12U, 13U, 21U, 0x80000000U, 0xFFFFFFFFU})
        QTest::addRow("%u", type) << type;
}

void TestClient::badTypeDropsWhatIsBuffered()
{
    QFETCH(const quint32, type);
    ConnectedClient connection;
    Journal journal(connection.start());
    connection.application->send(bytes(text(Type::Error, "before")) + bytes(make(static_cast<Type>(type)))
        + bytes(text(Type::Error, "lost")) + "and a piece");
    QTRY_COMPARE(journal.entries, QStringList({"message 8 before", "bad"}));
    QCOMPARE(connection.socket->bytesAvailable(), 0);
    connection.application->send(text(Type::Error, "after"));
    QTRY_COMPARE(journal.entries.size(), 3);
    QCOMPARE(journal.entries.last(), QStringLiteral("message 8 after"));
}

void TestClient::recordsBeforeTheClientAreRead()
{
    ConnectedClient connection;
    connection.application->send(text(Type::SetName, "early"));
    QVERIFY(connection.socket->waitForReadyRead(5000));
    Journal journal(connection.start());
    QTRY_COMPARE(journal.entries, QStringList("name early"));
}

void TestClient::everythingBeforeADisconnectIsRead()
{
    constexpr int count = 1000;
    ConnectedClient connection;
    Journal journal(connection.start());
    // A slow reader leaves most of it in the buffers when the application dies in the middle of a record.
    connect(connection.client.get(), &Client::clientMessage, &journal, [] { QThread::usleep(300); });
    std::thread application([&connection] {
        for (int i = 0; i < count; ++i)
            connection.application->send(text(Type::GlError, std::to_string(i)));
        connection.application->send(bytes(text(Type::Error, "never whole")).substr(0, 5000));
        connection.application->close();
    });
    QTRY_VERIFY_WITH_TIMEOUT(journal.entries.contains(QStringLiteral("icky")), 30000);
    application.join();
    QCOMPARE(journal.entries.size(), count + 1);
    QCOMPARE(journal.entries.at(count - 1), QStringLiteral("message 9 %1").arg(count - 1));
    QCOMPARE(journal.entries.last(), QStringLiteral("icky"));
}

void TestClient::endBetweenTwoPassesDrainsFirst()
{
    constexpr int count = 20;
    ConnectedClient connection;
    Journal journal(connection.start());
    connect(connection.client.get(), &Client::clientMessage, &journal, [] { QThread::msleep(3); });
    for (int i = 0; i < count; ++i)
        connection.application->send(text(Type::Error, "x"));
    connection.application->close();
    // Reads, which starts a pass that is too short, and then notices the end without the event loop between
    // them.
    connection.socket->waitForDisconnected(5000);
    QCOMPARE(journal.entries.size(), count + 1);
    QCOMPARE(journal.entries.last(), QStringLiteral("icky"));
}

void TestClient::endDuringAPassWaitsForIt()
{
    ConnectedClient connection;
    Journal journal(connection.start());
    connect(
        connection.client.get(), &Client::clientMessage, &journal,
        [&connection] { connection.socket->waitForDisconnected(5000); }, Qt::SingleShotConnection);
    for (int i = 0; i < 3; ++i)
        connection.application->send(text(Type::Error, "x"));
    connection.application->close();
    QTRY_COMPARE(journal.entries, QStringList({"message 8 x", "message 8 x", "message 8 x", "icky"}));
}

void TestClient::writingToAGoneApplicationLosesNothing()
{
    ConnectedClient connection;
    Journal journal(connection.start());
    QCoreApplication::processEvents();
    for (int i = 0; i < 10; ++i)
        connection.application->send(text(Type::Error, std::to_string(i)));
    connection.application->close();
    connection.client->wireframeOn(); // before the event loop has told of the bytes or the end
    connection.socket->flush(); // as the event loop may do before it reads
    QTRY_VERIFY(journal.entries.contains(QStringLiteral("icky")));
    QCOMPARE(journal.entries.size(), 11);
    QCOMPARE(journal.entries.at(9), QStringLiteral("message 8 9"));
}

/// The applications never read, so their control records pile up, and each dies at another moment.
void TestClient::wireframeUntilTheEndLosesNothing()
{
    constexpr int rounds = 500;
    constexpr int count = 60;
    const std::string error = bytes(text(Type::Error, "x"));
    int incomplete = 0;
    for (int round = 0; round < rounds; ++round) {
        ConnectedClient connection;
        Client& client = connection.start();
        int read = 0;
        bool hasEnded = false;
        connect(&client, &Client::clientMessage, this, [&read] { ++read; });
        connect(&client, &Client::ickyDisconnect, this, [&hasEnded] { hasEnded = true; });
        std::thread application([&] {
            for (int i = 0; i < count; ++i)
                connection.application->send(error);
            connection.application->close();
        });
        QElapsedTimer time;
        time.start();
        while (!hasEnded && time.elapsed() < 10000) {
            client.wireframeOn();
            client.wireframeOff();
            QCoreApplication::processEvents();
        }
        application.join();
        incomplete += read == count ? 0 : 1;
    }
    QCOMPARE(incomplete, 0);
}

void TestClient::unreadControlRecordsEndWithTheLastState()
{
    ConnectedClient connection;
    Client& client = connection.start();
    constexpr int switched = 2000;
    for (int i = 0; i < switched; ++i) {
        client.wireframeOff();
        client.wireframeOn();
    }
    client.wireframeOff();
    client.notifyServerStop();
    QCOMPARE(connection.socket->bytesToWrite(), 0);
    const auto lastTypes = [&connection] {
        return connection.application->receivedTypes().last(2);
    };
    QTRY_COMPARE(lastTypes(), QList<quint32>({13, 11}));
    QVERIFY(connection.application->receivedTypes().size() < switched);
    client.wireframeOn();
    QTRY_COMPARE(connection.application->receivedTypes().last(), 12U);
}

void TestClient::goodbyeLetsTheApplicationGoOn()
{
    constexpr int count = 500;
    ConnectedClient connection;
    Journal journal(connection.start());
    // A slow reader has full buffers when it comes to the good-bye.
    connect(connection.client.get(), &Client::clientMessage, &journal, [] { QThread::msleep(3); });
    std::atomic<bool> hasSentAll = false;
    std::thread application([&] {
        for (int i = 0; i < 100; ++i)
            connection.application->send(text(Type::Error, "x"));
        connection.application->send(make(Type::CleanDisconnect));
        bool isSent = true;
        for (int i = 0; i < count && isSent; ++i)
            isSent = connection.application->send(text(Type::Error, "too late"));
        hasSentAll = isSent;
        connection.application->close();
    });
    const QPointer<QLocalSocket> socket(connection.socket);
    const bool hasClosed = QTest::qWaitFor([&socket] { return !socket; });
    if (socket)
        socket->abort(); // lets the application's send() return
    application.join();
    QVERIFY(hasClosed && hasSentAll);
    QCOMPARE(journal.entries.size(), 101);
    QCOMPARE(journal.entries.last(), QStringLiteral("clean"));
}

void TestClient::passesLetTheEventLoopRun()
{
    constexpr int count = 40;
    ConnectedClient connection;
    Client& client = connection.start();
    int read = 0;
    int readWhenServed = -1;
    bool wasBehind = false;
    connect(&client, &Client::clientMessage, this, [&] {
        wasBehind |= client.hasBacklog();
        if (read++ == 0) {
            QMetaObject::invokeMethod(
                this, [&] { readWhenServed = read; }, Qt::QueuedConnection);
        }
        QThread::msleep(3);
    });
    std::thread application([&connection] {
        for (int i = 0; i < count; ++i)
            connection.application->send(text(Type::Information, "x"));
    });
    QTRY_COMPARE(read, count);
    application.join();
    QVERIFY2(readWhenServed < count / 2, qPrintable(QString::number(readWhenServed)));
    QVERIFY(wasBehind && !client.hasBacklog());
}

void TestClient::clientsShareAnIteration()
{
    constexpr qint64 all = 10'000'000;
    std::array<quint64, 8> clients{};
    for (const bool isCountKnown : {false, true}) {
        QCoreApplication::processEvents();
        qint64 given = 0;
        for (quint64& client : clients)
            given += event_loop_budget::readingTime(client);
        QVERIFY2(given <= (isCountKnown ? all : 3 * all), qPrintable(QString::number(given)));
        QVERIFY(event_loop_budget::claimRefresh() && !event_loop_budget::claimRefresh());
        QVERIFY(
            event_loop_budget::mayWriteAtOnce(&clients[0]) && event_loop_budget::mayWriteAtOnce(&clients[1]));
        for (int part = 0; part < 4; ++part) // each too short to count alone
            event_loop_budget::addWritingTime(&clients[0], all / 4);
        QVERIFY(event_loop_budget::mayWriteAtOnce(&clients[0])
            && !event_loop_budget::mayWriteAtOnce(&clients[1]));
    }
}

void TestClient::failedReadIsABadRead()
{
    ConnectedClient connection;
    Journal journal(connection.start());
    connection.socket->close();
    QCOMPARE(journal.entries, QStringList("icky"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("peek")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("read ")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("read ")));
    connection.client->socketReadyRead();
    QCOMPARE(journal.entries, QStringList({"icky", "bad"}));
}

void TestClient::controlRecordsArrive()
{
    ConnectedClient connection;
    Client& client = connection.start();
    client.wireframeOn();
    client.wireframeOff();
    client.notifyServerStop();
    QTRY_COMPARE(connection.application->receivedTypes(), QList<quint32>({12, 13, 11}));
}

void TestClient::deletionWhileReading()
{
    ConnectedClient connection;
    connect(&connection.start(), &Client::clientMessage, this, [&connection] { connection.client.reset(); });
    connection.application->send(bytes(text(Type::Error, "1")) + bytes(text(Type::Error, "2")));
    QTRY_VERIFY(!connection.client);
}

QTEST_GUILESS_MAIN(TestClient)
#include "TestClient.moc"
