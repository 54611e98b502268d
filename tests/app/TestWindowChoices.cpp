#include "ClientInterface.h"
#include "CurrentProfile.h"
#include "DialogAnswers.h"
#include "DlgPreferences.h"
#include "ErrorListView.h"
#include "FileReplacement.h"
#include "ProfileCatalogue.h"
#include "ProfileMetaTypes.h"
#include "RecentFilesMenu.h"
#include "Resources.h"
#include "Session.h"
#include "widgets/Profile.h"

#include <QComboBox>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QFontComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>
#include <QSignalSpy>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QToolButton>
#include <QWheelEvent>

#include <functional>

Q_DECLARE_METATYPE(std::function<void(Session&)>)

namespace {

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

} // namespace

/// What the window lets the user choose and keeps in the preferences.
class TestWindowChoices : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void openNothing(const QUrl&) { }

private Q_SLOTS:
    void initTestCase() { registerResources(); }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin)")));
        QDir(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brindlewood")).removeRecursively();
    }

    void consoleFont();
    void typedFont();
    void arrangementIsRemembered();
    void arrangementOfContextsIsRemembered();
    void contextsDoNotGrowTheWindow();
    void unreadablePreferencesAreKept_data();
    void unreadablePreferencesAreKept();
    void preferencesThatCannotBeSaved();
    void consoleFontSize();
    void profileChooser();
    void reloadDisturbsNobody();
    void recentProfiles();
};

void TestWindowChoices::consoleFont()
{
    Session session;
    session.connectApplication();
    auto& combo = *session.window.findChild<QFontComboBox*>(QStringLiteral("cmbFont"));
    const auto consoleFamily = [&session](int index) {
        return session.tabs()
            .widget(index)
            ->findChild<QTextEdit*>(QStringLiteral("txtConsole"))
            ->font()
            .family();
    };
    QCOMPARE(consoleFamily(0), combo.currentFont().family());
    const QString other = combo.itemText(combo.currentIndex() == 0 ? 1 : 0);
    combo.setCurrentFont(QFont(other));
    QCOMPARE(consoleFamily(0), other);
    session.connectApplication();
    QCOMPARE(consoleFamily(1), other);

    const Session next;
    QCOMPARE(next.window.findChild<QFontComboBox*>(QStringLiteral("cmbFont"))->currentFont().family(), other);
}

void TestWindowChoices::consoleFontSize()
{
    const qreal standard = QFontInfo(QApplication::font()).pointSizeF();
    const auto sizes = [](const Session& window) {
        QList<qreal> all;
        for (int i = 0; i < window.tabs().count(); ++i)
            all.append(window.tabs()
                           .widget(i)
                           ->findChild<QTextEdit*>(QStringLiteral("txtConsole"))
                           ->font()
                           .pointSizeF());
        return all;
    };
    {
        Session session;
        session.window.show();
        QVERIFY(QTest::qWaitForWindowActive(&session.window));
        session.connectApplication();
        session.connectApplication();
        QCOMPARE(sizes(session), QList<qreal>({standard, standard}));
        QTest::keyClick(&session.window, Qt::Key_Plus, Qt::ControlModifier);
        QCOMPARE(sizes(session), QList<qreal>({standard + 1, standard + 1}));
        QWidget* text =
            session.tabs().widget(0)->findChild<QTextEdit*>(QStringLiteral("txtConsole"))->viewport();
        for (const int angle : {120, 60, 60, -120, 240}) { // three notches in all
            QWheelEvent wheel(
                {9, 9}, text->mapToGlobal(QPointF(9, 9)), {}, {0, angle}, {}, Qt::ControlModifier, {}, false);
            QCoreApplication::sendEvent(text, &wheel);
        }
        QCOMPARE(sizes(session), QList<qreal>({standard + 4, standard + 4}));
        QTest::keyClick(&session.window, Qt::Key_Minus, Qt::ControlModifier);
        session.connectApplication();
        QCOMPARE(sizes(session), QList<qreal>(3, standard + 3));
    }
    Session next;
    next.window.show();
    QVERIFY(QTest::qWaitForWindowActive(&next.window));
    next.connectApplication();
    QCOMPARE(sizes(next), QList<qreal>({standard + 3}));
    QTest::keyClick(&next.window, Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(sizes(next), QList<qreal>({standard}));
    QCOMPARE(next.preferences.get(settings::consoleFontPoints), std::string("0"));

    const QFont before = QApplication::font();
    QFont larger = before;
    larger.setPointSizeF(standard + 2);
    QApplication::setFont(larger);
    QTRY_VERIFY(sizes(next).constFirst() > standard + 1);
    QApplication::setFont(before);
    for (int i = 0; i < standard; ++i)
        QTest::keyClick(&next.window, Qt::Key_Minus, Qt::ControlModifier);
    const qreal smallest = sizes(next).constFirst();
    QTest::keyClick(&next.window, Qt::Key_Equal, Qt::ControlModifier);
    QVERIFY2(sizes(next).constFirst() > smallest, "the first step back from the limit counts");
}

void TestWindowChoices::typedFont()
{
    Session session;
    session.window.show();
    session.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&session.window));
    auto& combo = *session.window.findChild<QFontComboBox*>(QStringLiteral("cmbFont"));
    const QString before = combo.currentFont().family();
    const QString other = combo.itemText(combo.currentIndex() == 0 ? 1 : 0);
    const QSignalSpy changes(&combo, &QFontComboBox::currentFontChanged);
    const auto type = [&combo](const QString& text) {
        combo.lineEdit()->setFocus();
        combo.lineEdit()->selectAll();
        QTest::keyClick(combo.lineEdit(), Qt::Key_Delete);
        QTest::keyClicks(combo.lineEdit(), text);
    };
    for (const char* text : {"zzz", ""}) {
        type(QString::fromLatin1(text));
        session.autoClose().setFocus();
        QCOMPARE(combo.currentText(), before);
    }
    QCOMPARE(changes.size(), 0);
    QCOMPARE(session.preferences.get(settings::guiFont), std::string());
    type(other.toLower());
    QTest::keyClick(combo.lineEdit(), Qt::Key_Return);
    QCOMPARE(combo.currentText(), other);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(session.preferences.get(settings::guiFont), other.toStdString());

    session.preferences.set(settings::guiFont, "zzz");
    const Session next;
    QCOMPARE(next.window.findChild<QFontComboBox*>(QStringLiteral("cmbFont"))->currentText(), before);
}

