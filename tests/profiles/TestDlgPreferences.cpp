#include "DialogAnswers.h"
#include "DlgPreferences.h"
#include "FileListWidget.h"
#include "MetaObjects.h"
#include "Preferences.h"
#include "Resources.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// The dialog over the preferences as they are on disk.
class Session {
public:
    Session()
        : dialog(loaded())
    {
        dialog.show();
    }
    Preferences* loaded()
    {
        std::string error;
        preferences.load(error);
        return &preferences;
    }
    template <typename Widget> Widget& find(const char* name) const
    {
        return *dialog.findChild<Widget*>(QLatin1String(name));
    }
    void click(const char* button) const
    {
        auto& widget = find<QAbstractButton>(button);
        QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, QPoint(10, widget.height() / 2));
    }
    void finish(QDialogButtonBox::StandardButton button) const
    {
        QTest::mouseClick(find<QDialogButtonBox>("buttonBox").button(button), Qt::LeftButton);
    }
    FileListWidget& files() const { return find<FileListWidget>("lstImportFiles"); }
    QPushButton& import() const { return find<QPushButton>("btnImport"); }

    Preferences preferences;
    DlgPreferences dialog;
    DialogAnswers answers;
};

DialogAnswers::Answer enterNames(const QString& folder, const QString& text)
{
    return [folder, text](QWidget& widget) {
        static_cast<QFileDialog&>(widget).setDirectory(folder);
        widget.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(text);
        static_cast<QDialog&>(widget).accept();
    };
}

} // namespace

