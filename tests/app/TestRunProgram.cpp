#include "RecentRuns.h"
#include "Resources.h"
#include "RunProgramDialog.h"
#include "Session.h"

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>

#include <csignal>
#include <optional>

namespace {

/// Stands in for the launcher: leaves its process's number and what it was given in "seen", then runs the
/// program and passes SIGTERM on. The trap comes first, since the program may be ready before the next line
/// is read.
constexpr const char* fakeLauncher = R"(#!/bin/sh
{ echo $$; printf '%s|' "$PWD" "$GREETING" "$@"; echo; } >>"$SEEN"
shift 3
[ "$1" = missing ] && echo "corvale-run: There is no program $1." >&2 && exit 127
trap 'kill $!' TERM
"$@" &
child=$!
wait $child
code=$?
while kill -0 $child 2>/dev/null; do wait $child; code=$?; done
exit $code
)";

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestRunProgram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerResources(); }
    void init();
    void cleanup();

    void dialogRefusesWhatCannotBeRun_data();
    void dialogRefusesWhatCannotBeRun();
    void dialogOffersRecentRuns();
    void launcherGetsWhatWasEntered();
    void stopEndsPrograms_data();
    void stopEndsPrograms();
    void failuresStay();
    void programsOutliveTheWindow();

private:
    template <typename T> T& find(const char* name) const
    {
        return *m_session->window.findChild<T*>(QLatin1String(name));
    }
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    QString status() const { return m_session->window.statusBar()->currentMessage(); }
    /// Enters a run in the dialog of the window.
    void enter(const QString& command, const QString& folder = {}, const QString& environment = {})
    {
        find<QAction>("actionRun_Program").trigger();
        auto& dialog = find<QDialog>("RunProgramDialog");
        dialog.findChild<QLineEdit*>(QStringLiteral("edtProgram"))->setText(command);
        dialog.findChild<QLineEdit*>(QStringLiteral("edtFolder"))->setText(folder);
        dialog.findChild<QPlainTextEdit*>(QStringLiteral("txtEnvironment"))->setPlainText(environment);
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        QVERIFY(!dialog.isVisible());
    }
    /// The process group of the launcher that was started last.
    pid_t group() const { return contentOf(path("seen")).split('\n').value(0).toInt(); }
    bool isGroupGone() const { return ::kill(-group(), 0) != 0; }

    QByteArray m_path = qgetenv("PATH");
    std::optional<QTemporaryDir> m_folder;
    std::optional<Session> m_session;
};

void TestRunProgram::init()
{
    QDir(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brindlewood")).removeRecursively();
    m_folder.emplace();
    qputenv("PATH", m_folder->path().toUtf8() + ':' + m_path);
    qputenv("SEEN", path("seen").toUtf8());
    QFile launcher(path("corvale-run"));
    QVERIFY(launcher.open(QIODevice::WriteOnly));
    launcher.write(fakeLauncher);
    launcher.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    launcher.close();
    m_session.emplace();
}

void TestRunProgram::cleanup()
{
    m_session.reset();
    if (group() > 0)
        ::kill(-group(), SIGKILL);
}

void TestRunProgram::dialogRefusesWhatCannotBeRun_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("environment");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QString>("focus");
    const auto add = [](const char* name, const char* command, const char* folder, const char* environment,
                         const char* reason, const char* focus) {
        QTest::newRow(name) << QString(command) << QString(folder) << QString(environment) << QString(reason)
                            << QString(focus);
    };
    add("open quote", "true \"a b", "", "", "not closed", "edtProgram");
    add("no folder", "true", "/nowhere", "", "no folder \"/nowhere\"", "edtFolder");
    add("no =", "true", "~", "A=1\n\nB", "\"B\" of the environment is not understood: there is no \"=\"",
        "txtEnvironment");
    add("no name", "true", "", "=1", "no name", "txtEnvironment");
    add("blank", "true", "", "A B=1", "blank in the name", "txtEnvironment");
    add("other socket", "true", "", "TMPDIR=/tmp", "would not find this window", "txtEnvironment");
    add("fine", "true \"\"\"quoted\"\"\" 'single", "~", "A=\nB=c=d e\n \n", "", "");
}