void TestWindowChoices::arrangementIsRemembered()
{
    const auto header = [](const Session& session) {
        return session.tabs().widget(0)->findChild<ErrorListView*>()->horizontalHeader();
    };
    const auto filters = [](const Session& session) {
        const ClientInterface& page = *session.tabs().pageAt(0);
        return QList<QCheckBox*>{page.findChild<QCheckBox*>(QStringLiteral("chkWarnings")),
            page.findChild<QCheckBox*>(QStringLiteral("chkErrors"))};
    };
    const auto splitters = [](const Session& session) {
        return session.window.findChild<widgets::Profile*>()->findChildren<QSplitter*>();
    };
    const auto sizesOf = [&splitters](const Session& session) {
        QList<int> sizes;
        for (const QSplitter* splitter : splitters(session))
            sizes += splitter->sizes();
        return sizes;
    };
    const auto pages = [](const Session& session) {
        return session.window.findChild<QTabWidget*>(QStringLiteral("mainTabWidget"));
    };
    auto first = std::make_unique<Session>();
    Session& session = *first;
    session.window.restorePlace();
    const QSize screen = session.window.screen()->availableSize();
    QCOMPARE(session.window.size(), (screen * 2 / 3).boundedTo({1200, 800}));
    session.window.show();
    pages(session)->setCurrentIndex(0);
    session.window.resize(780, 640);
    session.window.move(5000, 20);
    session.connectApplication();
    header(session)->resizeSection(1, 123);
    for (QCheckBox* box : filters(session))
        box->click();
    session.autoClose().click();
    QCoreApplication::processEvents();
    const QList<int> before = sizesOf(session);
    for (QSplitter* splitter : splitters(session)) {
        const QList<int> sizes = splitter->sizes();
        splitter->setSizes({sizes[0] - 30, sizes[1] + 30});
    }
    const QList<int> expected = sizesOf(session);
    for (int i = 0; i < expected.size(); i += 2)
        QVERIFY(expected[i] != before[i]);
    session.window.close();
    first.reset();

    Session next;
    next.window.restorePlace();
    next.window.show();
    next.connectApplication();
    QCoreApplication::processEvents();
    QCOMPARE(next.window.size(), QSize(780, 640));
    QVERIFY2(next.window.screen()->availableGeometry().intersects(next.window.geometry()),
        "the place was on a screen that is gone");
    QCOMPARE(pages(next)->currentIndex(), 0);
    QCOMPARE(sizesOf(next), expected);
    QCOMPARE(header(next)->sectionSize(1), 123);
    for (const QCheckBox* box : filters(next))
        QVERIFY(!box->isChecked());
    QVERIFY(next.autoClose().isChecked());
}