class TestDlgPreferences : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerResources(); }
    void init();
    void storesWhenAcceptedAlone();
    void storesNoDirectoryOfTheEnvironment();
    void offersToMakeTheDirectory();
    void advancedKeepsTheWidth();
    void fileListTakesDeleteAlone();
    void imports_data();
    void imports();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    QByteArray contentOf(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestDlgPreferences::init()
{
    QDir(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brindlewood")).removeRecursively();
    m_folder = std::make_unique<QTemporaryDir>();
}

void TestDlgPreferences::storesWhenAcceptedAlone()
{
    qputenv("CORVALE_PROFILE_PATH", "/somewhere");
    QCOMPARE(ownMethods(DlgPreferences::staticMetaObject),
        QStringList({"accept()", "browseProfilesDirectory()", "importBrowseProfiles()", "importProfiles()",
            "advancedExpandChanged(int)", "updateImportButtonText()", "showWhatsThisContextMode()"}));
    QVERIFY(QDir().mkdir(path(QStringLiteral("Büro"))));
    for (const auto button : {QDialogButtonBox::Cancel, QDialogButtonBox::Ok}) {
        Session session;
        QCOMPARE(session.find<QLineEdit>("txtProfilesDirectory").text(), QStringLiteral("/somewhere"));
        QVERIFY(session.find<QRadioButton>("radioLoose").isChecked());
        session.find<QLineEdit>("txtProfilesDirectory").setText(path(QStringLiteral("Büro")));
        session.click("radioStrict");
        session.finish(button);
        QVERIFY(!session.dialog.isVisible());
    }
    const Session next;
    QCOMPARE(next.find<QLineEdit>("txtProfilesDirectory").text(), path(QStringLiteral("Büro")));
    QVERIFY(next.find<QRadioButton>("radioStrict").isChecked());
}

void TestDlgPreferences::storesNoDirectoryOfTheEnvironment()
{
    const auto hint = [](const Session& session) {
        return session.find<QLabel>("lblDirectoryHint").text();
    };
    qunsetenv("CORVALE_PROFILE_PATH");
    {
        const Session session;
        QVERIFY2(
            hint(session).startsWith(QStringLiteral("No directory is in force")), qPrintable(hint(session)));
        session.finish(QDialogButtonBox::Ok);
    }
    for (const QString& folder : {m_folder->path(), QDir::tempPath()}) {
        qputenv("CORVALE_PROFILE_PATH", QFile::encodeName(folder));
        const Session session;
        QCOMPARE(session.find<QLineEdit>("txtProfilesDirectory").text(), folder);
        QVERIFY2(hint(session).contains(QStringLiteral("CORVALE_PROFILE_PATH")), qPrintable(hint(session)));
        session.click("radioStrict");
        session.finish(QDialogButtonBox::Ok);
    }
    qunsetenv("CORVALE_PROFILE_PATH");
}

void TestDlgPreferences::offersToMakeTheDirectory()
{
    Session session;
    auto& directory = session.find<QLineEdit>("txtProfilesDirectory");
    const auto finish = [&](const char* text, const char* title, const char* button) {
        directory.setText(path(QString::fromLatin1(text)));
        session.answers.press(QString::fromLatin1(title), QString::fromLatin1(button));
        session.finish(QDialogButtonBox::Ok);
        QCOMPARE(session.answers.problems(), QStringList());
    };
    finish("new/one", "Preferences", "Cancel");
    QVERIFY(session.dialog.isVisible());
    QVERIFY(!QFile::exists(path(QStringLiteral("new"))));
    QFile file(path(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    finish("file", "Preferences", "OK");
    QVERIFY(session.dialog.isVisible());
    QCOMPARE(QString::fromStdString(session.preferences.get(settings::profilesDirectory)), QString());
    finish("new/one", "Preferences", "Make Directory");
    QVERIFY(!session.dialog.isVisible());
    QVERIFY(QFileInfo(path(QStringLiteral("new/one"))).isDir());
    QCOMPARE(session.preferences.get(settings::profilesDirectory), directory.text().toStdString());
}

void TestDlgPreferences::advancedKeepsTheWidth()
{
    const Session session;
    const QSize collapsed = session.dialog.size();
    QCOMPARE(session.dialog.maximumHeight(), collapsed.height());
    session.click("chkExpandProfilesAdvanced");
    QCOMPARE(session.dialog.maximumHeight(), 16777125);
    QCOMPARE(session.dialog.width(), collapsed.width());
    QVERIFY(session.files().isVisible());
    QVERIFY(session.dialog.height() >= collapsed.height() + session.files().height());
    session.click("chkExpandProfilesAdvanced");
    QCOMPARE(session.dialog.size(), collapsed);
    QCOMPARE(session.dialog.maximumHeight(), collapsed.height());
}

void TestDlgPreferences::fileListTakesDeleteAlone()
{
    Session session;
    session.click("chkExpandProfilesAdvanced");
    session.dialog.activateWindow();
    FileListWidget& list = session.files();
    QSignalSpy changes(&list, &FileListWidget::itemsChanged);
    QVERIFY(!session.import().isEnabled());
    list.addFiles({"alpha", "beta", "gamma"});
    QCOMPARE(changes.count(), 1);
    QCOMPARE(session.import().text(), QStringLiteral("Merge"));
    list.setFocus();
    list.setCurrentRow(-1);
    for (const int key : {Qt::Key_Delete, Qt::Key_B, Qt::Key_Down, Qt::Key_Return, Qt::Key_Escape})
        QTest::keyClick(&list, static_cast<Qt::Key>(key));
    QCOMPARE(list.selectedItems().size(), 0);
    QCOMPARE(changes.count(), 1);
    list.item(0)->setSelected(true);
    list.item(2)->setSelected(true);
    QTest::keyClick(&list, Qt::Key_Delete);
    QCOMPARE(changes.count(), 2);
    QCOMPARE(list.files(), QStringList("beta"));
    QCOMPARE(session.import().text(), QStringLiteral("Import"));
    QVERIFY(session.import().isEnabled());
    QTRY_VERIFY(list.hasFocus());
    QTest::keyClick(&list, Qt::Key_Tab);
    QVERIFY(!list.hasFocus());
}

void TestDlgPreferences::imports_data()
{
    const struct {
        const char* chosen;
        const char* target;
        const char* failure;
        int left;
    } rows[] = {{"\"Жук.xml\"", "out.xml", "", 0}, {"\"Жук.xml\" \"b.xml\"", "out.xml", "", 0},
        {"\"Жук.xml\"", "", "", 1}, {"\"b.xml\"", "", "Failed to import profile", 1},
        {"\"Жук.xml\"", "sealed", "Error", 0}};
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("failure");
    QTest::addColumn<int>("left");
    for (const auto& row : rows)
        QTest::addRow("%s to '%s'", row.chosen, row.target)
            << QString::fromUtf8(row.chosen) << row.target << row.failure << row.left;
}

void TestDlgPreferences::imports()
{
    QFETCH(const QString, chosen);
    QFETCH(const QString, target);
    QFETCH(const QString, failure);
    QFETCH(const int, left);
    const QByteArray whole = "<profile>\n    <es version=\"2\"/>\n    <egl/>\n</profile>\n";
    const auto write = [this](const QString& name, const QByteArray& content) {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    };
    write(QStringLiteral("Жук.xml"), whole);
    write(QStringLiteral("b.xml"), "<profile><es version='3'/></profile>");
    Session session;
    session.find<QLineEdit>("txtProfilesDirectory").setText(m_folder->path());
    session.click("chkExpandProfilesAdvanced");
    session.answers.next(QStringLiteral("Select profile data files"), enterNames(m_folder->path(), chosen));
    session.click("btnImportBrowse");
    if (failure != QLatin1String("Failed to import profile")) {
        // What is in the way of the temporary file keeps everybody from writing, whoever they are.
        if (target == QLatin1String("sealed"))
            QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("sealed.tmp")));
        session.answers.next(
            QStringLiteral("Save file..."), target.isEmpty() ? [](QWidget&) { } : enterNames(m_folder->path(), target));
    }
    if (!failure.isEmpty())
        session.answers.press(failure, QStringLiteral("OK"));
    session.click("btnImport");
    QCOMPARE(session.answers.problems(), QStringList());
    QCOMPARE(session.files().count(), left);
    const bool saved = failure.isEmpty() && !target.isEmpty();
    QCOMPARE(session.dialog.savedFiles(), saved ? QStringList(path(target)) : QStringList());
    QByteArray expected = chosen.contains(QLatin1String("b.xml"))
        ? QByteArray(whole).replace("</profile>", "    <es version=\"3\"/>\n</profile>")
        : whole;
    QCOMPARE(contentOf(QStringLiteral("out.xml")), saved ? expected : QByteArray("no file"));
}

QTEST_MAIN(TestDlgPreferences)
#include "TestDlgPreferences.moc"