void TestRunProgram::dialogRefusesWhatCannotBeRun()
{
    QFETCH(QString, command);
    QFETCH(QString, folder);
    QFETCH(QString, environment);
    QFETCH(QString, reason);
    QFETCH(QString, focus);
    RunProgramDialog dialog({}, {}, nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    auto& program = *dialog.findChild<QLineEdit*>(QStringLiteral("edtProgram"));
    auto& problem = *dialog.findChild<QLabel*>(QStringLiteral("lblProblem"));
    QPushButton& run = *dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
    QVERIFY(program.hasFocus() && !run.isEnabled());
    program.setText(QStringLiteral(" \"\" "));
    QVERIFY(!run.isEnabled());
    program.setText(command);
    dialog.findChild<QLineEdit*>(QStringLiteral("edtFolder"))->setText(folder);
    dialog.findChild<QPlainTextEdit*>(QStringLiteral("txtEnvironment"))->setPlainText(environment);
    run.click();
    QCOMPARE(dialog.isVisible(), !reason.isEmpty());
    QCOMPARE(problem.isVisible(), !reason.isEmpty());
    QVERIFY2(problem.text().contains(reason), qPrintable(problem.text()));
    if (!focus.isEmpty())
        QCOMPARE(dialog.focusWidget()->objectName(), focus);
    program.setText(QStringLiteral("other"));
    QVERIFY(!problem.isVisible());
}

void TestRunProgram::dialogOffersRecentRuns()
{
    RecentRuns recent(m_session->preferences);
    QList<ProgramRun> expected;
    for (int i = 0; i < 12; ++i) {
        expected.prepend({QStringLiteral("game --level %1").arg(i), QStringLiteral("/folder \"%1\"").arg(i),
            {QStringLiteral("A=%1").arg(i), QStringLiteral("B=\xe4 \x01\\n")},
            i == 10 ? QStringLiteral("Gone.xml") : QString()});
        recent.add(expected.first());
    }
    expected.move(4, 0);
    recent.add(expected.first());
    Preferences again;
    Session::loaded(again);
    QCOMPARE(RecentRuns(again).runs(), expected.mid(0, 10));

    const QList<RunProfile> profiles{{QStringLiteral("Wren (chosen)"), {}},
        {QStringLiteral("Host"), QStringLiteral("Host")},
        {QStringLiteral("Tarn"), QStringLiteral("Tarn.xml")}};
    RunProgramDialog dialog(RecentRuns(again).runs(), profiles, nullptr);
    QCOMPARE(dialog.run(), expected[0]);
    auto& list = *dialog.findChild<QComboBox*>(QStringLiteral("cmbRecent"));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(dialog.run(), expected[1]);
    auto& profile = *dialog.findChild<QComboBox*>(QStringLiteral("cmbProfile"));
    QCOMPARE(profile.currentText(), QStringLiteral("Wren (chosen)"));
    QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(profile.currentText(), QStringLiteral("Gone.xml (not there any more)"));
    profile.setCurrentIndex(2);
    QCOMPARE(dialog.run().profile, QStringLiteral("Tarn.xml"));

    // A file that somebody has written by hand.
    again.set(settings::recentRuns, {"", "true", "[]", R"({"command":"\"\""})", R"({"command":"a"})"});
    QCOMPARE(RecentRuns(again).runs(), QList<ProgramRun>({{QStringLiteral("a"), {}, {}}}));
}

void TestRunProgram::launcherGetsWhatWasEntered()
{
    QVERIFY(!find<QAction>("actionRun_Again").isEnabled());
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("a b")));
    const QString folder = path("a b");
    enter(QStringLiteral("sh -c \"exit 3\" \"a  b\" $HOME"), folder, QStringLiteral("GREETING=good = day"));
    QTRY_COMPARE(status(), QStringLiteral("\"sh\" has ended with exit status 3."));
    const QByteArray line =
        folder.toUtf8() + "|good = day|--show-output|--profile=Host|--|sh|-c|exit 3|a  b|$HOME|";
    QCOMPARE(contentOf(path("seen")).split('\n').value(1), line);
    QVERIFY(!find<QAction>("actionStop").isEnabled());

    // The next session knows the run, and so does its dialog.
    m_session.reset();
    QVERIFY(QFile::remove(path("seen")));
    m_session.emplace();
    QVERIFY(find<QAction>("actionRun_Again").isEnabled());
    find<QAction>("actionRun_Again").trigger();
    QTRY_COMPARE(status(), QStringLiteral("\"sh\" has ended with exit status 3."));
    QCOMPARE(contentOf(path("seen")).split('\n').value(1), line);
}

