#include "Client.h"
#include "OutlinedStyle.h"
#include "Resources.h"
#include "Session.h"
#include "Theme.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTextEdit>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include <memory>
#include <set>

namespace {

QColor colorAt(QWidget& widget, const QPoint& place)
{
    return widget.grab().toImage().pixelColor(place);
}

/// The best contrast that a pixel in the left half of a widget has with the window; the arrows of lists are
/// in the other half.
double bestContrast(QWidget& widget)
{
    const QImage picture = widget.grab().toImage();
    const QColor window = widget.palette().color(QPalette::Window);
    double best = 1;
    for (int x = 0; x < picture.width() / 2; ++x) {
        for (int y = 0; y < picture.height(); ++y)
            best = std::max(best, OutlinedStyle::contrast(picture.pixelColor(x, y), window));
    }
    return best;
}

} // namespace

/// What a change of the theme must reach.
class TestThemes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        registerResources();
        QApplication::setStyle(QStringLiteral("fusion"));
        OutlinedStyle::install();
    }
    void cleanup() { theme::apply(Theme::System); }

    void treesFollow();
    void outlinesStandOut_data();
    void outlinesStandOut();
    void focusIsSeen_data() { outlinesStandOut_data(); }
    void focusIsSeen();
};

void TestThemes::treesFollow()
{
    const Session session;
    auto& tree = *session.window.findChild<QTreeView*>(QStringLiteral("capabilitiesView"));
    QStandardItemModel model(200, 1);
    tree.setModel(&model);
    tree.resize(300, 200);
    for (const Theme theme : {Theme::Dark, Theme::Light, Theme::Dark}) {
        theme::apply(theme);
        const QColor base = theme::palette(theme).color(QPalette::Disabled, QPalette::Base);
        QTRY_COMPARE(tree.viewport()->palette().color(QPalette::Base), base);
        QCOMPARE(tree.verticalScrollBar()->palette().color(QPalette::Window),
            theme::palette(theme).color(QPalette::Window));
        QCOMPARE(colorAt(tree, {tree.viewport()->width() - 1, 1}), base);
    }
    tree.setModel(nullptr);
    QVERIFY2(!tree.styleSheet().isEmpty(), "editors stay white");
}

void TestThemes::outlinesStandOut_data()
{
    QTest::addColumn<Theme>("theme");
    QTest::newRow("light") << Theme::Light;
    QTest::newRow("dark") << Theme::Dark;
}

void TestThemes::outlinesStandOut()
{
    QFETCH(const Theme, theme);
    theme::apply(theme);
    QWidget parent;
    const auto check = [](QWidget& widget) {
        widget.resize(widget.sizeHint());
        const double contrast = bestContrast(widget);
        QVERIFY2(contrast >= 3,
            qPrintable(
                QStringLiteral("%1: %2").arg(QLatin1String(widget.metaObject()->className())).arg(contrast)));
    };
    QCheckBox box(&parent);
    check(box);
    QRadioButton radio(&parent);
    check(radio);
    QLineEdit line(&parent);
    check(line);
    QPushButton button(&parent);
    check(button);
    QComboBox list(&parent);
    list.setEditable(true);
    check(list);
    QSpinBox number(&parent);
    number.setSpecialValueText(QStringLiteral(" "));
    check(number);
    const Session session;
    check(*session.window.findChild<QToolButton*>(QStringLiteral("btnHidePreferencesMessage")));
}

void TestThemes::focusIsSeen()
{
    QFETCH(const Theme, theme);
    theme::apply(theme);
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    QTextEdit text;
    QTreeView tree;
    for (QWidget* widget : {static_cast<QWidget*>(&text), static_cast<QWidget*>(&tree)})
        layout->addWidget(widget);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    for (const auto& [focused, other] : {std::pair<QWidget*, QWidget*>(&text, &tree), {&tree, &text}}) {
        focused->setFocus();
        const QColor frame = colorAt(*focused, {0, focused->height() / 2});
        QVERIFY(frame != colorAt(*other, {0, other->height() / 2}));
        for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base})
            QVERIFY(OutlinedStyle::contrast(frame, theme::palette(theme).color(role)) >= 3);
    }
}

QTEST_MAIN(TestThemes)
#include "TestThemes.moc"
