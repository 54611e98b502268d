#include "DialogAnswers.h"
#include "ProfileData.h"
#include "ProfileMetaTypes.h"
#include "ProfileReader.h"
#include "ProfileSaving.h"
#include "ProfileWriter.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestProfileSaving : public QObject {
    Q_OBJECT

private slots:
    void init();
    void savesWithoutQuestionWhenThereIsAName();
    void asksForAName();
    void withoutANameNothingIsWritten_data();
    void withoutANameNothingIsWritten();
    void failuresAreShown_data();
    void failuresAreShown();
    void weakReferencesHaveTheirTypeName();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    std::string folder() const { return m_folder->path().toStdString(); }
    QString contentOf(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("no file");
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    ProfileData m_profile;
    QString m_xml;
};

void TestProfileSaving::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_profile = readProfile("<profile><device>Foo \xC3\xA9</device></profile>");
    m_xml = QString::fromStdString(writeProfile(m_profile));
}

void TestProfileSaving::savesWithoutQuestionWhenThereIsAName()
{
    m_profile.setFileName("a.xml");
    QVERIFY(profile_saving::save(m_profile, folder()));
    QCOMPARE(contentOf(QStringLiteral("a.xml")), m_xml);
}

void TestProfileSaving::asksForAName()
{
    QWidget window;
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const QString title = QStringLiteral("Choose a file name");
    const QString name = QStringLiteral("B\u00fcro.xml");
    DialogAnswers answers;
    answers.next(title, [&](QWidget& widget) {
        auto& dialog = static_cast<QInputDialog&>(widget);
        QCOMPARE(dialog.parentWidget(), &window);
        QCOMPARE(dialog.labelText(), QStringLiteral("File name:"));
        QCOMPARE(dialog.textValue(), QStringLiteral("Foo \u00e9.xml"));
        dialog.setTextValue(name);
        dialog.accept();
    });
    QVERIFY(profile_saving::save(m_profile, folder()));
    QCOMPARE(QString::fromStdString(m_profile.fileName()), name);
    QCOMPARE(contentOf(name), m_xml);

    // A file that is there is replaced only if the user says so, and else they are asked again.
    m_profile.setDevice("Bar");
    answers.enter(title, name);
    answers.press(title, QStringLiteral("Cancel"));
    answers.enter(title, QString());
    QVERIFY(!profile_saving::saveAs(m_profile, folder()));
    QCOMPARE(contentOf(name), m_xml);
    // What is no name of a file is refused before anything else is asked.
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("sub")));
    for (const char* unusable : {"..", ".", "a/b", ".hidden", "a.tmp", "sub"}) {
        answers.enter(title, QString::fromLatin1(unusable));
        answers.press(title, QStringLiteral("OK"));
    }
    answers.enter(title, name);
    answers.press(title, QStringLiteral("Replace"));
    QVERIFY(profile_saving::saveAs(m_profile, folder()));
    QCOMPARE(contentOf(name), QString::fromStdString(writeProfile(m_profile)));
    QCOMPARE(answers.problems(), QStringList());
}

void TestProfileSaving::withoutANameNothingIsWritten_data()
{
    QTest::addColumn<bool>("cancels");
    QTest::addColumn<QString>("name");
    QTest::newRow("cancelled") << true << "";
    QTest::newRow("cancelled save-as") << true << "kept.xml";
    QTest::newRow("nothing entered") << false << "kept.xml";
}

void TestProfileSaving::withoutANameNothingIsWritten()
{
    QFETCH(const bool, cancels);
    QFETCH(const QString, name);
    m_profile.setFileName(name.toStdString());
    DialogAnswers answers;
    answers.next(QString(), [cancels](QWidget& widget) {
        auto& dialog = static_cast<QInputDialog&>(widget);
        if (!cancels)
            dialog.setTextValue(QString());
        dialog.done(cancels ? QDialog::Rejected : QDialog::Accepted);
    });
    QVERIFY(!profile_saving::saveAs(m_profile, folder()));
    QCOMPARE(QString::fromStdString(m_profile.fileName()), name);
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

void TestProfileSaving::failuresAreShown_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("informativeText");
    QTest::newRow("could not open") << "/no<b>ne"
                                    << "a"
                                    << "Could not open file '%1/no<b>ne/n.xml'";
    QTest::newRow("other") << ""
                           << "<b>"
                           << "Cannot write %1/n.xml so that it can be read again: "
                              "'<b>' is no name of an XML element";
}

void TestProfileSaving::failuresAreShown()
{
    QFETCH(const QString, folder);
    QFETCH(const QString, element);
    QFETCH(const QString, informativeText);
    m_profile.setFileName("before.xml");
    m_profile.configs()[1].push_back({element.toStdString(), "", {}});
    DialogAnswers answers;
    answers.enter(QString(), QStringLiteral("n.xml"));
    answers.next(QStringLiteral("Corvale GUI"), [&](QWidget& widget) {
        auto& box = static_cast<QMessageBox&>(widget);
        QCOMPARE(box.text(), QStringLiteral("Failed to save file"));
        QCOMPARE(box.informativeText(), informativeText.arg(m_folder->path()));
        QCOMPARE(box.standardButtons(), QMessageBox::Ok);
        QCOMPARE(box.icon(), QMessageBox::Critical);
        box.accept();
    });
    QVERIFY(!profile_saving::saveAs(m_profile, (m_folder->path() + folder).toStdString()));
    QCOMPARE(answers.problems(), QStringList());
    QCOMPARE(m_profile.fileName(), std::string("before.xml"));
}

void TestProfileSaving::weakReferencesHaveTheirTypeName()
{
    registerProfileMetaTypes();
    const QMetaType type = QMetaType::fromName("std::weak_ptr<const ProfileDataWrapper>");
    QCOMPARE(type, QMetaType::fromType<WeakProfile>());
    QCOMPARE(QByteArray(type.name()), QByteArray("std::weak_ptr<const ProfileDataWrapper>"));
}

QTEST_MAIN(TestProfileSaving)
#include "TestProfileSaving.moc"