void TestWindowChoices::arrangementOfContextsIsRemembered()
{
    // An extension's number, 1 or above, decides how wide its name is.
    const auto newContext = [](Session& session, std::uint32_t extension) {
        ui::messages::Message record = records::context(1);
        record.setU32(ui::messages::offset::contextExtensions, extension);
        auto* pages = session.tabs().widget(0)->findChild<QTabWidget*>(QStringLiteral("tabWidget_contexts"));
        const int before = pages->count();
        session.applications[0]->send(record);
        [&] {
            QTRY_COMPARE(pages->count(), before + 1);
        }();
        pages->setCurrentIndex(before);
        QCoreApplication::processEvents();
        return pages->widget(before);
    };
    const auto drag = [](QWidget* handle, QPoint from) {
        QTest::mousePress(handle, Qt::LeftButton, {}, from);
        QTest::mouseMove(handle, from - QPoint(40, 0));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, from - QPoint(40, 0));
    };
    const auto arrangement = [](const QWidget* page) {
        return page->findChild<QSplitter*>()->sizes()
            << page->findChild<QTableView*>()->horizontalHeader()->sectionSize(0);
    };
    QList<int> expected;
    for (const bool isFirst : {true, false}) {
        Session session;
        session.window.restorePlace();
        session.window.resize(900, 600);
        session.window.show();
        session.connectApplication();
        const QWidget* page = newContext(session, 2);
        if (isFirst) {
            const QList<int> before = arrangement(page);
            QVERIFY2(arrangement(newContext(session, 1))[2] > before[2], "each by its names at first");
            QSplitterHandle* handle = page->findChild<QSplitter*>()->handle(1);
            drag(handle, handle->rect().center());
            const QHeaderView* header = page->findChild<QTableView*>()->horizontalHeader();
            drag(header->viewport(), {header->sectionSize(0) - 1, header->height() / 2});
            expected = arrangement(page);
            QVERIFY(expected[0] < before[0] && expected[2] < before[2]);
        }
        QCOMPARE(arrangement(page), expected);
        QCOMPARE(arrangement(newContext(session, 1)), expected);
        session.window.close();
    }
}

void TestWindowChoices::contextsDoNotGrowTheWindow()
{
    Session session;
    session.window.show();
    RawClient& application = session.connectApplication();
    QCoreApplication::processEvents();
    session.window.resize(session.window.minimumSizeHint());
    QCoreApplication::processEvents();
    const QSize before = session.window.size();
    application.send(records::bytes(records::context(1)));
    const auto* contexts =
        session.tabs().widget(0)->findChild<QTabWidget*>(QStringLiteral("tabWidget_contexts"));
    QTRY_COMPARE(contexts->count(), 1);
    QCoreApplication::processEvents();
    QVERIFY(contexts->isVisible());
    QCOMPARE(session.window.size(), before);
}

