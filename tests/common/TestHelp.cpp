#include "AboutBox.h"
#include "DocumentationOpener.h"
#include "FeedbackDialog.h"
#include "Preferences.h"
#include "Resources.h"
#include "TSRStats.h"

#include <QCheckBox>
#include <QClipboard>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QUrl>

namespace {

/// The program's preferences, as the file has them at first.
class Store : public Preferences {
public:
    Store()
    {
        std::string error;
        load(error);
    }
};

/// A back-end that notes its calls.
class BackEnd : public TSRStatsInterface {
public:
    BackEnd(QStringList& calls, const QString& name, bool works)
        : m_calls(calls)
        , m_name(name)
        , m_works(works)
    {
    }
    bool initialise() override { return note(QStringLiteral("initialise")); }
    bool finish() override { return note(QStringLiteral("finish")); }
    bool recordEvent(std::string_view event, std::int64_t value, std::int64_t extra) override
    {
        return note(QStringLiteral("%1 %2 %3").arg(QString::fromUtf8(event.data())).arg(value).arg(extra));
    }

private:
    bool note(const QString& call)
    {
        m_calls.append(m_name + QLatin1Char(' ') + call);
        return m_works;
    }

    QStringList& m_calls;
    QString m_name;
    bool m_works;
};

} // namespace

class TestHelp : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void opened(const QUrl& url) { m_opened.append(url.toString()); }

private Q_SLOTS:
    void initTestCase()
    {
        registerResources();
        for (const char* scheme : {"https", "mailto", "file"})
            QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), this, "opened");
    }
    void cleanupTestCase()
    {
        for (const char* scheme : {"https", "mailto", "file"})
            QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
    }
    void init()
    {
        m_opened.clear();
        QDir(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brindlewood")).removeRecursively();
    }

    void feedback();
    void statistics();
    void splash();
    void aboutBoxCloses_data();
    void aboutBoxCloses();
    void documentation();

private:
    QStringList m_opened;
};

void TestHelp::feedback()
{
    Store store;
    {
        FeedbackDialog dialog(
            nullptr, QStringLiteral("Corvale 1"), QStringLiteral("facts\n  <b>more</b>"), store);
        dialog.show();
        const auto label = [&dialog](const char* name) {
            return dialog.findChild<QLabel*>(QString::fromLatin1(name));
        };
        QCOMPARE(label("SelectAndCopyLabel")->text(), "Select text [Ctrl + A] and copy [Ctrl + C]");
        const auto& text = *dialog.findChild<QPlainTextEdit*>(QStringLiteral("RequiredText"));
        QCOMPARE(text.toPlainText(), "Corvale 1 (SDK build 25.2@f388ec4a5182)\nfacts\n  <b>more</b>");
        QVERIFY(!label("imageLabel")->pixmap().isNull());

        label("SelectAndCopyLabel")->setFocus();
        QTest::keyClick(label("SelectAndCopyLabel"), Qt::Key_Space);
        QCOMPARE(QGuiApplication::clipboard()->text(), text.toPlainText());
        QGuiApplication::clipboard()->clear();
        QTest::mouseClick(label("SelectAndCopyLabel"), Qt::LeftButton);
        QCOMPARE(QGuiApplication::clipboard()->text(), text.toPlainText());
        for (const char* name : {"ForumURL", "SupportURL"}) {
            label(name)->setFocus();
            QTest::keyClick(label(name), Qt::Key_Tab); // to the link in the label
            QTest::keyClick(label(name), Qt::Key_Return);
        }
        QCOMPARE(m_opened.size(), 2);
        QVERIFY(m_opened[0].startsWith(QStringLiteral("https:")));
        QVERIFY(m_opened[1].startsWith(QStringLiteral("mailto:")));

        auto& choice = *dialog.findChild<QCheckBox*>(QStringLiteral("usageStats_checkBox"));
        QVERIFY2(choice.isChecked(), "where the preferences say nothing");
        choice.click();
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Close)->click();
        QVERIFY(!dialog.isVisible());
        QVERIFY2(store.get(settings::collectUsage), "the choice is stored when the dialog goes");
    }
    QVERIFY(!store.get(settings::collectUsage));
    QVERIFY2(Store().get(settings::collectUsage), "nothing has reached the disk");
    store.set(settings::theme, "dark");
    QVERIFY(!Store().get(settings::collectUsage));
    FeedbackDialog again(nullptr, {}, {}, store);
    QVERIFY(!again.findChild<QCheckBox*>()->isChecked());
    QVERIFY(!TSRStats("Corvale", "1", store).collects());
}

