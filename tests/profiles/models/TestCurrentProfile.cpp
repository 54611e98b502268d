#include "CurrentProfile.h"
#include "Preferences.h"
#include "ProfileCatalogue.h"
#include "ProfileController.h"
#include "ProfileDataWrapper.h"
#include "ProfileEditor.h"
#include "ProfileFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using models::CurrentProfile;
using State = CurrentProfile::State;

namespace {

const QByteArray documentA = "<profile><device>A</device></profile>";

/// Answers the questions of saving; saves as the program does.
class Answers : public ProfileController {
public:
    std::string directoryForSaving() override { return directory; }
    bool askForCopy() override { return wantsCopy; }
    bool mayReplace(const std::string& fileName) override
    {
        replaced.append(QString::fromStdString(fileName));
        return mayReplaceFile;
    }
    bool save(ProfileData& profile, const std::string& folder) override
    {
        return !isDiskFull && !profile_file::write(profile, folder);
    }
    bool saveAs(ProfileData& profile, const std::string& folder) override
    {
        suggested = profile.fileName();
        profile.setFileName(enteredName);
        return !enteredName.empty() && save(profile, folder);
    }

    std::string directory;
    std::string enteredName;
    std::string suggested;
    QStringList replaced;
    bool wantsCopy = false;
    bool mayReplaceFile = false;
    bool isDiskFull = false;
};

class Editor : public ProfileEditor {
public:
    bool hasUnsavedEdits() override { return hasEdits; }
    bool mayLeave() override { return !hasEdits || leave(); }

    bool hasEdits = false;
    std::function<bool()> leave = [] {
        return false;
    };
};

/// A folder with a.xml and b.xml, a.xml being chosen, and all that is announced then.
struct Fixture {
    Fixture()
    {
        write("a.xml", documentA);
        write("b.xml", "<profile><device>B</device></profile>");
        qputenv("CORVALE_PROFILE_PATH", QFile::encodeName(folder.path()));
        std::string error;
        preferences.load(error);
        catalogue.emplace(preferences, builtins);
        answers.directory = folder.path().toStdString();
        current.setEditor(&editor);
        current.setCatalogue(*catalogue);
        current.choose(catalogue->find("a.xml"));
        const auto add = [this](const QString& text) {
            log.append(text);
        };
        QObject::connect(&current, &CurrentProfile::listChanged, [add] { add("list"); });
        QObject::connect(&current, &CurrentProfile::chosenChanged,
            [add](const WeakProfile& profile) { add("chosen " + nameOf(profile)); });
        preferences.setSaveObserver([add](const SaveOutcome& outcome) {
            add(std::holds_alternative<save_outcome::Saved>(outcome) ? "remembered" : "not remembered");
        });
        QObject::connect(&current, &CurrentProfile::shownChanged,
            [add](const WeakProfile& profile) { add("shown " + nameOf(profile)); });
        QObject::connect(&current, &CurrentProfile::shownLost, [add] { add("lost"); });
        QObject::connect(&current, &CurrentProfile::editsDiscarded, [add] { add("discarded"); });
        QObject::connect(&current, &CurrentProfile::fileSaved,
            [add](const QString& path) { add("file " + QFileInfo(path).fileName()); });
    }

    static QString nameOf(const WeakProfile& profile)
    {
        const auto alive = profile.lock();
        return alive ? QString::fromStdString(alive->data().displayName()) : QStringLiteral("none");
    }
    void write(const char* name, const QByteArray& content) const
    {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), qint64(content.size()));
    }
    QByteArray content(const char* name) const
    {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    }
    void remove(const char* name) const
    {
        QVERIFY(QFile::remove(folder.filePath(QString::fromLatin1(name))));
    }
    /// What is stored with another device.
    ProfileData edited(const std::string& device) const
    {
        ProfileData document = *current.stored();
        document.setDevice(device);
        return document;
    }
    QString stored() const
    {
        return current.stored() ? QString::fromStdString(current.stored()->device()) : QStringLiteral("none");
    }
    QString chosen() const { return nameOf(current.chosen()); }
    QString remembered() const { return nameOf(catalogue->current()); }
    /// What was announced since the last time.
    QString announced()
    {
        QString text = log.join(QStringLiteral(", "));
        log.clear();
        return text;
    }

    static constexpr std::array<builtin_profiles::TextEntry, 1> builtins{
        {{"fixed.xml", "<profile><device>Fixed</device></profile>"}}};

    QTemporaryDir folder;
    Preferences preferences;
    std::optional<ProfileCatalogue> catalogue;
    Answers answers;
    Editor editor;
    CurrentProfile current{&answers};
    QStringList log;
};

} // namespace

