#include "Controller.h"
#include "DialogAnswers.h"
#include "ElidedLabel.h"
#include "MainWindow.h"
#include "RawClient.h"

#include <QAccessible>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QShortcut>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTextEdit>
#include <QTreeView>

#include <cstdlib>

namespace {

/// Keys that something answers to: within one widget, or in the whole window where there is none.
struct Key {
    const QWidget* scope;
    QKeySequence keys;
    QString owner;
};

QString nameOf(const QObject& object)
{
    return QString::fromLatin1(object.metaObject()->className()) + QLatin1Char(' ') + object.objectName();
}

bool isNamed(QWidget& widget)
{
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&widget);
    return accessible && !accessible->text(QAccessible::Name).trimmed().isEmpty();
}

/// Whether the text of the widget is not there as a whole, neither on it nor in a tool tip.
bool isCut(const QWidget& widget)
{
    const auto* label = qobject_cast<const QLabel*>(&widget);
    if (qobject_cast<const QComboBox*>(&widget) || qobject_cast<const ElidedLabel*>(&widget))
        return widget.height() < widget.sizeHint().height()
            || (widget.width() < widget.sizeHint().width() && widget.toolTip().isEmpty());
    if (qobject_cast<const QLineEdit*>(&widget) && !qobject_cast<QComboBox*>(widget.parentWidget()))
        return widget.height() < widget.sizeHint().height();
    if (label && label->wordWrap())
        return widget.height() < widget.heightForWidth(widget.width());
    if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
        for (int i = 0; i < tabs->count(); ++i) {
            if (tabs->tabToolTip(i).isEmpty()
                && tabs->tabRect(i).width() < tabs->fontMetrics().horizontalAdvance(tabs->tabText(i)))
                return true;
        }
        return tabs->height() < tabs->sizeHint().height();
    }
    if (const auto* header = qobject_cast<const QHeaderView*>(&widget)) {
        for (int i = 0; header->orientation() == Qt::Horizontal && i < header->count(); ++i) {
            if (header->sectionSize(i) < header->sectionSizeHint(i))
                return true;
        }
        return false;
    }
    const bool showsText = (label && !label->text().isEmpty()) || qobject_cast<const QGroupBox*>(&widget)
        || qobject_cast<const QPushButton*>(&widget) || qobject_cast<const QCheckBox*>(&widget);
    const QSize least =
        qobject_cast<const QGroupBox*>(&widget) ? widget.minimumSizeHint() : widget.sizeHint();
    return showsText && widget.size().expandedTo(least) != widget.size();
}

QStringList textsOf(const QWidget& widget)
{
    QStringList texts;
    const auto* label = qobject_cast<const QLabel*>(&widget);
    if (label && label->buddy())
        texts << label->text();
    if (const auto* group = qobject_cast<const QGroupBox*>(&widget))
        texts << group->title();
    if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
        for (int i = 0; i < tabs->count(); ++i)
            texts << tabs->tabText(i);
    }
    if (qobject_cast<const QMenuBar*>(&widget)) {
        for (const QAction* action : widget.actions())
            texts << action->text();
    }
    return texts;
}

QList<Key> keysOf(const QWidget& root, const QList<QWidget*>& shown)
{
    QList<Key> keys;
    for (const QWidget* widget : shown) {
        for (const QString& text : textsOf(*widget))
            keys << Key{nullptr, QKeySequence::mnemonic(text), text};
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
            keys << Key{nullptr, button->shortcut(), button->text()};
        for (const QAction* action : widget->actions()) {
            if (action->isEnabled() && action->shortcutContext() == Qt::WidgetShortcut)
                keys << Key{widget, action->shortcut(), action->text()};
        }
    }
    for (const QAction* action : root.findChildren<QAction*>()) {
        if (action->isEnabled() && action->shortcutContext() == Qt::WindowShortcut)
            keys << Key{nullptr, action->shortcut(), action->text()};
    }
    for (const QShortcut* shortcut : root.findChildren<QShortcut*>()) {
        auto* parent = qobject_cast<QWidget*>(shortcut->parent());
        if (shortcut->isEnabled() && (parent == &root || shown.contains(parent)))
            keys << Key{nullptr, shortcut->key(), QStringLiteral("shortcut")};
    }
    keys.removeIf([](const Key& key) { return key.keys.isEmpty(); });
    return keys;
}

} // namespace

