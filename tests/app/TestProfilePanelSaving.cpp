#include "ProfilePanelDriver.h"

#include <QFileDialog>
#include <QLabel>
#include <QStatusBar>
#include <QToolTip>

/// What becomes of edits, and the questions about it.
class TestProfilePanelSaving : public ProfilePanelDriver {
    Q_OBJECT

public:
    using ProfilePanelDriver::ProfilePanelDriver;

private Q_SLOTS:
    void readOnlyIsSavedAsACopy();
    void saveAsLeavesTheOriginal();
    void anotherProfileAsksFirst();
    void newProfile();
    void otherProgramsAreNotOverwritten();
    void linksDoNotReachOtherProfiles();
    void failedSaveKeepsTheEdits();
    void refusedEntriesAreNotSaved();
    void discardedChangesComeBack();
    void discardedNewProfilesComeBack();
    void deletedRowsComeBack();
    void hiddenElementsAreNamed();
    void unsavedChangesAreMarked();
    void emptyPagesSayWhatToDo();
    void theChooserFollowsTheQuestion();
    void withoutAFolderOneIsChosen();
};

void TestProfilePanelSaving::readOnlyIsSavedAsACopy()
{
    chooser()->setCurrentIndex(1);
    const QString name = chooser()->currentText();
    click("btnEdit");
    enterDevice(QStringLiteral("My own"));
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    click("btnSave");
    QVERIFY(isModifying());
    QCOMPARE(device(), QStringLiteral("My own"));
    QCOMPARE(files(), QStringList{QStringLiteral("mine.xml")});

    m_answers.press(saveTitle, QStringLiteral("Copy"));
    m_answers.next(fileNameTitle, [name](QWidget& widget) {
        auto& dialog = static_cast<QInputDialog&>(widget);
        QCOMPARE(dialog.textValue(), name + QStringLiteral(" (copy).xml"));
        dialog.accept();
    });
    click("btnSave");
    QVERIFY(!isModifying());
    const QString file = name + QStringLiteral(" (copy).xml");
    QVERIFY(content(file).contains(QStringLiteral("<device>My own</device>")));
    QCOMPARE(chooser()->currentText(), QStringLiteral("My own (%1)").arg(file));
    chooser()->setCurrentIndex(1);
    QCOMPARE(device(), name);
}

void TestProfilePanelSaving::saveAsLeavesTheOriginal()
{
    click("btnEdit");
    enterDevice(QStringLiteral("Other"));
    m_answers.enter(fileNameTitle, QString());
    click("btnSaveAs");
    QVERIFY(isModifying());
    QCOMPARE(chooser()->count(), 15);

    m_answers.enter(fileNameTitle, QStringLiteral("other.xml"));
    click("btnSaveAs");
    QVERIFY(!isModifying());
    QCOMPARE(content(QStringLiteral("mine.xml")), m_xml);
    QCOMPARE(content(QStringLiteral("other.xml")),
        QString(m_xml).replace(QStringLiteral("Mine"), QStringLiteral("Other")));
    QCOMPARE(chooser()->currentText(), QStringLiteral("Other (other.xml)"));
    QCOMPARE(chooser()->count(), 16);
}

void TestProfilePanelSaving::anotherProfileAsksFirst()
{
    click("btnEdit");
    chooser()->setCurrentIndex(1);
    QVERIFY(isModifying());
    choose(QStringLiteral("Mine (mine.xml)"));

    enterDevice(QStringLiteral("Kept"));
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    chooser()->setCurrentIndex(2);
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine (mine.xml)"));
    QCOMPARE(device(), QStringLiteral("Kept"));
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    m_window.close();
    QVERIFY(m_window.isVisible());

    // A look at the profiles changes nothing, even when the file is gone.
    QFile::remove(path(QStringLiteral("mine.xml")));
    m_window.reloadProfiles();
    QCOMPARE(device(), QStringLiteral("Kept"));
    m_answers.enter(fileNameTitle, QStringLiteral("mine.xml"));
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")),
        QString(m_xml).replace(QStringLiteral("Mine"), QStringLiteral("Kept")));

    click("btnEdit");
    enterDevice(QStringLiteral("Saved"));
    m_answers.press(saveTitle, QStringLiteral("Save"));
    chooser()->setCurrentIndex(2);
    QCOMPARE(chooser()->currentIndex(), 2);
    QCOMPARE(device(), chooser()->currentText());
    QVERIFY(content(QStringLiteral("mine.xml")).contains(QStringLiteral(">Saved<")));
}

