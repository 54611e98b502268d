#include "Controller.h"
#include "Program.h"
#include "RawClient.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLockFile>
#include <QMessageBox>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QString path(const char* name)
{
    return QDir::tempPath() + QLatin1Char('/') + QLatin1String(name);
}

/// Inode of a file, 0 where there is none.
ino_t inode(const char* name)
{
    struct stat status { };
    return lstat(QFile::encodeName(path(name)).constData(), &status) == 0 ? status.st_ino : 0;
}

bool answers(const char* name)
{
    return RawClient(QLatin1String(name)).isConnected();
}

/// A socket that somebody answers on, who knows whether anybody has asked.
class Listener {
public:
    explicit Listener(const char* name)
        : m_path(QFile::encodeName(path(name)))
        , m_descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, m_path.constData(), sizeof address.sun_path);
        unlink(m_path.constData());
        if (bind(m_descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            listen(m_descriptor, 10);
    }
    ~Listener()
    {
        ::close(m_descriptor);
        unlink(m_path.constData());
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    bool wasAsked() const
    {
        const int connection = accept(m_descriptor, nullptr, nullptr);
        if (connection >= 0)
            ::close(connection);
        return connection >= 0;
    }

private:
    QByteArray m_path;
    int m_descriptor;
};

/// The real program in a process of its own.
class Instance {
public:
    /// Starts it and waits until it answers.
    Instance()
    {
        m_process.setProcessChannelMode(QProcess::ForwardedChannels);
        m_process.start(QStringLiteral(CORVALE_GUI), QStringList());
        m_process.waitForStarted();
        [this] {
            QTRY_VERIFY(answers("CorvaleGUI") || !isRunning());
        }();
    }
    ~Instance()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    /// Leaves it so many more file descriptors than it has now.
    bool limitDescriptors(rlim_t more)
    {
        const auto process = static_cast<pid_t>(m_process.processId());
        const QDir open(QStringLiteral("/proc/%1/fd").arg(process));
        const rlim_t most =
            more + rlim_t(open.entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size());
        const rlimit limit{most, most};
        return prlimit(process, RLIMIT_NOFILE, &limit, nullptr) == 0;
    }
    bool isRunning() { return m_process.state() == QProcess::Running && !m_process.waitForFinished(0); }
    void terminate()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }
    void crash()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

/// What the message box of a failed start said; set before runProgram() returns.
QString startUpFailure;
QString startUpDetails;

/// Answers the box of a failed start, whose application object nobody outside can reach before it is shown.
void answerStartUpFailure()
{
    QTimer::singleShot(0, QCoreApplication::instance(), [] {
        if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
            return;
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        startUpFailure = box->text();
        startUpDetails = box->informativeText();
        if (box->icon() == QMessageBox::Critical)
            box->accept();
    });
}
Q_COREAPP_STARTUP_FUNCTION(answerStartUpFailure)

/// Runs the program in this process until its start fails.
int runHere()
{
    char program[] = "corvale-gui";
    char* arguments[] = {program, nullptr};
    startUpFailure.clear();
    return runProgram(1, arguments);
}

} // namespace

/// Runs without an application object of its own, since the program makes one.
class TestStartUp : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void socketsAreForTheUserAlone();
    void startsAgainAfterACrash();
    void secondInstanceLeavesTheFirstAlone();
    void manySecondInstancesAreRefused();
    void endsByASignal();
    void secondInstanceIsNoClient();
    void preferencesThatCannotBeLoaded();
    void vanishedSocketComesBack();
    void runsOutOfDescriptors();
    void anotherUsersName_data();
    void anotherUsersName();
    void lockThatNobodyHolds_data();
    void lockThatNobodyHolds();
};