void TestWindowChoices::unreadablePreferencesAreKept_data()
{
    using Change = std::function<void(Session&)>;
    QTest::addColumn<Change>("change");
    const auto chooseOther = [](const char* name) {
        return [name](Session& session) {
            auto& combo = *session.window.findChild<QComboBox*>(QLatin1String(name));
            combo.setCurrentIndex(combo.currentIndex() == 0 ? 1 : 0);
        };
    };
    QTest::newRow("font") << Change(chooseOther("cmbFont"));
    QTest::newRow("profile") << Change(chooseOther("cmbProfile"));
    QTest::newRow("theme") << Change([](Session& session) {
        session.window.findChild<QAction*>(QStringLiteral("actionTheme_dark"))->trigger();
    });
    QTest::newRow("recent profiles") << Change(
        [](Session& session) { session.window.addRecentProfile(QStringLiteral("/a.xml")); });
    QTest::newRow("about box") << Change([](Session& session) {
        session.window.findChild<QCheckBox*>(QStringLiteral("chkShowAtStart"))->click();
    });
    QTest::newRow("preferences dialog")
        << Change([](Session& session) { DlgPreferences(&session.preferences, &session.window).accept(); });
    QTest::newRow("documentation") << Change([this](Session& session) {
        DialogAnswers answers;
        answers.press(QStringLiteral("Document not found"), QStringLiteral("Locate..."));
        answers.next(QString(), [](QWidget& dialog) {
            dialog.findChild<QLineEdit*>()->setText(QStringLiteral("/dev/null"));
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openNothing");
        session.window.onHelp();
        QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
        QCOMPARE(answers.problems(), QStringList());
    });
}

void TestWindowChoices::unreadablePreferencesAreKept()
{
    QFETCH(const std::function<void(Session&)>, change);
    QFile file(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brindlewood/Corvale.plist"));
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("my notes, no property list");
    file.close();
    Session session;
    const auto message = [&session] {
        return session.status("lblPreferences");
    };
    QVERIFY2(message().contains(file.fileName()), "it is announced at the start");
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("my notes, no property list"));
    ProfileCatalogue catalogue(session.preferences);
    session.window.setCatalogue(catalogue);
    change(session);
    QVERIFY2(message().contains(QStringLiteral("Corvale.plist.corrupt")), qPrintable(message()));
    QFile copy(file.fileName() + QStringLiteral(".corrupt"));
    QVERIFY(copy.open(QIODevice::ReadOnly));
    QCOMPARE(copy.readAll(), QByteArray("my notes, no property list"));
}

void TestWindowChoices::preferencesThatCannotBeSaved()
{
    const auto session = std::make_unique<Session>();
    session->window.show();
    const QString path =
        qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brindlewood/Corvale.plist");
    const auto choose = [&session](const char* theme) {
        session->window.findChild<QAction*>(QLatin1String(theme))->trigger();
    };
    const auto stored = [] {
        Preferences onDisk;
        return QString::fromStdString(Session::loaded(onDisk).get(settings::theme));
    };
    const auto& label = *session->window.findChild<QLabel*>(QStringLiteral("lblPreferences"));
    QVERIFY(QDir().mkpath(path + QStringLiteral(".tmp")));
    choose("actionTheme_dark");
    QVERIFY(label.isVisible());
    QVERIFY2(label.toolTip().contains(path) && label.text().contains(QStringLiteral("Is a directory")),
        qPrintable(label.text()));
    session->window.findChild<QToolButton*>(QStringLiteral("btnHidePreferencesMessage"))->click();
    QVERIFY(!label.isVisible());
    choose("actionTheme_light");
    QVERIFY(label.isVisible());
    QVERIFY(QDir().rmdir(path + QStringLiteral(".tmp")));
    choose("actionTheme_dark");
    QVERIFY2(!label.isVisible(), "a success takes the message away");

    auto other = std::make_unique<platform::FileReplacement>(QFile::encodeName(path).toStdString());
    QElapsedTimer time;
    time.start();
    choose("actionTheme_light");
    QVERIFY2(time.elapsed() < 2000, "the window must not wait for another process");
    QCOMPARE(stored(), QStringLiteral("dark"));
    QTRY_VERIFY_WITH_TIMEOUT(label.isVisible(), 10000);
    choose("actionTheme_system");
    other.reset();
    QTRY_COMPARE(stored(), QStringLiteral("system"));
    QVERIFY(!label.isVisible());
}

void TestWindowChoices::profileChooser()
{
    const QTemporaryDir folder;
    const auto write = [&folder](const char* name, const QByteArray& content) {
        writeFile(folder.filePath(QString::fromLatin1(name)), content);
    };
    write("b.xml", "<profile><device>Board</device></profile>");
    write("a.xml", "<profile><device>Board</device></profile>");
    write("broken.xml", "<profile>");
    qputenv("CORVALE_PROFILE_PATH", QFile::encodeName(folder.path()));

    Session session;
    ProfileCatalogue catalogue(session.preferences);
    session.window.setCatalogue(catalogue);
    auto& box = *session.window.findChild<QComboBox*>(QStringLiteral("cmbProfile"));
    QStringList texts;
    for (int i = 0; i < box.count(); ++i)
        texts.append(box.itemText(i));
    const auto builtins = static_cast<qsizetype>(catalogue.builtinProfiles().size());
    QCOMPARE(texts.first(), QStringLiteral("Host"));
    QCOMPARE(texts.mid(builtins + 1), QStringList({"Board (a.xml)", "Board (b.xml)"}));
    QCOMPARE(box.currentIndex(), 0);
    QCOMPARE(box.itemData(1).value<WeakProfile>().lock(), catalogue.builtinProfiles().front());
    const QString skipped = session.status("lblSkippedProfiles");
    QVERIFY2(skipped.startsWith(QStringLiteral("Skipped profile broken.xml: ")), qPrintable(skipped));

    const auto stored = [] {
        PlistPreferences onDisk(settings::storeName, TSRPreferencesImpl::perUser);
        std::string key = "nothing";
        std::string error;
        onDisk.load(error, false);
        onDisk.getString(settings::currentProfile.keyPath, &key, nullptr, false);
        return QString::fromStdString(key);
    };
    QCOMPARE(stored(), QStringLiteral("nothing"));
    box.setCurrentIndex(1);
    QCOMPARE(stored(), texts.at(1));
    box.setCurrentIndex(box.count() - 1);
    QCOMPARE(stored(), QStringLiteral("b.xml"));
    session.window.setCatalogue(catalogue);
    QCOMPARE(box.currentText(), QStringLiteral("Board (b.xml)"));
    box.setCurrentIndex(0);
    QCOMPARE(stored(), QString());
}

void TestWindowChoices::reloadDisturbsNobody()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.xml"));
    writeFile(path, "<profile><device>A</device></profile>");
    qputenv("CORVALE_PROFILE_PATH", QFile::encodeName(folder.path()));
    Session session;
    ProfileCatalogue catalogue(session.preferences);
    session.window.setCatalogue(catalogue);
    auto& box = *session.window.findChild<QComboBox*>(QStringLiteral("cmbProfile"));
    auto& current = *session.window.findChild<models::CurrentProfile*>();
    QStringList announced;
    connect(&current, &models::CurrentProfile::chosenChanged, this, [&](const WeakProfile& profile) {
        announced.append(profile.expired() ? QString() : QString::fromStdString(profile.lock()->key()));
    });
    box.setCurrentIndex(box.count() - 1);
    QCOMPARE(announced, QStringList("a.xml"));
    const WeakProfile before = current.chosen();
    writeFile(folder.filePath(QStringLiteral("0.xml")), "<profile><device>0</device></profile>");
    session.window.reloadProfiles();
    QCOMPARE(current.chosen(), before.lock());
    QCOMPARE(announced.size(), 1);

    // A profile without a file has no key to be found by.
    const WeakProfile unsaved = catalogue.newProfile();
    session.window.setCatalogue(catalogue);
    current.choose(unsaved.lock());
    session.window.reloadProfiles();
    QCOMPARE(current.chosen(), unsaved.lock());
    QCOMPARE(announced, QStringList({"a.xml", ""}));

    current.choose(before.lock());
    writeFile(path, "<profile><device>B</device></profile>");
    session.window.reloadProfiles();
    QVERIFY(before.expired());
    QCOMPARE(box.currentText(), QStringLiteral("B (a.xml)"));
    QVERIFY(QFile::remove(path));
    session.window.reloadProfiles();
    QCOMPARE(box.currentText(), QStringLiteral("Host"));
    QCOMPARE(announced, QStringList({"a.xml", "", "a.xml", "a.xml", ""}));
}

void TestWindowChoices::recentProfiles()
{
    const QTemporaryDir folder;
    const QTemporaryDir elsewhere;
    for (const QString& path :
        {folder.filePath("a.xml"), elsewhere.filePath("a.xml"), elsewhere.filePath("gone.xml")})
        writeFile(path, "<profile><device>A</device></profile>");
    writeFile(elsewhere.filePath("broken.xml"), "<profile>");
    qputenv("CORVALE_PROFILE_PATH", QFile::encodeName(folder.path()));
    Session session;
    ProfileCatalogue catalogue(session.preferences);
    session.window.setCatalogue(catalogue);
    auto& menu = *session.window.findChild<RecentFilesMenu*>(QStringLiteral("menuRecentProfiles"));
    const QStringList added{elsewhere.filePath("broken.xml"), elsewhere.filePath("gone.xml"),
        elsewhere.filePath("a.xml"), folder.filePath("a.xml")};
    session.window.preferencesEdited(added);
    const auto choose = [&menu](int index) {
        Q_EMIT menu.aboutToShow();
        menu.actions().at(index)->trigger();
    };
    const auto& box = *session.window.findChild<QComboBox*>(QStringLiteral("cmbProfile"));
    choose(0);
    QCOMPARE(box.currentText(), QStringLiteral("A (a.xml)"));

    DialogAnswers answers;
    answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("Cancel"));
    choose(1);
    QCOMPARE(box.count(), 2 + static_cast<int>(catalogue.builtinProfiles().size()));
    answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("Copy and Choose"));
    choose(1);
    QCOMPARE(box.currentText(), QStringLiteral("A (a (2).xml)"));

    QVERIFY(QFile::remove(elsewhere.filePath("gone.xml")));
    answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("OK"));
    choose(3);
    answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("OK"));
    choose(3);
    QCOMPARE(answers.problems(), QStringList());
    QCOMPARE(menu.files(),
        QStringList({folder.filePath("a (2).xml"), folder.filePath("a.xml"), elsewhere.filePath("a.xml"),
            elsewhere.filePath("broken.xml")}));
    QCOMPARE(box.currentText(), QStringLiteral("A (a (2).xml)"));
}

QTEST_MAIN(TestWindowChoices)
#include "TestWindowChoices.moc"
