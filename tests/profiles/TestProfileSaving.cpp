#include "ProfileData.h"
#include "ProfileMetaTypes.h"
#include "ProfileSaving.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QInputDialog>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

/// Answers the next modal dialog as soon as it is up. One that a failed check has left open is closed.
template <typename Dialog> void answerNext(const std::function<void(Dialog&)>& answer)
{
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, answer] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        timer->deleteLater();
        timer->stop();
        answer(*dialog);
        if (dialog->isVisible())
            dialog->reject();
    });
    timer->start(10);
}

} // namespace

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
    m_profile = ProfileData::fromText("<profile><device>Foo \xC3\xA9</device></profile>");
    m_xml = QString::fromStdString(m_profile.toXml());
}

void TestProfileSaving::savesWithoutQuestionWhenThereIsAName()
{
    m_profile.setFileName("a.xml");
    QVERIFY(profilesaving::save(m_profile, folder()));
    QCOMPARE(contentOf(QStringLiteral("a.xml")), m_xml);
}

void TestProfileSaving::asksForAName()
{
    QWidget window;
    window.show();
    const auto answer = [&](const QString& suggestion) {
        answerNext<QInputDialog>([&window, suggestion](QInputDialog& dialog) {
            QCOMPARE(dialog.parentWidget(), &window);
            QCOMPARE(dialog.windowTitle(), QStringLiteral("Choose a file name"));
            QCOMPARE(dialog.labelText(), QStringLiteral("File name:"));
            QCOMPARE(dialog.textValue(), suggestion);
            dialog.setTextValue(QStringLiteral("B\u00fcro.xml"));
            dialog.accept();
        });
        // Armed before, so that no dialog waits for an answer when this fails.
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    };
    answer(QStringLiteral("Foo \u00e9.xml"));
    QVERIFY(profilesaving::save(m_profile, folder()));
    QCOMPARE(QString::fromStdString(m_profile.fileName()), QStringLiteral("B\u00fcro.xml"));
    QCOMPARE(contentOf(QStringLiteral("B\u00fcro.xml")), m_xml);

    m_profile.setFileName("old.xml");
    answer(QStringLiteral("old.xml"));
    QVERIFY(profilesaving::saveAs(m_profile, folder()));
    QCOMPARE(QString::fromStdString(m_profile.fileName()), QStringLiteral("B\u00fcro.xml"));
    QVERIFY(!QFile::exists(path(QStringLiteral("old.xml"))));
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
    answerNext<QInputDialog>([cancels](QInputDialog& dialog) {
        if (!cancels)
            dialog.setTextValue(QString());
        dialog.done(cancels ? QDialog::Rejected : QDialog::Accepted);
    });
    QVERIFY(!profilesaving::saveAs(m_profile, folder()));
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
    bool shown = false;
    answerNext<QInputDialog>([&](QInputDialog& dialog) {
        answerNext<QMessageBox>([&](QMessageBox& box) {
            shown = true;
            QCOMPARE(box.windowTitle(), QStringLiteral("Corvale GUI"));
            QCOMPARE(box.text(), QStringLiteral("Failed to save file"));
            QCOMPARE(box.informativeText(), informativeText.arg(m_folder->path()));
            QCOMPARE(box.standardButtons(), QMessageBox::Ok);
            QCOMPARE(box.icon(), QMessageBox::Critical);
            box.accept();
        });
        dialog.setTextValue(QStringLiteral("n.xml"));
        dialog.accept();
    });
    QVERIFY(!profilesaving::saveAs(m_profile, (m_folder->path() + folder).toStdString()));
    QVERIFY(shown);
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