/// Walks over all that can be seen in each window: what a control is for can be told, each action has a key,
/// no two have the same, and no text is cut. CTest runs it with larger fonts as well.
class TestAccessibility : public QObject {
    Q_OBJECT

public:
    explicit TestAccessibility(MainWindow& window)
        : m_window(window)
    {
    }

private Q_SLOTS:
    void initTestCase();
    void everythingHasANameAndRoom_data();
    void everythingHasANameAndRoom();

private:
    template <typename T = QWidget> T* find(const char* name) const
    {
        return m_window.findChild<T*>(QString::fromLatin1(name));
    }
    void page(int main, int client = 0) const
    {
        find<QTabWidget>("mainTabWidget")->setCurrentIndex(main);
        find<QTabWidget>("tabWidget")->setCurrentIndex(client);
        look(m_window);
    }
    void dialog(const char* opener, const QString& title, const std::function<void(QWidget&)>& further = {});
    void editors();
    void look(QWidget& root) const;
    void lookAtMenu(const QMenu& menu, const QList<Key>& keys) const;

    MainWindow& m_window;
    RawClient m_application{QStringLiteral("Corvale")};
    DialogAnswers m_answers;
    mutable QStringList m_problems;
    QList<std::pair<const char*, std::function<void()>>> m_screens;
};

void TestAccessibility::look(QWidget& root) const
{
    root.resize(root.minimumSizeHint().expandedTo(root.minimumSize()));
    QTest::qWait(20);
    QList<QWidget*> shown = root.findChildren<QWidget*>();
    shown.removeIf([&root](const QWidget* widget) {
        return !widget->isVisibleTo(&root) || widget->window() != root.window();
    });
    for (QWidget* widget : shown) {
        const bool isControl = (widget->focusPolicy() & Qt::TabFocus) != 0 && !qobject_cast<QMenuBar*>(widget)
            && !widget->focusProxy();
        if (isControl && !isNamed(*widget))
            m_problems << QStringLiteral("has no name: ") + nameOf(*widget);
        if (isCut(*widget))
            m_problems << QStringLiteral("is cut: ") + nameOf(*widget);
    }
    const QList<Key> keys = keysOf(root, shown);
    for (qsizetype i = 0; i < keys.size(); ++i) {
        for (qsizetype j = i + 1; j < keys.size(); ++j) {
            const bool meet = !keys[i].scope || !keys[j].scope || keys[i].scope == keys[j].scope;
            if (meet && keys[i].keys == keys[j].keys)
                m_problems << QStringLiteral("%1 twice: %2, %3")
                                  .arg(keys[i].keys.toString(), keys[i].owner, keys[j].owner);
        }
    }
    for (const QMenu* menu : root.findChildren<QMenu*>())
        lookAtMenu(*menu, keys);
}

void TestAccessibility::lookAtMenu(const QMenu& menu, const QList<Key>& keys) const
{
    QStringList letters;
    for (const QAction* action : menu.actions()) {
        const QString letter = QKeySequence::mnemonic(action->text()).toString();
        // Titles of menus are looked at below; a bar that had no room once has them in a menu of its own.
        if (action->isVisible() && !action->isSeparator() && !action->menu() && letter.isEmpty()
            && action->shortcut().isEmpty())
            m_problems << QStringLiteral("has no key: ") + action->text();
        if (!letter.isEmpty() && letters.contains(letter))
            m_problems << QStringLiteral("%1 twice in %2").arg(letter, menu.title());
        letters << letter;
    }
    // The titles of some menus name no key; a shortcut with their first letter opens them.
    const bool isInBar = find<QMenuBar>("menubar")->actions().contains(menu.menuAction());
    const QKeySequence first(QStringLiteral("Alt+") + menu.title().left(1));
    const bool hasShortcut =
        std::any_of(keys.begin(), keys.end(), [&](const Key& key) { return key.keys == first; });
    if (isInBar && QKeySequence::mnemonic(menu.title()).isEmpty() && !hasShortcut)
        m_problems << QStringLiteral("has no key: ") + menu.title();
}