void TestProfilePanelSaving::newProfile()
{
    m_answers.enter(fileNameTitle, QString());
    find<QAction>("actionNew_Profile")->trigger();
    QCOMPARE(device(), QStringLiteral("New profile"));
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine (mine.xml)"));
    // What the panel shows must not land in the file of the profile that is still chosen, nor go without a
    // question.
    click("btnEdit");
    enterDevice(QStringLiteral("Mine 2"));
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    choose(QStringLiteral("Host"));
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine (mine.xml)"));
    QCOMPARE(device(), QStringLiteral("Mine 2"));
    m_answers.enter(fileNameTitle, QStringLiteral("2.xml"));
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")), m_xml);
    QVERIFY(content(QStringLiteral("2.xml")).contains(QStringLiteral("<device>Mine 2</device>")));
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine 2 (2.xml)"));

    m_answers.enter(fileNameTitle, QStringLiteral("3.xml"));
    find<QAction>("actionNew_Profile")->trigger();
    QCOMPARE(chooser()->currentText(), QStringLiteral("New profile (3.xml)"));
    QVERIFY(
        content(QStringLiteral("3.xml")).contains(QStringLiteral("<renderer>Unknown renderer</renderer>")));
    QCOMPARE(chooser()->count(), 17);
}

void TestProfilePanelSaving::otherProgramsAreNotOverwritten()
{
    click("btnEdit");
    enterDevice(QStringLiteral("Ours"));
    write(QStringLiteral("mine.xml"), "<profile><device>Theirs</device></profile>");
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    click("btnSave");
    QVERIFY(isModifying());
    QVERIFY(content(QStringLiteral("mine.xml")).contains(QStringLiteral("Theirs")));
    m_answers.press(saveTitle, QStringLiteral("Replace"));
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")),
        QString(m_xml).replace(QStringLiteral("Mine"), QStringLiteral("Ours")));
}

void TestProfilePanelSaving::linksDoNotReachOtherProfiles()
{
    write(QStringLiteral("linked.xml"), "<profile><device>Linked</device></profile>");
    QVERIFY(QDir().mkpath(m_folder + QStringLiteral("/elsewhere")));
    QVERIFY(QFile::rename(path(QStringLiteral("linked.xml")), path(QStringLiteral("elsewhere/mine.xml"))));
    QVERIFY(QFile::link(path(QStringLiteral("elsewhere/mine.xml")), path(QStringLiteral("a link.xml"))));
    m_window.reloadProfiles();
    choose(QStringLiteral("Linked (mine.xml)"));
    click("btnEdit");
    enterDevice(QStringLiteral("Ours"));
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")), m_xml);
    click("btnDiscard");
    QVERIFY(QDir(path(QStringLiteral("elsewhere"))).removeRecursively());
}

void TestProfilePanelSaving::failedSaveKeepsTheEdits()
{
    click("btnEdit");
    enterDevice(QStringLiteral("Ours"));
    QFile::remove(path(QStringLiteral("mine.xml")));
    QVERIFY(QDir(m_folder).mkpath(QStringLiteral("mine.xml/in the way")));
    m_answers.press(saveTitle, QStringLiteral("Replace"));
    m_answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("OK"));
    click("btnSave");
    QVERIFY(isModifying());
    QCOMPARE(device(), QStringLiteral("Ours"));
    // "Save As..." takes the edits along, and the profile itself is again what was loaded.
    m_answers.enter(fileNameTitle, QStringLiteral("other.xml"));
    click("btnSaveAs");
    QVERIFY(content(QStringLiteral("other.xml")).contains(QStringLiteral(">Ours<")));
    QVERIFY(QDir(path(QStringLiteral("mine.xml"))).removeRecursively());

    // An edit that was taken back after a failure does not come back with the next save.
    QVERIFY(QDir(m_folder).mkpath(QStringLiteral("other.xml.tmp")));
    click("btnEdit");
    enterDevice(QStringLiteral("Failed"));
    m_answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("OK"));
    click("btnSave");
    QVERIFY(QDir(m_folder).rmdir(QStringLiteral("other.xml.tmp")));
    enterDevice(QStringLiteral("Ours"));
    click("btnSave");
    QVERIFY(content(QStringLiteral("other.xml")).contains(QStringLiteral(">Ours<")));
}