void TestStartUp::socketsAreForTheUserAlone()
{
    const Instance instance;
    for (const char* name : {"Corvale", "CorvaleGUI"}) {
        struct stat status { };
        QCOMPARE(lstat(QFile::encodeName(path(name)).constData(), &status), 0);
        QVERIFY(S_ISSOCK(status.st_mode));
        QCOMPARE(status.st_mode & 077U, 0U);
    }
    // Held for good, the lock would delay each further start.
    const QString lock = path("CorvaleGUI-%1.lock").arg(geteuid());
    QTRY_VERIFY2(!QFile::exists(lock), qPrintable(lock));
}

void TestStartUp::startsAgainAfterACrash()
{
    {
        Instance instance;
        instance.crash();
    }
    QVERIFY(inode("Corvale") != 0);
    QVERIFY(!answers("Corvale"));
    Instance next;
    QVERIFY(next.isRunning());
    QTRY_VERIFY(answers("Corvale"));
    QVERIFY(answers("CorvaleGUI"));
}

void TestStartUp::secondInstanceLeavesTheFirstAlone()
{
    Instance first;
    RawClient client(QStringLiteral("Corvale"));
    const ino_t clientSocket = inode("Corvale");
    const ino_t instanceSocket = inode("CorvaleGUI");
    QVERIFY(clientSocket != 0);

    QCOMPARE(runHere(), 0);
    QCOMPARE(startUpFailure, QStringLiteral("CorvaleGUI is already running"));

    QVERIFY(first.isRunning());
    QCOMPARE(inode("Corvale"), clientSocket);
    QCOMPARE(inode("CorvaleGUI"), instanceSocket);
    QVERIFY(answers("Corvale"));
    QVERIFY(client.send(records::pid(1)));
    QCOMPARE(client.receivedTypes(), QList<quint32>());
}

void TestStartUp::manySecondInstancesAreRefused()
{
    Instance first;
    for (int i = 0; i < 300; ++i)
        QVERIFY2(answers("CorvaleGUI"), qPrintable(QString::number(i)));
    QVERIFY(first.isRunning());
}

void TestStartUp::endsByASignal()
{
    Instance instance;
    RawClient client(QStringLiteral("Corvale"));
    QVERIFY(client.send(records::pid(1)));
    instance.terminate();
    QCOMPARE(inode("Corvale"), 0U);
    QCOMPARE(inode("CorvaleGUI"), 0U);
    QCOMPARE(client.receivedTypes(), QList<quint32>({11}));
}

void TestStartUp::secondInstanceIsNoClient()
{
    const Listener instance("CorvaleGUI");
    const Listener clients("Corvale");
    QCOMPARE(runHere(), 0);
    QCOMPARE(startUpFailure, QStringLiteral("CorvaleGUI is already running"));
    QVERIFY(instance.wasAsked());
    QVERIFY2(!clients.wasAsked(), "it would show up in the first instance as an application");
}

void TestStartUp::preferencesThatCannotBeLoaded()
{
    const QString file =
        qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brindlewood/Corvale.plist");
    QFile::remove(file);
    QVERIFY(QDir().mkpath(file));
    QCOMPARE(runHere(), 0);
    QCOMPARE(startUpFailure, QStringLiteral("ERROR: Failed to open preference file."));
    QCOMPARE(startUpDetails, QStringLiteral("Cannot read %1: it is not a regular file").arg(file));
    QVERIFY(QDir().rmdir(file));

    QFile broken(file);
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("<plist><dict><string/></dict></plist>");
    broken.close();
    QCOMPARE(runHere(), 0);
    QCOMPARE(startUpFailure, QStringLiteral("ERROR: Missing <key> tag\n"));
    QVERIFY2(startUpDetails.contains(file) && startUpDetails.contains(QStringLiteral("Missing <key> tag")),
        qPrintable(startUpDetails));
    QVERIFY(broken.remove());
}

void TestStartUp::vanishedSocketComesBack()
{
    Instance instance;
    QTRY_VERIFY(answers("Corvale"));
    QVERIFY(QFile::remove(path("Corvale")));
    QTRY_VERIFY(answers("Corvale"));
    QVERIFY(instance.isRunning());
}

