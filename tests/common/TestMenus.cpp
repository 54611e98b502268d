#include "PlistPreferences.h"
#include "RecentFilesMenu.h"
#include "ThemeMenu.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// The preferences as they are on disk.
class Store : public PlistPreferences {
public:
    Store()
        : PlistPreferences("Corvale", TSRPreferencesImpl::perUser)
    {
        std::string error;
        load(error, true);
    }
};

double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& left, const QColor& right)
{
    const double a = luminance(left) + 0.05;
    const double b = luminance(right) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

} // namespace

class TestMenus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void themesAreReadable_data();
    void themesAreReadable();
    void themeIsAppliedAndKept();
    void recentFiles();
};

void TestMenus::themesAreReadable_data()
{
    QTest::addColumn<Theme>("theme");
    QTest::newRow("light") << Theme::Light;
    QTest::newRow("dark") << Theme::Dark;
}

void TestMenus::themesAreReadable()
{
    QFETCH(const Theme, theme);
    const QPalette palette = theme::palette(theme);
    using Role = QPalette::ColorRole;
    const std::pair<Role, Role> pairs[] = {{QPalette::WindowText, QPalette::Window},
        {QPalette::Text, QPalette::Base}, {QPalette::Text, QPalette::AlternateBase},
        {QPalette::PlaceholderText, QPalette::Base}, {QPalette::ButtonText, QPalette::Button},
        {QPalette::HighlightedText, QPalette::Highlight}, {QPalette::Link, QPalette::Base},
        {QPalette::Link, QPalette::Window}, {QPalette::LinkVisited, QPalette::Window},
        {QPalette::ToolTipText, QPalette::ToolTipBase}};
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        const double least = group == QPalette::Disabled ? 2.4 : 4.5;
        for (const auto& [text, ground] : pairs) {
            const double found = contrast(palette.color(group, text), palette.color(group, ground));
            QVERIFY2(found >= least, qPrintable(QStringLiteral("%1 %2: %3").arg(group).arg(text).arg(found)));
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
        const QSignalSpy stored(&menu, &ThemeMenu::stored);
        menu.actions().at(2)->trigger();
        QCOMPARE(stored.count(), 1);
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
    QVERIFY2(again.actions().at(1)->text().startsWith(QStringLiteral("&2  11 && \u0416.xml (")),
        qPrintable(again.actions().at(1)->text()));

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