void TestProfilePanelSaving::refusedEntriesAreNotSaved()
{
    const auto save = [this](bool byMouse) {
        if (byMouse)
            click("btnSave");
        else
            QTest::keyClick(&m_window, Qt::Key_S, Qt::ControlModifier);
    };
    // Dialogs of other cases may have left no window active.
    m_window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_window));
    click("btnEdit");
    enterDevice(QStringLiteral("Ours"));
    for (const bool byMouse : {false, true}) {
        type("eglConfigsView", index("eglConfigsView", {0, 0}, 1), QStringLiteral("many"), Qt::Key_unknown);
        save(byMouse);
        QVERIFY(isModifying());
        QCOMPARE(content(QStringLiteral("mine.xml")), m_xml);
        auto* line = tree("eglConfigsView")->viewport()->findChild<QLineEdit*>();
        QVERIFY(line);
        QCOMPARE(line->text(), QStringLiteral("many"));
        QTRY_VERIFY(QToolTip::isVisible());
        QToolTip::hideText();
        QTest::keyClick(line, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    // A list that is read again does not take an entry away that is being typed.
    enterDevice(QStringLiteral("Mine"));
    type("eglConfigsView", index("eglConfigsView", {0, 0}, 1), QStringLiteral("5"), Qt::Key_unknown);
    QFile::remove(path(QStringLiteral("mine.xml")));
    m_window.reloadProfiles();
    QCOMPARE(index("eglConfigsView", {0, 0}, 1).data().toString(), QStringLiteral("5"));
}

void TestProfilePanelSaving::discardedChangesComeBack()
{
    const auto bringBack = [this] {
        return button("btnBringBackChanges");
    };
    click("btnEdit");
    QTest::keyClick(&m_window, Qt::Key_D, Qt::ControlModifier);
    QVERIFY(isModifying());
    click("btnDiscard");
    QVERIFY(!bringBack()->isVisible());

    click("btnEdit");
    enterDevice(QStringLiteral("Ours"));
    type("eglConfigsView", index("eglConfigsView", {0, 0}, 1), QStringLiteral("5"), Qt::Key_unknown);
    click("btnDiscard");
    QCOMPARE(device(), QStringLiteral("Mine"));
    QCOMPARE(find<QLabel>("noticeDiscardedText")->text(), QStringLiteral("2 changes discarded."));
    // Newer changes give way, but are not lost either.
    click("btnEdit");
    enterDevice(QStringLiteral("Newer"));
    click("btnBringBackChanges");
    QCOMPARE(device(), QStringLiteral("Ours"));
    click("btnBringBackChanges");
    QCOMPARE(device(), QStringLiteral("Newer"));
    click("btnBringBackChanges");
    click("btnSave");
    QVERIFY(!bringBack()->isVisible());
    QCOMPARE(content(QStringLiteral("mine.xml")),
        QString(m_xml)
            .replace(QStringLiteral("Mine"), QStringLiteral("Ours"))
            .replace(QStringLiteral(">8<"), QStringLiteral(">5<")));

    click("btnEdit");
    enterDevice(QStringLiteral("Gone"));
    click("btnDiscard");
    QVERIFY(bringBack()->isVisible());
    chooser()->setCurrentIndex(1);
    QVERIFY(!bringBack()->isVisible());

    // Of a profile that is in no file, too.
    m_answers.enter(fileNameTitle, QString());
    find<QAction>("actionNew_Profile")->trigger();
    click("btnEdit");
    enterDevice(QStringLiteral("Brand new"));
    click("btnDiscard");
    QCOMPARE(device(), chooser()->currentText());
    click("btnBringBackChanges");
    QCOMPARE(device(), QStringLiteral("Brand new"));
    m_answers.enter(fileNameTitle, QStringLiteral("new.xml"));
    click("btnSave");
    QVERIFY(content(QStringLiteral("new.xml")).contains(QStringLiteral("<device>Brand new</device>")));
}

void TestProfilePanelSaving::discardedNewProfilesComeBack()
{
    // Also where nothing else is shown.
    choose(QStringLiteral("Host"));
    m_answers.enter(fileNameTitle, QString());
    find<QAction>("actionNew_Profile")->trigger();
    click("btnEdit");
    enterDevice(QStringLiteral("Brand new"));
    click("btnDiscard");
    QVERIFY(!find<>("editDevice")->isEnabled() && !tree("capabilitiesView")->isEnabled());
    click("btnBringBackChanges");
    QCOMPARE(device(), QStringLiteral("Brand new"));
    QVERIFY(find<>("editDevice")->isEnabled() && tree("capabilitiesView")->isEnabled());
    QVERIFY(!find<>("noticeHost")->isVisible());
    click("btnDiscard");
    choose(QStringLiteral("Mine (mine.xml)"));
    QVERIFY(!button("btnBringBackChanges")->isVisible());

    // Changes of another profile have to be saved first, or come back themselves.
    m_answers.enter(fileNameTitle, QString());
    find<QAction>("actionNew_Profile")->trigger();
    click("btnEdit");
    enterDevice(QStringLiteral("Second"));
    click("btnDiscard");
    click("btnEdit");
    enterDevice(QStringLiteral("Ours"));
    click("btnBringBackChanges");
    QCOMPARE(device(), QStringLiteral("Ours"));
    click("btnDiscard");
    click("btnBringBackChanges");
    QCOMPARE(device(), QStringLiteral("Ours"));
    m_answers.enter(fileNameTitle, QStringLiteral("ours.xml"));
    click("btnSaveAs");
    QCOMPARE(chooser()->currentText(), QStringLiteral("Ours (ours.xml)"));
    click("btnBringBackChanges");
    QCOMPARE(device(), QStringLiteral("Second"));
    m_answers.enter(fileNameTitle, QStringLiteral("second.xml"));
    click("btnSave");
    QVERIFY(content(QStringLiteral("second.xml")).contains(QStringLiteral("<device>Second</device>")));
    QCOMPARE(content(QStringLiteral("mine.xml")), m_xml);
}

void TestProfilePanelSaving::deletedRowsComeBack()
{
    click("btnEdit");
    tree("eglConfigsView")->model()->removeRow(0, index("eglConfigsView", {0}));
    tree("eglConfigsView")->model()->removeRow(0);
    tree("capabilitiesView")->model()->removeRows(0, 2, index("capabilitiesView", {0}));
    QCOMPARE(find<QLabel>("noticeDeletedText")->text(), QStringLiteral("4 rows deleted."));
    // Discarding takes the deletions along, and back.
    click("btnDiscard");
    QVERIFY(!button("btnBringBackRows")->isVisible());
    click("btnBringBackChanges");
    QCOMPARE(tree("eglConfigsView")->model()->rowCount(), 0);
    // The number of a config can have been given away.
    QVERIFY(tree("eglConfigsView")->model()->insertRow(0));
    QVERIFY(tree("eglConfigsView")->model()->setData(index("eglConfigsView", {0}), 0));
    click("btnBringBackRows");
    QVERIFY(find<QLabel>("noticeDeletedText")->text().contains(QStringLiteral("Config 0")));
    QVERIFY(tree("eglConfigsView")->model()->setData(index("eglConfigsView", {0}), 3));
    click("btnBringBackRows");
    QVERIFY(!button("btnBringBackRows")->isVisible());
    QCOMPARE(index("eglConfigsView", {0, 0}).data().toString(), QStringLiteral("EGL_RED_SIZE"));
    tree("eglConfigsView")->model()->removeRow(1);
    enterDevice(QStringLiteral("Ours"));
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")),
        QString(m_xml).replace(QStringLiteral("Mine"), QStringLiteral("Ours")));
    click("btnEdit");
    QVERIFY(!button("btnBringBackRows")->isVisible());
}