class TestCurrentProfile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QDir(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brindlewood")).removeRecursively();
    }

    void choosing();
    void goingBack();
    void reloading();
    void losing_data();
    void losing();
    void newAndCancelled();
    void newAndSaved();
    void savingInPlace();
    void nextSaveKeepsMarkup();
    void failedSaveIsTakenBack();
    void savingCopies();
};

void TestCurrentProfile::choosing()
{
    Fixture f;
    QCOMPARE(f.current.state(), State::Listed);
    QVERIFY(f.current.choose(f.catalogue->find("b.xml")));
    QCOMPARE(f.announced(), QStringLiteral("chosen B, shown B, remembered"));
    QCOMPARE(f.remembered(), QStringLiteral("B"));
    QCOMPARE(f.stored(), QStringLiteral("B"));
    QVERIFY(f.current.choose(f.catalogue->find("b.xml")));
    QCOMPARE(f.announced(), QStringLiteral("remembered"));
    QVERIFY(!f.current.choose(ProfileDataWrapper::fromText("<profile/>", true)));
    QCOMPARE(f.announced(), QString());

    QVERIFY(f.current.choose(nullptr));
    QCOMPARE(f.announced(), QStringLiteral("chosen none, shown none, remembered"));
    QCOMPARE(f.current.state(), State::None);
    QCOMPARE(f.stored(), QStringLiteral("none"));
    QCOMPARE(f.remembered(), QStringLiteral("none"));
    QCOMPARE(Fixture::nameOf(f.current.lastListed()), QStringLiteral("B"));
    QVERIFY(!f.current.save(ProfileData()));
}

void TestCurrentProfile::goingBack()
{
    Fixture f;
    f.editor.hasEdits = true;
    QVERIFY(!f.current.choose(f.catalogue->find("b.xml")));
    QCOMPARE(f.announced(), QString());
    QCOMPARE(f.chosen(), QStringLiteral("A"));
    QCOMPARE(f.remembered(), QStringLiteral("A"));

    // The answer to the question saves before the choice goes on.
    f.editor.leave = [&f] {
        f.editor.hasEdits = false;
        return f.current.save(f.edited("A2"));
    };
    QVERIFY(f.current.choose(f.catalogue->find("b.xml")));
    QCOMPARE(f.announced(), QStringLiteral("list, file a.xml, chosen B, shown B, remembered"));
    QVERIFY(f.content("a.xml").contains("A2"));
    QCOMPARE(f.current.state(), State::Listed);

    // It may also make the wanted one leave the list.
    f.editor.hasEdits = true;
    f.editor.leave = [&f] {
        f.remove("a.xml");
        f.current.reload();
        return true;
    };
    QVERIFY(!f.current.choose(f.catalogue->find("a.xml")));
    QCOMPARE(f.chosen(), QStringLiteral("B"));
}

void TestCurrentProfile::reloading()
{
    Fixture f;
    const WeakProfile before = f.current.chosen();
    f.current.reload();
    QCOMPARE(f.announced(), QStringLiteral("list"));
    QCOMPARE(f.current.chosen(), before.lock());

    bool wasAlive = false;
    connect(&f.current, &CurrentProfile::chosenChanged, this, [&] { wasAlive = !before.expired(); });
    f.write("a.xml", "<profile><device>Changed</device></profile>");
    f.current.reload();
    QCOMPARE(f.announced(), QStringLiteral("list, chosen Changed, shown Changed"));
    QCOMPARE(f.stored(), QStringLiteral("Changed"));
    QVERIFY(wasAlive);
    QVERIFY(before.expired());

    // One without a file has no key to be found by.
    const auto unsaved = f.catalogue->newProfile();
    f.current.setCatalogue(*f.catalogue);
    QVERIFY(f.current.choose(unsaved));
    f.current.reload();
    QCOMPARE(f.current.chosen(), unsaved);
    f.catalogue->forget(*unsaved);
    f.current.choose(f.catalogue->find("a.xml"));
    f.announced();

    // What is remembered stays, and so the profile is chosen again when it is back.
    f.remove("a.xml");
    f.current.reload();
    QCOMPARE(f.announced(), QStringLiteral("list, chosen none, shown none"));
    f.write("a.xml", documentA);
    f.current.reload();
    QCOMPARE(f.announced(), QStringLiteral("list, chosen A, shown A"));
}