void TestStartUp::runsOutOfDescriptors()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("the sanitizer needs descriptors of its own to look at objects, and takes their want for a fault");
#endif
    Instance instance;
    QVERIFY(instance.limitDescriptors(8));
    constexpr std::size_t clients = 16;
    std::vector<std::unique_ptr<RawClient>> flood;
    flood.reserve(clients);
    for (std::size_t i = 0; i < clients; ++i)
        flood.push_back(std::make_unique<RawClient>(QStringLiteral("Corvale")));
    QTRY_VERIFY(!answers("Corvale"));
    flood.clear();
    QTRY_VERIFY(answers("Corvale"));
    QVERIFY(instance.isRunning());
}

void TestStartUp::anotherUsersName_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("socket that answers") << QStringLiteral("socket");
    QTest::newRow("link to a socket of ours") << QStringLiteral("link");
}

/// In a folder for everybody, somebody else can have the name first.
void TestStartUp::anotherUsersName()
{
    if (geteuid() != 0)
        QSKIP("only root can give files to another user");
    QFETCH(const QString, kind);
    constexpr uid_t somebodyElse = 12345;
    const Listener stranger(kind == QLatin1String("socket") ? "CorvaleGUI" : "Stranger");
    const QByteArray name = QFile::encodeName(path("CorvaleGUI"));
    if (kind == QLatin1String("link"))
        QCOMPARE(symlink(QFile::encodeName(path("Stranger")).constData(), name.constData()), 0);
    QCOMPARE(lchown(name.constData(), somebodyElse, somebodyElse), 0);
    const ino_t before = inode("CorvaleGUI");

    int count = 1;
    char program[] = "test";
    char* arguments[] = {program, nullptr};
    Controller controller(count, arguments);
    QTRY_VERIFY(answers("Corvale"));
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto isMainWindow = [](const QWidget* widget) {
        return qobject_cast<const QMainWindow*>(widget) != nullptr;
    };
    const auto window = std::find_if(windows.begin(), windows.end(), isMainWindow);
    QVERIFY(window != windows.end());
    const auto* problem = (*window)->findChild<QLabel*>(QStringLiteral("lblInstanceProblem"));
    QVERIFY(problem && !problem->isHidden());
    QVERIFY2(problem->text().contains(path("CorvaleGUI")), qPrintable(problem->text()));
    QCOMPARE(inode("CorvaleGUI"), before);
    unlink(name.constData());
}

void TestStartUp::lockThatNobodyHolds_data()
{
    QTest::addColumn<bool>("foreign");
    QTest::newRow("of another user") << true;
    QTest::newRow("of a process that has died") << false;
}

/// Somebody else's lock, or one that a crash has left behind, delays nothing.
void TestStartUp::lockThatNobodyHolds()
{
    QFETCH(const bool, foreign);
    if (foreign && geteuid() != 0)
        QSKIP("only root can give files to another user");
    const QString name = path("CorvaleGUI-%1.lock").arg(geteuid());
    QLockFile foreignLock(name);
    if (foreign) {
        QVERIFY(foreignLock.tryLock(0));
        QCOMPARE(chown(QFile::encodeName(name).constData(), 12345, 12345), 0);
    } else {
        const pid_t child = fork();
        if (child == 0)
            _exit(QLockFile(name).tryLock(0) ? 0 : 1);
        QCOMPARE(waitpid(child, nullptr, 0), child);
    }
    QElapsedTimer time;
    time.start();
    StartUpLock lock;
    QVERIFY2(time.elapsed() < 500, qPrintable(QString::number(time.elapsed())));
    lock.release();
    QCOMPARE(QFile::exists(name), foreign);
}

int main(int argc, char** argv)
{
    TestStartUp test;
    return QTest::qExec(&test, argc, argv);
}
#include "TestStartUp.moc"
