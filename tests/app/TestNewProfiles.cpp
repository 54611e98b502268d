#include "Client.h"
#include "ClientInterface.h"
#include "ClientTabWidget.h"
#include "ContextInterface.h"
#include "ProfilePanelDriver.h"
#include "RawClient.h"

#include <QLabel>
#include <QMenu>

namespace {

/// A script in the launcher's place while this lives.
class FakeLauncher {
public:
    FakeLauncher() { qputenv("PATH", m_folder.path().toUtf8() + ':' + m_path); }
    ~FakeLauncher() { qputenv("PATH", m_path); }
    FakeLauncher(const FakeLauncher&) = delete;
    FakeLauncher& operator=(const FakeLauncher&) = delete;

    QString file(const char* name) const { return m_folder.filePath(QLatin1String(name)); }
    void becomes(const QByteArray& script) const
    {
        QFile launcher(file("corvale-run"));
        QVERIFY(launcher.open(QIODevice::WriteOnly));
        launcher.write("#!/bin/sh\n" + script);
        launcher.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }

private:
    const QByteArray m_path = qgetenv("PATH");
    const QTemporaryDir m_folder;
};

} // namespace

/// Profiles that are made of what is there, and programs that are run with them.
class TestNewProfiles : public ProfilePanelDriver {
    Q_OBJECT

public:
    using ProfilePanelDriver::ProfilePanelDriver;

private Q_SLOTS:
    void profilesOfTheMachine();
    void profilesOfAClient();
    void programsSeeTheChosenProfile();
};

void TestNewProfiles::profilesOfTheMachine()
{
    FakeLauncher launcher;
    auto* action = find<QAction>("actionProfile_from_Machine");
    launcher.becomes(
        "[ \"$*\" = '--make-profile -' ] && echo '<profile><device>Here</device><es version=\"2\">"
        "<extension>GL_A</extension></es><egl><vendor>V</vendor></egl></profile>'");
    action->trigger();
    QVERIFY(!action->isEnabled());
    QTRY_COMPARE(device(), QStringLiteral("Here"));
    QVERIFY(action->isEnabled());
    QVERIFY(isModifying());
    QCOMPARE(find<QLabel>("noticeHiddenText")->text(), QString());
    // It is in no file, so it does not go without a question.
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    choose(QStringLiteral("Host"));
    QCOMPARE(device(), QStringLiteral("Here"));
    m_answers.enter(fileNameTitle, QStringLiteral("here.xml"));
    click("btnSave");
    QVERIFY(content(QStringLiteral("here.xml")).contains(QStringLiteral("<extension>GL_A</extension>")));
    QVERIFY(content(QStringLiteral("here.xml")).contains(QStringLiteral("<vendor>V</vendor>")));
    QCOMPARE(content(QStringLiteral("mine.xml")), m_xml);

    launcher.becomes("echo 'corvale-run: There is nothing.' >&2; exit 1");
    m_answers.next(QStringLiteral("Corvale GUI"), [](QWidget& widget) {
        auto& box = static_cast<QMessageBox&>(widget);
        QVERIFY(box.informativeText().contains(QStringLiteral("There is nothing.")));
        box.accept();
    });
    action->trigger();
    QTRY_VERIFY(action->isEnabled());
    QTRY_VERIFY(!QApplication::activeModalWidget());
    QCOMPARE(device(), QStringLiteral("Here"));
}

void TestNewProfiles::profilesOfAClient()
{
    auto* action = find<QAction>("actionProfile_from_Client");
    QVERIFY(!action->isEnabled());
    RawClient client(QStringLiteral("Corvale"));
    QVERIFY(client.send(records::text(records::Type::SetName, "game")));
    const auto sendContext = [&client](std::uint32_t number, std::uint32_t version, std::uint32_t extension) {
        records::Message context = records::context(number);
        context.setU32(records::offset::contextEsVersion, version);
        context.setU32(records::offset::contextExtensions, extension);
        QVERIFY(client.send(context));
    };
    sendContext(1, 3, 2);
    sendContext(2, 3, 1);
    sendContext(3, 99, 3);
    auto* tabs = find<ClientTabWidget>("clienttabs");
    QTRY_COMPARE(tabs->tabText(0), QStringLiteral("\"game\" PID: 0"));
    QTRY_COMPARE(tabs->pageAt(0)->findChildren<ContextInterface*>().size(), 3);
    Q_EMIT find<QMenu>("menuFile")->aboutToShow();
    action->trigger();
    QVERIFY(device().contains(QStringLiteral("\"game\"")));
    m_answers.enter(fileNameTitle, QStringLiteral("game.xml"));
    click("btnSave");
    const ProfileData saved = readProfileFile(path(QStringLiteral("game.xml")).toStdString());
    QCOMPARE(saved.extensions().size(), 1U);
    QCOMPARE(saved.extensions().begin()->second.size(), 2U);
    QVERIFY(saved.capabilities().empty() && saved.vendor().empty());
    tabs->closeTabAt(0);
}

void TestNewProfiles::programsSeeTheChosenProfile()
{
    FakeLauncher launcher;
    launcher.becomes("echo \"$*\" >>'" + launcher.file("seen").toUtf8() + "'");
    const auto run = [this](int profile) {
        find<QAction>("actionRun_Program")->trigger();
        // The one before may still wait for its end.
        auto* dialog = m_window.findChildren<QDialog*>(QStringLiteral("RunProgramDialog")).constLast();
        dialog->findChild<QLineEdit*>(QStringLiteral("edtProgram"))->setText(QStringLiteral("true"));
        auto* list = dialog->findChild<QComboBox*>(QStringLiteral("cmbProfile"));
        QCOMPARE(list->itemText(0), chooser()->currentText() + QStringLiteral(" (chosen in the window)"));
        list->setCurrentIndex(profile < 0 ? list->count() + profile : profile);
        dialog->accept();
    };
    const auto seen = [&launcher] {
        QFile file(launcher.file("seen"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))
                                              : QStringList();
    };
    run(0);
    QTRY_COMPARE(seen().value(0), QStringLiteral("--show-output --profile=mine.xml -- true"));
    run(1);
    QTRY_COMPARE(seen().value(1), QStringLiteral("--show-output --profile=Host -- true"));
    choose(QStringLiteral("Host"));
    run(-1);
    QTRY_COMPARE(seen().value(2), QStringLiteral("--show-output --profile=mine.xml -- true"));
    run(0);
    QTRY_COMPARE(seen().value(3), QStringLiteral("--show-output --profile=Host -- true"));
    find<QTabWidget>("mainTabWidget")->setCurrentIndex(0);
}

int main(int argc, char** argv)
{
    return runOnProgram<TestNewProfiles>(argc, argv);
}

#include "TestNewProfiles.moc"