void TestCurrentProfile::losing_data()
{
    QTest::addColumn<bool>("save");
    QTest::newRow("and saving as a new one") << true;
    QTest::newRow("and discarding") << false;
}

void TestCurrentProfile::losing()
{
    QFETCH(const bool, save);
    Fixture f;
    f.editor.hasEdits = true;
    f.remove("a.xml");
    f.current.reload();
    QCOMPARE(f.announced(), QStringLiteral("list, chosen none, lost"));
    QCOMPARE(f.current.state(), State::Lost);
    QCOMPARE(f.stored(), QStringLiteral("A"));
    // It is told once, and other changes of the list leave the edits where they are.
    f.write("a.xml", "<profile><device>Other</device></profile>");
    f.current.reload();
    QCOMPARE(f.announced(), QStringLiteral("list, chosen Other"));
    QCOMPARE(f.current.state(), State::Lost);

    if (!save) {
        f.current.discard();
        QCOMPARE(f.announced(), QStringLiteral("shown Other"));
        QCOMPARE(f.current.state(), State::Listed);
        return;
    }
    QVERIFY(!f.current.save(f.edited("Kept")));
    QCOMPARE(f.current.state(), State::Lost);
    QCOMPARE(f.answers.suggested, std::string("a.xml"));
    f.answers.enteredName = "c.xml";
    f.editor.hasEdits = false;
    QVERIFY(f.current.save(f.edited("Kept")));
    QCOMPARE(f.announced(), QStringLiteral("list, chosen Kept, remembered, file c.xml"));
    QCOMPARE(f.current.state(), State::Listed);
    QVERIFY(f.content("a.xml").contains("Other"));
}

void TestCurrentProfile::newAndCancelled()
{
    Fixture f;
    const std::size_t before = f.catalogue->userProfiles().size();
    f.current.newProfile();
    QCOMPARE(f.announced(), QStringLiteral("shown New profile"));
    QCOMPARE(f.current.state(), State::UnsavedNew);
    QCOMPARE(f.chosen(), QStringLiteral("A"));
    QCOMPARE(Fixture::nameOf(f.current.lastListed()), QStringLiteral("A"));
    QCOMPARE(f.catalogue->userProfiles().size(), before);
    f.current.reload();
    QCOMPARE(f.announced(), QStringLiteral("list"));
    QCOMPARE(f.current.state(), State::UnsavedNew);

    // It never lands in the file of the chosen one.
    QVERIFY(!f.current.save(f.edited("Mine")));
    QCOMPARE(f.current.state(), State::UnsavedNew);
    QCOMPARE(f.content("a.xml"), documentA);
    f.current.discard();
    QCOMPARE(f.announced(), QStringLiteral("shown A"));
    QCOMPARE(f.current.state(), State::Listed);
    QCOMPARE(f.stored(), QStringLiteral("A"));

    // One without edits goes when another profile is chosen.
    f.current.newProfile();
    f.announced();
    QVERIFY(f.current.choose(nullptr));
    QCOMPARE(f.announced(), QStringLiteral("chosen none, shown none, remembered"));
    f.current.newProfile();
    f.answers.enteredName = "new.xml";
    QVERIFY(f.current.saveAs(f.edited("Mine")));
    QCOMPARE(f.chosen(), QStringLiteral("Mine"));
}

void TestCurrentProfile::newAndSaved()
{
    Fixture f;
    f.answers.enteredName = "new.xml";
    f.current.newProfile();
    QCOMPARE(f.announced(),
        QStringLiteral("shown New profile, list, chosen New profile, remembered, file new.xml"));
    QCOMPARE(f.current.state(), State::Listed);
    QCOMPARE(f.current.chosen(), f.current.lastListed().lock());
    QCOMPARE(f.remembered(), QStringLiteral("New profile"));
}

