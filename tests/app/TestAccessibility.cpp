#include "Controller.h"
#include "DialogAnswers.h"
#include "ElidedLabel.h"
#include "MainWindow.h"
#include "NoticeBar.h"
#include "RawClient.h"

#include <QAbstractSpinBox>
#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QShortcut>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

namespace {

template <typename T> const T* as(const QWidget* widget)
{
    return qobject_cast<const T*>(widget);
}

/// Whether one can tell what the widget is for, where it is a control.
bool isNamed(QWidget* widget)
{
    const bool isControl = (widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy();
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    return !isControl || as<QMenuBar>(widget) || !accessible->text(QAccessible::Name).trimmed().isEmpty();
}

/// Whether the text of the widget is there as a whole neither on it nor in a tool tip.
bool isCut(const QWidget* widget)
{
    const QSize hint = as<QGroupBox>(widget) ? widget->minimumSizeHint() : widget->sizeHint();
    const bool isTooFlat = widget->height() < hint.height();
    const bool isTooNarrow = widget->width() < hint.width();
    const auto* label = as<QLabel>(widget);
    if (label && label->wordWrap())
        return label->height() < label->heightForWidth(label->width());
    if (as<QComboBox>(widget) || as<ElidedLabel>(widget))
        return isTooFlat || (isTooNarrow && widget->toolTip().isEmpty());
    // Tabs scroll; the line of a combo box or spin box has its frame outside.
    const bool isInBox =
        as<QComboBox>(widget->parentWidget()) || as<QAbstractSpinBox>(widget->parentWidget());
    if (as<QTabBar>(widget) || (as<QLineEdit>(widget) && !isInBox))
        return isTooFlat;
    const auto* button = as<QAbstractButton>(widget);
    const bool hasText = (label && !label->text().isEmpty()) || (button && !button->text().isEmpty());
    return (hasText || as<QGroupBox>(widget)) && (isTooFlat || isTooNarrow);
}

/// Keys that something visible answers to. Those of single widgets are there once, since each may have them.
QList<QKeySequence> keysOf(const QWidget& root, const QList<QWidget*>& shown)
{
    QList<QKeySequence> keys;
    QSet<QKeySequence> widgetKeys;
    for (const QWidget* widget : shown) {
        if (const auto* button = as<QAbstractButton>(widget))
            keys << button->shortcut();
        for (const QAction* action : widget->actions()) {
            if (as<QMenuBar>(widget))
                keys << QKeySequence::mnemonic(action->text());
            else if (action->isEnabled() && action->shortcutContext() == Qt::WidgetShortcut)
                widgetKeys << action->shortcut();
        }
    }
    for (const QAction* action : root.findChildren<QAction*>()) {
        if (action->isEnabled() && action->shortcutContext() == Qt::WindowShortcut)
            keys << action->shortcut();
    }
    for (const QShortcut* shortcut : root.findChildren<QShortcut*>())
        keys << shortcut->key();
    keys << widgetKeys.values();
    keys.removeAll(QKeySequence());
    return keys;
}

/// Where Tab goes up the page, or back in a row.
QStringList tabProblems(QWidget& root)
{
    QStringList problems;
    const QWidget* former = nullptr;
    QRect formerPlace;
    for (QWidget* widget = root.nextInFocusChain(); widget != &root; widget = widget->nextInFocusChain()) {
        const bool isStop = (widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy();
        const QRect seen = widget->visibleRegion().boundingRect();
        if (!isStop || seen.isEmpty() || widget->window() != root.window())
            continue;
        const QRect place = seen.translated(widget->mapTo(&root, QPoint()));
        const bool isBeside = place.top() <= formerPlace.bottom() && formerPlace.top() <= place.bottom();
        const bool isInColumn = place.left() <= formerPlace.right() && formerPlace.left() <= place.right();
        if ((isBeside && place.right() < formerPlace.left())
            || (isInColumn && place.bottom() < formerPlace.top()))
            QDebug(&problems.emplaceBack()) << "Tab goes back:" << former << widget;
        former = widget;
        formerPlace = place;
    }
    return problems;
}

QStringList problemsOf(const QMenu& menu)
{
    QStringList problems;
    QList<QKeySequence> letters;
    for (const QAction* action : menu.actions()) {
        const QKeySequence letter = QKeySequence::mnemonic(action->text());
        const bool isCommand = action->isVisible() && !action->isSeparator() && !action->menu();
        if (isCommand && letter.isEmpty() && action->shortcut().isEmpty())
            problems << QStringLiteral("no key: ") + action->text();
        if (!letter.isEmpty() && letters.contains(letter))
            problems << QStringLiteral("twice in %1: %2").arg(menu.title(), letter.toString());
        letters << letter;
    }
    return problems;
}

} // namespace

/// Looks at all that can be seen in each window: what a control is for can be told, each action has a key and
/// no two have the same, Tab follows the reader, and no text is cut in the smallest window, also with large
/// fonts.
class TestAccessibility : public QObject {
    Q_OBJECT

public:
    explicit TestAccessibility(MainWindow& window)
        : m_window(window)
    {
    }

private Q_SLOTS:
    void initTestCase()
    {
        using namespace records;
        m_window.show();
        QVERIFY(QTest::qWaitForWindowActive(&m_window));
        look(m_window);
        find<QComboBox>("cmbProfile")->setCurrentText(QStringLiteral("Hadlow Tarn 10"));
        for (const Message& record : {context(1), glError(0x502, "glDrawArrays", "What was wrong")})
            QVERIFY(m_application.send(record));
        QTRY_COMPARE(find<QTableView>("tblErrorList")->model()->rowCount(), 1);
    }

    void everythingHasANameAndRoom_data()
    {
        QTest::addColumn<std::function<void()>>("show");
        const auto add = [](const char* name, const std::function<void()>& show) {
            QTest::newRow(name) << show;
        };
        add("console", [this] { page(1, 0); });
        add("context", [this] { page(1, 2); });
        add("error list", [this] { page(1, 1); });
        auto* table = find<QTableView>("tblErrorList");
        add("cell", [=, this] {
            dialog([=] {
                table->setCurrentIndex(table->model()->index(0, 3));
                QTest::keyClick(table, Qt::Key_Return, Qt::ControlModifier);
            });
        });
        add("report", [this] { page(2); });
        add("find", [this] {
            for (const auto& [main, client] : {std::pair(1, 0), {1, 1}, {1, 2}, {0, 0}, {2, 0}}) {
                page(main, client);
                find<QAction>("actionFind")->trigger();
                look(m_window);
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
            }
        });
        add("notices", [this] {
            page(1);
            for (auto* notice : m_window.findChildren<widgets::NoticeBar*>())
                notice->setText(QStringLiteral("What has happened"));
            page(1);
            page(0);
            for (auto* notice : m_window.findChildren<widgets::NoticeBar*>())
                notice->setText({});
        });
        for (QAction* action : table->actions()) {
            if (action->text() == QStringLiteral("&Go to Frame...")
                || action->text() == QStringLiteral("M&uted Kinds..."))
                add(qPrintable(action->text()), [=, this] { dialog([=] { action->trigger(); }); });
        }
        add("profile viewed", [this] { page(0); });
        add("profile modified", [this] {
            find<QPushButton>("btnEdit")->click();
            page(0);
        });
        auto* save = find<QWidget>("profile")->findChild<QPushButton*>(QStringLiteral("btnSave"));
        add("read-only question", [=, this] { dialog([=] { save->click(); }); });
        for (const char* name : {"actionRun_Program", "actionPreferences", "actionFeedback", "actionAbout"})
            add(name, [=, this] { dialog([=, this] { find<QAction>(name)->trigger(); }); });
    }

    void everythingHasANameAndRoom()
    {
        QFETCH(std::function<void()>, show);
        for (const qreal scale : {1.0, 1.5}) {
            QFont font = m_font;
            font.setPointSizeF(m_font.pointSizeF() * scale);
            QApplication::setFont(font);
            show();
        }
        const QString problems =
            (std::exchange(m_problems, {}) + m_answers.problems()).join(QLatin1Char('\n'));
        QVERIFY2(problems.isEmpty(), qPrintable(problems));
    }

private:
    template <typename T> T* find(const char* name) { return m_window.findChild<T*>(QLatin1String(name)); }
    void page(int main, int client = 0)
    {
        find<QTabWidget>("mainTabWidget")->setCurrentIndex(main);
        find<QTabWidget>("tabWidget")->setCurrentIndex(client);
        look(m_window);
    }
    void dialog(const std::function<void()>& open)
    {
        m_answers.next({}, [this](QWidget& opened) {
            look(opened);
            if (auto* advanced = opened.findChild<QCheckBox*>(QStringLiteral("chkExpandProfilesAdvanced"))) {
                advanced->click();
                look(opened);
            }
        });
        open();
        QTRY_VERIFY(!QApplication::activeModalWidget());
    }
    void look(QWidget& root)
    {
        // A change of fonts goes up from widget to widget, an event each.
        for (int pass = 0; pass < 20; ++pass) {
            root.resize(root.minimumSizeHint().expandedTo(root.minimumSize()));
            QCoreApplication::processEvents();
        }
        QList<QWidget*> shown = root.findChildren<QWidget*>();
        shown.removeIf(
            [&](QWidget* widget) { return !widget->isVisible() || widget->window() != root.window(); });
        for (QWidget* widget : shown) {
            if (!isNamed(widget) || isCut(widget))
                QDebug(&m_problems.emplaceBack()) << (isNamed(widget) ? "cut:" : "no name:") << widget;
        }
        m_problems << tabProblems(root);
        const QList<QKeySequence> keys = keysOf(root, shown);
        for (const QKeySequence& key : keys) {
            if (keys.count(key) > 1)
                m_problems << QStringLiteral("twice: ") + key.toString();
        }
        for (const QMenu* menu : root.findChildren<QMenu*>())
            m_problems << problemsOf(*menu);
        // The titles of two menus name no key.
        if (&root == &m_window && !(keys.contains(Qt::ALT | Qt::Key_E) && keys.contains(Qt::ALT | Qt::Key_H)))
            m_problems << QStringLiteral("no keys for menus");
    }

    MainWindow& m_window;
    RawClient m_application{QStringLiteral("Corvale")};
    DialogAnswers m_answers;
    QStringList m_problems;
    const QFont m_font = QApplication::font();
};

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