void TestHelp::statistics()
{
    TSRStats stats("Corvale", "1", Store());
    QVERIFY(stats.initialise() && stats.recordEvent("start", 1, 2) && stats.finish());
    QStringList calls;
    stats.addBackEnd("c", std::make_unique<BackEnd>(calls, QStringLiteral("c"), true));
    stats.addBackEnd("b", std::make_unique<BackEnd>(calls, QStringLiteral("b"), false));
    stats.addBackEnd("a", std::make_unique<BackEnd>(calls, QStringLiteral("a"), true));
    QVERIFY(!stats.initialise() && !stats.recordEvent("start", 1, 2) && !stats.finish());
    QCOMPARE(calls,
        QStringList({"a initialise", "b initialise", "a start 1 2", "b start 1 2", "c start 1 2", "a finish",
            "b finish", "c finish"}));
}

void TestHelp::splash()
{
    Store store;
    QWidget window;
    auto* entry = new QLineEdit(&window);
    AboutBox box(
        QStringLiteral(":/CorvaleResources/SplashCorvale"), QStringLiteral("Corvale 1"), store, &window);
    window.show();
    box.showAtStart();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    entry->setFocus();
    QVERIFY(box.isVisible() && !box.isModal());
    QVERIFY(!box.findChild<QLabel*>(QStringLiteral("lblSplash"))->pixmap().isNull());
    QTest::keyClick(entry, Qt::Key_X);
    QVERIFY(!box.isVisible());
    QCOMPARE(entry->text(), QStringLiteral("x"));
    window.hide();
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();
    QVERIFY2(!box.isVisible(), "it comes once, not whenever the window does");

    box.showAtStart();
    box.showForced();
    QVERIFY(box.isVisible() && box.isModal());
    box.endStart();
    QVERIFY2(box.isVisible(), "the user has asked for it");
    QTest::keyClick(box.findChild<QCheckBox*>(), Qt::Key_Space);
    QVERIFY(box.isVisible());
    QVERIFY2(!Store().get(settings::showSplash), "the choice is saved at once");
    box.close();
    box.showAtStart();
    QVERIFY(!box.isVisible());
}

void TestHelp::aboutBoxCloses_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("closes");
    QTest::newRow("click") << 0 << true;
    QTest::newRow("letter") << int{Qt::Key_A} << true;
    QTest::newRow("Escape") << int{Qt::Key_Escape} << true;
    QTest::newRow("Tab") << int{Qt::Key_Tab} << false;
}

void TestHelp::aboutBoxCloses()
{
    QFETCH(int, key);
    Store store;
    AboutBox box(QStringLiteral(":/CorvaleResources/SplashCorvale"), QStringLiteral("Corvale 1"), store);
    box.showForced();
    if (key == 0)
        QTest::mouseClick(box.findChild<QLabel*>(QStringLiteral("lblSplash")), Qt::LeftButton);
    else
        QTest::keyClick(&box, static_cast<Qt::Key>(key));
    QTEST(!box.isVisible(), "closes");
}

void TestHelp::documentation()
{
    const QString name = QStringLiteral("Manual.html");
    const QDir room(QDir::tempPath());
    const auto create = [&room, &name](const char* folder) {
        const QString path = room.filePath(QString::fromLatin1(folder));
        QDir().mkpath(path);
        QFile file(path + QLatin1Char('/') + name);
        return file.open(QIODevice::WriteOnly) ? QUrl::fromLocalFile(file.fileName()).toString() : QString();
    };
    QVERIFY(room.mkpath(QStringLiteral("a/b/bin")));
    Store store;
    DocumentationOpener opener(store, room.filePath(QStringLiteral("a/b/bin")));

    const QString elsewhere = create("else where");
    int questions = 0;
    // Answers the question, and then the file dialog.
    const auto locate = [&] {
        auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ++questions;
        QTimer::singleShot(0, this, [&elsewhere] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            dialog->findChild<QLineEdit*>()->setText(QUrl(elsewhere).toLocalFile());
            QTest::keyClick(dialog, Qt::Key_Return);
        });
        question->defaultButton()->click();
    };
    QTimer::singleShot(0, this, locate);
    QCOMPARE(opener.open(name, nullptr), QString());
    Store next;
    QCOMPARE(DocumentationOpener(next, QStringLiteral("/nowhere")).open(name, nullptr), QString());
    QCOMPARE(questions, 1);
    const QString source = create("docs");
    QCOMPARE(opener.open(name, nullptr), QString());
    const QString installed = create("a/b/share/doc/corvale");
    QCOMPARE(opener.open(name, nullptr), QString());
    const QString product = create("a/Documentation");
    QCOMPARE(opener.open(name, nullptr), QString());
    QCOMPARE(m_opened, QStringList({elsewhere, elsewhere, source, installed, product}));
}

QTEST_MAIN(TestHelp)
#include "TestHelp.moc"