void TestCurrentProfile::savingInPlace()
{
    Fixture f;
    const auto before = f.current.chosen();
    QVERIFY(f.current.save(f.edited("A2")));
    QCOMPARE(f.announced(), QStringLiteral("list, file a.xml"));
    QCOMPARE(f.current.chosen(), before);
    QCOMPARE(f.stored(), QStringLiteral("A2"));
    QVERIFY(f.content("a.xml").contains("A2"));

    // What is in the file already is not written again.
    f.answers.isDiskFull = true;
    QVERIFY(f.current.save(f.edited("A2")));
    QCOMPARE(f.announced(), QString());
    f.answers.isDiskFull = false;

    // Another program's content is not replaced without a question.
    f.write("a.xml", documentA);
    QVERIFY(!f.current.save(f.edited("A3")));
    QCOMPARE(f.answers.replaced, QStringList("a.xml"));
    QCOMPARE(f.content("a.xml"), documentA);
    f.answers.mayReplaceFile = true;
    QVERIFY(f.current.save(f.edited("A3")));
    QVERIFY(f.content("a.xml").contains("A3"));

    f.answers.directory.clear();
    QVERIFY(!f.current.save(f.edited("A4")));
    QCOMPARE(f.stored(), QStringLiteral("A3"));
}

void TestCurrentProfile::nextSaveKeepsMarkup()
{
    Fixture f;
    f.write("a.xml",
        "<profile><device>A</device><es version='2'><x u='1'>1</x><x u='2'>2</x><x "
        "u='3'>3</x></es></profile>");
    f.current.reload();
    ProfileData edited = *f.current.stored();
    std::vector<ProfileNode>& nodes = edited.capabilities()[2];
    nodes.erase(nodes.begin());
    f.announced();
    QVERIFY(f.current.save(edited));
    QCOMPARE(f.announced(), QStringLiteral("list, file a.xml"));
    edited = *f.current.stored();
    edited.capabilities()[2][0].value = "5";
    edited.capabilities()[2][1].value = "6";
    QVERIFY(f.current.save(edited));
    QVERIFY(f.content("a.xml").contains("<x u=\"2\">5</x>"));
    QVERIFY(f.content("a.xml").contains("<x u=\"3\">6</x>"));
}

void TestCurrentProfile::failedSaveIsTakenBack()
{
    Fixture f;
    const auto profile = f.current.chosen();
    f.answers.isDiskFull = true;
    QVERIFY(!f.current.save(f.edited("Failed")));
    QCOMPARE(f.announced(), QString());
    QCOMPARE(f.stored(), QStringLiteral("A"));
    f.current.discard();
    QCOMPARE(f.announced(), QStringLiteral("discarded"));
    QCOMPARE(profile->data().device(), std::string("A"));

    QVERIFY(!f.current.save(f.edited("Failed")));
    QVERIFY(f.current.choose(nullptr));
    QCOMPARE(profile->data().device(), std::string("A"));

    QVERIFY(f.current.choose(profile));
    QVERIFY(!f.current.save(f.edited("Failed")));
    f.answers.isDiskFull = false;
    f.answers.enteredName = "copy.xml";
    QVERIFY(f.current.saveAs(f.edited("Copy")));
    QCOMPARE(profile->data().device(), std::string("A"));
}

void TestCurrentProfile::savingCopies()
{
    Fixture f;
    const std::size_t before = f.catalogue->userProfiles().size();
    QVERIFY(!f.current.saveAs(f.edited("Copy")));
    QCOMPARE(f.catalogue->userProfiles().size(), before);
    f.answers.enteredName = "copy.xml";
    QVERIFY(f.current.saveAs(f.edited("Copy")));
    QCOMPARE(f.answers.suggested, std::string("A (copy).xml"));
    QCOMPARE(f.announced(), QStringLiteral("list, chosen Copy, remembered, file copy.xml"));
    QCOMPARE(f.content("a.xml"), documentA);
    QCOMPARE(f.catalogue->find("a.xml")->data().device(), std::string("A"));
    QCOMPARE(f.stored(), QStringLiteral("Copy"));

    QVERIFY(f.current.choose(f.catalogue->find("Fixed")));
    f.announced();
    QVERIFY(!f.current.save(f.edited("Mine")));
    QCOMPARE(f.announced(), QString());
    f.answers.wantsCopy = true;
    f.answers.enteredName = "mine.xml";
    QVERIFY(f.current.save(f.edited("Mine")));
    QCOMPARE(f.announced(), QStringLiteral("list, chosen Mine, remembered, file mine.xml"));
    QCOMPARE(f.catalogue->find("Fixed")->data().device(), std::string("Fixed"));
}

QTEST_GUILESS_MAIN(TestCurrentProfile)
#include "TestCurrentProfile.moc"