void TestRunProgram::stopEndsPrograms_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("atLeast");
    QTest::newRow("willing") << QStringLiteral("echo >ready; sleep 60") << 0;
    QTest::newRow("deaf") << QStringLiteral("trap '' TERM; echo >ready; while :; do sleep 60; done") << 2800;
}

void TestRunProgram::stopEndsPrograms()
{
    QFETCH(QString, script);
    QFETCH(int, atLeast);
    enter(QStringLiteral("sh -c \"%1\"").arg(script), m_folder->path());
    QTRY_VERIFY(QFile::exists(path("ready")));
    QVERIFY(find<QAction>("actionStop").isEnabled());
    QElapsedTimer time;
    time.start();
    find<QAction>("actionStop").trigger();
    QTRY_VERIFY(!find<QAction>("actionStop").isEnabled());
    QVERIFY(time.elapsed() >= atLeast);
    QVERIFY(status().startsWith(QStringLiteral("\"sh\" has ended")));
    // What the program has left behind goes as well.
    QTRY_VERIFY(isGroupGone());
}

void TestRunProgram::failuresStay()
{
    m_session->window.show();
    auto& notice = find<QWidget>("noticeNotRun");
    auto& text = find<QLabel>("noticeNotRunText");
    QVERIFY(!notice.isVisible());
    enter(QStringLiteral("missing"));
    QTRY_VERIFY(notice.isVisible());
    QCOMPARE(text.text(), QStringLiteral("There is no program missing."));
    QCOMPARE(status(), text.text());
    // A program may have such an exit status of its own.
    enter(QStringLiteral("sh -c \"exit 127\""));
    QVERIFY(!notice.isVisible());
    QTRY_COMPARE(status(), QStringLiteral("\"sh\" has ended with exit status 127."));
    QVERIFY(!notice.isVisible());

    QVERIFY(QFile::remove(path("corvale-run")));
    find<QAction>("actionRun_Again").trigger();
    QVERIFY(notice.isVisible());
    QVERIFY(text.text().contains(QStringLiteral("add the folder of \"corvale-run\" to PATH")));
    find<QPushButton>("btnHideNotRun").click();
    QVERIFY(!notice.isVisible());
}

void TestRunProgram::programsOutliveTheWindow()
{
    enter(QStringLiteral("sh -c \"echo >ready; while [ -e ready ]; do sleep 0.05; done; echo >done\""),
        m_folder->path());
    QTRY_VERIFY(QFile::exists(path("ready")));
    QVERIFY(m_session->window.close());
    m_session.reset();
    QTest::qWait(200);
    QVERIFY(!isGroupGone());
    QVERIFY(QFile::remove(path("ready")));
    QTRY_VERIFY(QFile::exists(path("done")));
}

QTEST_MAIN(TestRunProgram)
#include "TestRunProgram.moc"
