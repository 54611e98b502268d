#include "LocalListener.h"
#include "RawClient.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QSignalSpy>
#include <QTest>

#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

/// TMPDIR for as long as this lives.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const QString& path)
        : m_before(qgetenv("TMPDIR"))
    {
        qputenv("TMPDIR", QFile::encodeName(path));
    }
    ~TemporaryFolder() { qputenv("TMPDIR", m_before); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

private:
    QByteArray m_before;
};

/// A path of so many bytes below the temporary folder.
QString folderOfLength(qsizetype bytes)
{
    const QString base = QDir::tempPath() + QLatin1Char('/');
    return base + QString(bytes - QFile::encodeName(base).size(), QLatin1Char('x'));
}

ino_t inodeOf(const QString& path)
{
    struct stat status { };
    return lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

} // namespace

/// Each thing that can keep a server from listening is told with its remedy, and mended when it can be.
class TestLocalListener : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void missingFolder();
    void renamedFolder();
    void nameThatBecomesFree();
    void nameThatIsTakenOver();
    void longestPath();
    void manyAtOnce();
};

void TestLocalListener::missingFolder()
{
    const QString folder = QDir::tempPath() + QStringLiteral("/later");
    const TemporaryFolder temporary(folder);
    QLocalServer server;
    LocalListener listener(&server, QStringLiteral("Corvale"), nullptr);
    listener.start();
    QVERIFY(!listener.isListening());
    QVERIFY2(listener.problem().contains(folder), qPrintable(listener.problem()));
    QVERIFY(!QFile::exists(QStringLiteral("/Corvale")));

    const QSignalSpy changes(&listener, &LocalListener::stateChanged);
    QVERIFY(QDir().mkdir(folder));
    QTRY_VERIFY(listener.isListening());
    QCOMPARE(listener.problem(), QString());
    QCOMPARE(changes.size(), 1);
    QVERIFY(RawClient(QStringLiteral("Corvale")).isConnected());
}

void TestLocalListener::renamedFolder()
{
    const QString folder = QDir::tempPath() + QStringLiteral("/before");
    QVERIFY(QDir().mkdir(folder));
    const TemporaryFolder temporary(folder);
    QLocalServer server;
    LocalListener listener(&server, QStringLiteral("Corvale"), nullptr);
    listener.start();
    QVERIFY(listener.isListening());
    QVERIFY(QDir().rename(folder, folder + QStringLiteral(" and after")));
    QTRY_VERIFY(listener.problem().contains(folder));
    QVERIFY(QDir().mkdir(folder));
    QTRY_VERIFY(listener.isListening());
    QVERIFY(RawClient(QStringLiteral("Corvale")).isConnected());
}

void TestLocalListener::nameThatBecomesFree()
{
    const QString obstacle = QDir::tempPath() + QStringLiteral("/Obstructed");
    for (const bool isFolder : {true, false}) {
        QVERIFY(isFolder ? QDir().mkdir(obstacle) : QFile(obstacle).open(QIODevice::WriteOnly));
        QLocalServer server;
        LocalListener listener(&server, QStringLiteral("Obstructed"), nullptr);
        listener.start();
        QVERIFY(!listener.isListening());
        QVERIFY(listener.problem().contains(obstacle));
        QVERIFY(isFolder ? QDir().rmdir(obstacle) : QFile::remove(obstacle));
        QTRY_VERIFY(listener.isListening());
        QCOMPARE(listener.problem(), QString());
    }
}

void TestLocalListener::nameThatIsTakenOver()
{
    QLocalServer server;
    LocalListener listener(&server, QStringLiteral("Wanted"), nullptr);
    listener.start();
    QVERIFY(QFile::remove(listener.path()));
    QLocalServer other;
    QVERIFY(other.listen(QStringLiteral("Wanted")));
    const ino_t taken = inodeOf(listener.path());
    QLocalServer third;
    QVERIFY(!LocalListener::listenOnce(third, QStringLiteral("Wanted")).isEmpty());
    QTRY_VERIFY(listener.problem().contains(listener.path()));
    QCOMPARE(inodeOf(listener.path()), taken);

    other.close();
    QTRY_COMPARE(listener.problem(), QString());
    QVERIFY(RawClient(QStringLiteral("Wanted")).isConnected());
}

void TestLocalListener::longestPath()
{
    constexpr qsizetype longest = 106;
    for (const qsizetype length : {longest, longest + 1}) {
        const QString folder = folderOfLength(length - 8);
        QVERIFY(QDir().mkpath(folder));
        const TemporaryFolder temporary(folder);
        QLocalServer server;
        const QString problem = LocalListener::listenOnce(server, QStringLiteral("Corvale"));
        QCOMPARE(QFile::encodeName(LocalListener::socketPath(QStringLiteral("Corvale"))).size(), length);
        if (length == longest)
            QCOMPARE(problem, QString());
        else
            QVERIFY2(problem.contains(QStringLiteral("too long")), qPrintable(problem));
    }
}

/// A test suite may start dozens of applications at once, none of which waits for the window.
void TestLocalListener::manyAtOnce()
{
    constexpr int applications = 64;
    QLocalServer server;
    LocalListener listener(&server, QStringLiteral("Busy"), nullptr);
    listener.start();
    QVERIFY(listener.isListening());
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, QFile::encodeName(listener.path()).constData(), sizeof address.sun_path);
    std::vector<int> descriptors;
    for (int i = 0; i < applications; ++i) {
        descriptors.push_back(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        QCOMPARE(
            ::connect(descriptors.back(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
    for (const int descriptor : descriptors)
        ::close(descriptor);
}

QTEST_GUILESS_MAIN(TestLocalListener)
#include "TestLocalListener.moc"