void TestProfilePanelSaving::hiddenElementsAreNamed()
{
    QVERIFY(find<QLabel>("noticeHiddenText")->text().isEmpty());
    write(QStringLiteral("mine.xml"),
        "<profile>\n<es version=\"3.1\"/>\n<device>Mine</device>\n"
        "<egl>\n<config id=\"0x10\"/></egl></profile>");
    m_window.reloadProfiles();
    QCOMPARE(find<QLabel>("noticeHiddenText")->text(),
        QStringLiteral("The file keeps what cannot be shown here: <es version=\"3.1\"> in line 2, "
                       "<config id=\"0x10\"> in line 5."));
    QVERIFY(find<QLabel>("noticeHiddenText")->toolTip().contains(QStringLiteral("whole number")));
    // A save orders the file anew.
    click("btnEdit");
    enterDevice(QStringLiteral("Ours"));
    click("btnSave");
    QVERIFY(
        find<QLabel>("noticeHiddenText")->text().contains(QStringLiteral("<es version=\"3.1\"> in line 6")));
    // What others write beside the configurations is theirs, too.
    const QString saved = content(QStringLiteral("mine.xml"));
    click("btnEdit");
    enterDevice(QStringLiteral("Mine"));
    const QString theirs = QString(saved).replace(QStringLiteral("0x10"), QStringLiteral("0x11"));
    write(QStringLiteral("mine.xml"), theirs.toUtf8());
    m_window.reloadProfiles();
    m_answers.enter(fileNameTitle, QString());
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")), theirs);
}