void TestAccessibility::dialog(
    const char* opener, const QString& title, const std::function<void(QWidget&)>& further)
{
    m_answers.next(title, [this, further](QWidget& opened) {
        look(opened);
        if (further)
            further(opened);
    });
    if (auto* action = find<QAction>(opener))
        action->trigger();
    else
        QTest::mouseClick(
            find("profile")->findChild<QPushButton*>(QString::fromLatin1(opener)), Qt::LeftButton);
    QTRY_VERIFY(!QApplication::activeModalWidget());
}

void TestAccessibility::editors()
{
    QStringList seen;
    for (QTreeView* tree : find<QWidget>("profile")->findChildren<QTreeView*>()) {
        tree->expandAll();
        for (QModelIndex row = tree->model()->index(0, 0); row.isValid(); row = tree->indexBelow(row)) {
            for (const QModelIndex& cell : {row, row.siblingAtColumn(1)}) {
                const QString what = row.data().toString() + QString::number(cell.column());
                if (!(cell.flags() & Qt::ItemIsEditable) || seen.contains(what))
                    continue;
                seen << what;
                tree->setCurrentIndex(cell);
                tree->edit(cell);
                QWidget* editor = tree->indexWidget(cell);
                if (editor && !isNamed(*editor))
                    m_problems << QStringLiteral("has no name: the editor of ") + cell.data().toString();
                if (editor)
                    QTest::keyClick(editor, Qt::Key_Escape);
            }
        }
    }
}

void TestAccessibility::initTestCase()
{
    m_window.show();
    QVERIFY(QTest::qWaitForWindowActive(&m_window));
    auto* chooser = find<QComboBox>("cmbProfile");
    chooser->setCurrentIndex(chooser->findText(QStringLiteral("Hadlow Tarn 10")));
    look(m_window);
    QVERIFY(m_application.isConnected());
    for (const records::Message& record : {records::pid(4711), records::context(1),
             records::glError(0x502, "glDrawArrays", "A description that is longer than its column"),
             records::text(records::Type::Warning, "Mind the gap")})
        m_application.send(record);
    QTRY_VERIFY(find<QTableView>("tblErrorList")->model()->rowCount() == 2);
}

void TestAccessibility::everythingHasANameAndRoom_data()
{
    const auto advanced = [this](QWidget& opened) {
        opened.findChild<QCheckBox*>(QStringLiteral("chkExpandProfilesAdvanced"))->click();
        look(opened);
    };
    m_screens = {
        {"console",
            [this] {
                page(1, 0);
            }},
        {"error list",
            [this] {
                page(1, 1);
            }},
        {"context",
            [this] {
                page(1, 2);
            }},
        {"cell contents",
            [this] {
                auto* table = find<QTableView>("tblErrorList");
                m_answers.next({}, [this](QWidget& opened) { look(opened); });
                page(1, 1);
                table->setCurrentIndex(table->model()->index(0, 3));
                QTest::keyClick(table, Qt::Key_Return);
                QTRY_VERIFY(!QApplication::activeModalWidget());
            }},
        {"report",
            [this] {
                page(2);
            }},
        {"profile viewed",
            [this] {
                page(0);
            }},
        {"profile modified",
            [this] {
                find<QPushButton>("btnEdit")->click();
                page(0);
                editors();
            }},
        {"read-only question",
            [this] {
                dialog("btnSave", QStringLiteral("Save changes"));
            }},
        {"preferences",
            [this, advanced] {
                dialog("actionPreferences", QStringLiteral("Preferences"), advanced);
            }},
        {"feedback",
            [this] {
                dialog("actionFeedback", QStringLiteral("Feedback"));
            }},
        {"about",
            [this] {
                dialog("actionAbout", QStringLiteral("About Corvale"));
            }},
    };
    QTest::addColumn<qsizetype>("screen");
    for (qsizetype i = 0; i < m_screens.size(); ++i)
        QTest::newRow(m_screens[i].first) << i;
}

void TestAccessibility::everythingHasANameAndRoom()
{
    QFETCH(qsizetype, screen);
    m_problems.clear();
    m_screens[screen].second();
    m_problems.removeDuplicates();
    m_problems += m_answers.problems();
    QVERIFY2(m_problems.isEmpty(), qPrintable(m_problems.join(QStringLiteral("; "))));
}

int main(int argc, char** argv)
{
    Controller controller(argc, argv);
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<MainWindow*>(widget)) {
            TestAccessibility test(*window);
            return QTest::qExec(&test, argc, argv);
        }
    }
    return EXIT_FAILURE;
}

#include "TestAccessibility.moc"
