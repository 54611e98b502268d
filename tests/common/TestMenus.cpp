#include "Preferences.h"
#include "RecentFilesMenu.h"
#include "ThemeMenu.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// The preferences as they are on disk.
class Store : public Preferences {
public:
    Store()
    {
        std::string error;
        load(error);
    }
};

int contrast(const QColor& left, const QColor& right)
{
    return std::abs(qGray(left.rgb()) - qGray(right.rgb()));
}

} // namespace

class TestMenus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void themesAreReadable();
    void themeIsAppliedAndKept();
    void recentFiles();
};

void TestMenus::themesAreReadable()
{
    using P = QPalette;
    const std::pair<P::ColorRole, P::ColorRole> pairs[] = {{P::WindowText, P::Window}, {P::Text, P::Base},
        {P::Text, P::AlternateBase}, {P::PlaceholderText, P::Base}, {P::ButtonText, P::Button},
        {P::HighlightedText, P::Highlight}, {P::Link, P::Base}, {P::LinkVisited, P::Window},
        {P::ToolTipText, P::ToolTipBase}};
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        const QPalette palette = theme::palette(theme);
        for (const auto& [text, ground] : pairs) {
            for (const auto group : {P::Active, P::Inactive, P::Disabled}) {
                const int found = contrast(palette.color(group, text), palette.color(group, ground));
                QVERIFY2(found >= (group == P::Disabled ? 80 : 110), qPrintable(QString::number(found)));
            }
        }
    }
}

void TestMenus::themeIsAppliedAndKept()
{
    // What is open is only told while the event loop runs.
    const auto window = [] {
        return QApplication::palette().color(QPalette::Window);
    };
    const QColor desktop = window();
    const QColor dark = theme::palette(Theme::Dark).color(QPalette::Window);
    Store store;
    QWidget shown;
    {
        ThemeMenu menu(store, QStringLiteral("View"), &shown);
        QCOMPARE(menu.actions().at(0)->isChecked(), true);
        menu.actions().at(2)->trigger();
        QCOMPARE(Store().get(settings::theme), std::string("dark"));
        QCOMPARE(menu.actions().at(0)->isChecked(), false);
        QCOMPARE(window(), dark);
    }
    theme::apply(Theme::Light);
    Store next;
    ThemeMenu menu(next, QStringLiteral("View"), &shown);
    QVERIFY(menu.actions().at(2)->isChecked());
    QCOMPARE(window(), dark);
    // Some desktops give widgets palettes when they change.
    QPalette own = theme::palette(Theme::Light);
    own.setColor(QPalette::Window, Qt::yellow);
    shown.setPalette(own);
    QTRY_VERIFY(!shown.testAttribute(Qt::WA_SetPalette));
    menu.actions().at(0)->trigger();
    QCOMPARE(window(), desktop);
    QCOMPARE(theme::fromName("of a later version"), Theme::System);
}

void TestMenus::recentFiles()
{
    const QTemporaryDir folder;
    // Makes the file.
    const auto pathOf = [&folder](int number) {
        QFile file(folder.filePath(QStringLiteral("%1 & \u0416.xml").arg(number)));
        return file.open(QIODevice::WriteOnly) ? file.fileName() : QString();
    };
    Store store;
    RecentFilesMenu menu(store, QStringLiteral("Recent"), nullptr);
    QVERIFY(!menu.menuAction()->isEnabled());
    for (int i = 0; i < 12; ++i)
        menu.addFile(pathOf(i));
    menu.addFile(folder.path() + QStringLiteral("/./") + QFileInfo(pathOf(5)).fileName());

    Store next;
    RecentFilesMenu again(next, QStringLiteral("Recent"), nullptr);
    QCOMPARE(again.files().size(), RecentFilesMenu::mostFiles);
    QCOMPARE(again.files().mid(0, 3), QStringList({pathOf(5), pathOf(11), pathOf(10)}));
    QVERIFY(again.menuAction()->isEnabled());
    QVERIFY(again.actions().at(1)->text().startsWith(QStringLiteral("&2  11 && \u0416.xml (")));

    const QSignalSpy chosen(&again, &RecentFilesMenu::fileChosen);
    const QSignalSpy missing(&again, &RecentFilesMenu::fileMissing);
    again.actions().at(1)->trigger();
    QVERIFY(QFile::remove(pathOf(10)));
    again.actions().at(2)->trigger();
    QCOMPARE(chosen, QList<QVariantList>({{pathOf(11)}}));
    QCOMPARE(missing.count(), 1);
    QCOMPARE(again.files().mid(0, 3), QStringList({pathOf(5), pathOf(11), pathOf(9)}));
    again.actions().last()->trigger();
    QCOMPARE(again.files(), QStringList());
    QVERIFY(!again.menuAction()->isEnabled());
}

QTEST_MAIN(TestMenus)
#include "TestMenus.moc"