void TestProfilePanelSaving::unsavedChangesAreMarked()
{
    const auto isMarked = [this](bool wanted) {
        return m_window.isWindowModified() == wanted
            && chooser()->itemIcon(chooser()->currentIndex()).isNull() != wanted;
    };
    click("btnEdit");
    QTRY_VERIFY(isMarked(false));
    QCOMPARE(m_window.windowTitle(), QStringLiteral("Corvale GUI"));
    enterDevice(QStringLiteral("Ours"));
    QTRY_VERIFY(isMarked(true));
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine (mine.xml)"));
    enterDevice(QStringLiteral("Mine"));
    QTRY_VERIFY(isMarked(false));
    tree("capabilitiesView")->model()->removeRow(0);
    QTRY_VERIFY(isMarked(true));
    click("btnDiscard");
    QTRY_VERIFY(isMarked(false));
    click("btnBringBackChanges");
    QTRY_VERIFY(isMarked(true));
    click("btnSave");
    QTRY_VERIFY(isMarked(false));
    QCOMPARE(m_window.windowTitle(), QStringLiteral("Corvale GUI"));
    QVERIFY(find<QStatusBar>("statusbar")->currentMessage().contains(path(QStringLiteral("mine.xml"))));
}

void TestProfilePanelSaving::emptyPagesSayWhatToDo()
{
    QVERIFY(!find<>("noticeHost")->isVisible());
    QVERIFY(!find<>("noticeEmpty")->isVisible());
    choose(QStringLiteral("Host"));
    QVERIFY(find<>("btnChooseProfile")->isEnabled());
    m_answers.enter(fileNameTitle, QStringLiteral("new.xml"));
    QTest::mouseClick(find<>("btnNewProfile"), Qt::LeftButton);
    QCOMPARE(device(), QStringLiteral("New profile"));
    QVERIFY(!find<>("noticeHost")->isVisible());
    QTRY_VERIFY(find<>("noticeEmpty")->isVisible());
    m_answers.enter(QStringLiteral("Add API"), QStringLiteral("OpenGL ES 3.0"));
    QTest::mouseClick(find<>("btnAddFirstApi"), Qt::LeftButton);
    QVERIFY(isModifying());
    QCOMPARE(index("extensionsView", {0}).data().toString(), QStringLiteral("OpenGL ES 3.0"));
    QTRY_VERIFY(!find<>("noticeEmpty")->isVisible());
    tree("extensionsView")->model()->removeRow(0);
    QTRY_VERIFY(find<>("noticeEmpty")->isVisible());
    QTest::mouseClick(find<>("btnAddFirstConfig"), Qt::LeftButton);
    QCOMPARE(tree("eglConfigsView")->model()->rowCount(), 1);
    QTRY_VERIFY(!find<>("noticeEmpty")->isVisible());
}

void TestProfilePanelSaving::theChooserFollowsTheQuestion()
{
    chooser()->setCurrentIndex(1);
    const QString builtin = chooser()->currentText();
    click("btnEdit");
    enterDevice(QStringLiteral("A copy"));
    m_answers.press(saveTitle, QStringLiteral("Save"));
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    choose(QStringLiteral("Mine (mine.xml)"));
    QCOMPARE(chooser()->currentText(), builtin);
    m_answers.press(saveTitle, QStringLiteral("Save"));
    m_answers.press(saveTitle, QStringLiteral("Copy"));
    m_answers.enter(fileNameTitle, QStringLiteral("copy.xml"));
    choose(QStringLiteral("Mine (mine.xml)"));
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine (mine.xml)"));
    QCOMPARE(device(), QStringLiteral("Mine"));
    QVERIFY(content(QStringLiteral("copy.xml")).contains(QStringLiteral("A copy")));
}

void TestProfilePanelSaving::withoutAFolderOneIsChosen()
{
    unsetenv("CORVALE_PROFILE_PATH");
    m_window.reloadProfiles();
    chooser()->setCurrentIndex(1);
    click("btnEdit");
    m_answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("Cancel"));
    click("btnSaveAs");
    QVERIFY(isModifying());
    m_answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("Choose..."));
    m_answers.next(QStringLiteral("Choose directory"), [this](QWidget& widget) {
        auto& dialog = static_cast<QFileDialog&>(widget);
        dialog.setDirectory(m_folder);
        dialog.selectFile(m_folder);
        static_cast<QDialog&>(dialog).accept();
    });
    m_answers.enter(fileNameTitle, QStringLiteral("first.xml"));
    click("btnSaveAs");
    QVERIFY(!isModifying());
    QCOMPARE(files(), QStringList({QStringLiteral("first.xml"), QStringLiteral("mine.xml")}));
    QVERIFY(chooser()->currentText().endsWith(QStringLiteral("(first.xml)")));
}

int main(int argc, char** argv)
{
    return runOnProgram<TestProfilePanelSaving>(argc, argv);
}

#include "TestProfilePanelSaving.moc"
