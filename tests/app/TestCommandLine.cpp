#include "CommandLine.h"

#include <QProcess>
#include <QTest>

/// What the program says on a terminal.
class TestCommandLine : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requests_data();
    void requests();
    void answersWithoutADisplay_data();
    void answersWithoutADisplay();
};

void TestCommandLine::requests_data()
{
    using Request = CommandLine::Request;
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<CommandLine::Request>("request");
    QTest::newRow("none") << QStringList{} << Request::Start;
    QTest::newRow("of Qt") << QStringList{"-style", "fusion", "--geometry=10x10", "-reverse"}
                           << Request::Start;
    QTest::newRow("a value that looks like ours") << QStringList{"-title", "--version"} << Request::Start;
    QTest::newRow("of Qt, without its value") << QStringList{"-style"} << Request::Refuse;
    QTest::newRow("ours behind one of Qt")
        << QStringList{"-style", "fusion", "--geometry=1x1", "-h"} << Request::Answer;
    QTest::newRow("one dash") << QStringList{"-version"} << Request::Refuse;
    QTest::newRow("files") << QStringList{"one", "-style", "fusion", "--", "-two"} << Request::Start;
    QTest::newRow("a dash") << QStringList{"-"} << Request::Refuse;
    QTest::newRow("the first decides") << QStringList{"--unknown", "--help"} << Request::Refuse;
}

void TestCommandLine::requests()
{
    QFETCH(const QStringList, arguments);
    QByteArrayList bytes{"corvale-gui"};
    for (const QString& argument : arguments)
        bytes += argument.toUtf8();
    std::vector<const char*> pointers;
    for (const QByteArray& text : bytes)
        pointers.push_back(text.constData());
    QTEST(readCommandLine(static_cast<int>(pointers.size()), pointers.data()).request, "request");
}

void TestCommandLine::answersWithoutADisplay_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("error");
    QTest::newRow("version") << "--version" << 0 << "Corvale GUI " CORVALE_VERSION << "";
    QTest::newRow("help") << "--help" << 0 << "usage: corvale-gui"
                          << "";
    QTest::newRow("unknown") << "--bogus" << 2 << ""
                             << "'--bogus'";
}

void TestCommandLine::answersWithoutADisplay()
{
    QFETCH(const QString, argument);
    QFETCH(const QString, output);
    QFETCH(const QString, error);
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(CORVALE_GUI), {argument});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QTEST(program.exitCode(), "code");
    const QString written = QString::fromUtf8(program.readAllStandardOutput());
    const QString complained = QString::fromUtf8(program.readAllStandardError());
    QVERIFY2(output.isEmpty() ? written.isEmpty() : written.startsWith(output), qPrintable(written));
    QVERIFY2(error.isEmpty() ? complained.isEmpty() : complained.contains(error), qPrintable(complained));
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "TestCommandLine.moc"
