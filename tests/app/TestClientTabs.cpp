#include "Client.h"
#include "ClientInterface.h"
#include "Resources.h"
#include "Session.h"

#include <QApplication>
#include <QComboBox>
#include <QFontComboBox>
#include <QMenu>
#include <QTabBar>
#include <QToolButton>
#include <QWheelEvent>

#include <set>

using namespace records;

namespace {

QTabWidget& subPages(const ClientInterface& page)
{
    return *page.findChild<QTabWidget*>(QStringLiteral("tabWidget"));
}

void turnWheelOver(QWidget& widget)
{
    const QPointF middle = widget.rect().center();
    QWheelEvent event(middle, widget.mapToGlobal(middle), QPoint(), QPoint(0, -120), Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

} // namespace

/// What keys and mouse do to the tabs of the clients, and what the tabs tell.
class TestClientTabs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerResources(); }

    void closingKeepsTheFocus_data();
    void closingKeepsTheFocus();
    void closesWhereverTheFocusIs();
    void autoCloseKeepsTheFocus();
    void wheelNeedsTheFocus();
    void titlesStayReadable();
    void iconsAndList();
};

void TestClientTabs::closingKeepsTheFocus_data()
{
    QTest::addColumn<int>("subPage");
    QTest::addColumn<QString>("focus");
    QTest::newRow("console") << 0 << QStringLiteral("txtConsole");
    QTest::newRow("error list") << 1 << QStringLiteral("tblErrorList");
}

void TestClientTabs::closingKeepsTheFocus()
{
    QFETCH(const int, subPage);
    QFETCH(const QString, focus);
    Session session;
    session.window.show();
    QVERIFY(QTest::qWaitForWindowActive(&session.window));
    for (int i = 0; i < 3; ++i)
        session.connectApplication();
    session.tabs().setCurrentIndex(1);
    subPages(*session.tabs().pageAt(1)).setCurrentIndex(subPage);
    session.tabs().pageAt(1)->findChild<QWidget*>(focus)->setFocus();
    session.window.closeTab(1);
    const ClientInterface* neighbour = session.tabs().pageAt(session.tabs().currentIndex());
    QCOMPARE(subPages(*neighbour).currentIndex(), subPage);
    QCOMPARE(QApplication::focusWidget(), neighbour->findChild<QWidget*>(focus));

    // Another tab than the current one takes nothing along.
    const int other = session.tabs().currentIndex() == 0 ? 1 : 0;
    session.window.closeTab(other);
    QCOMPARE(QApplication::focusWidget(), neighbour->findChild<QWidget*>(focus));
    session.window.closeTab(0);
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(session.tabs().tabBar()));
}

void TestClientTabs::closesWhereverTheFocusIs()
{
    Session session;
    session.window.show();
    QVERIFY(QTest::qWaitForWindowActive(&session.window));
    for (int i = 0; i < 3; ++i)
        session.connectApplication();
    auto& profiles = *session.window.findChild<QComboBox*>(QStringLiteral("cmbProfile"));
    profiles.setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(session.tabs().count(), 2);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(session.tabs().count(), 1);
    auto& pages = *session.window.findChild<QTabWidget*>(QStringLiteral("mainTabWidget"));
    pages.setCurrentIndex(2);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_W, Qt::ControlModifier);
    QCOMPARE(session.titles(), QStringList("<unknown>"));
}

void TestClientTabs::autoCloseKeepsTheFocus()
{
    Session session;
    session.window.show();
    QVERIFY(QTest::qWaitForWindowActive(&session.window));
    session.connectApplication().close();
    QTRY_COMPARE(session.tabs().pageAt(0)->state(), ClientInterface::State::Finished);
    session.autoClose().setChecked(true);
    session.tabs().pageAt(0)->showSubPage(0);
    session.connectApplication();
    QCOMPARE(session.tabs().count(), 1);
    QVERIFY(session.tabs().isAncestorOf(QApplication::focusWidget()));
}

void TestClientTabs::wheelNeedsTheFocus()
{
    Session session;
    session.window.show();
    QVERIFY(QTest::qWaitForWindowActive(&session.window));
    auto& profiles = *session.window.findChild<QComboBox*>(QStringLiteral("cmbProfile"));
    profiles.addItems({QStringLiteral("one"), QStringLiteral("two")});
    auto& fonts = *session.window.findChild<QFontComboBox*>();
    fonts.setCurrentIndex(0);
    session.tabs().tabBar()->setFocus();
    for (QComboBox* box : {&profiles, static_cast<QComboBox*>(&fonts)}) {
        const int before = box->currentIndex();
        turnWheelOver(*box);
        QCOMPARE(box->currentIndex(), before);
        QCOMPARE(box->focusPolicy(), Qt::StrongFocus);
    }
    fonts.setFocus();
    turnWheelOver(fonts);
    QCOMPARE(fonts.currentIndex(), 1);
}

/// At the size that the window has at first, with more applications than there is room for.
void TestClientTabs::titlesStayReadable()
{
    Session session;
    session.window.resize(863, 400);
    session.window.show();
    for (int i = 0; i < 12; ++i) {
        session.connectApplication().send(bytes(pid(40000U + static_cast<std::uint32_t>(i)))
            + bytes(text(Type::SetName, "BenchmarkProgramWithALongName")));
    }
    QTRY_VERIFY(session.titles().last().endsWith(QStringLiteral("PID: 40011")));
    const QTabBar& bar = *session.tabs().tabBar();
    const int room = bar.fontMetrics().horizontalAdvance(QStringLiteral("\"Benchm PID: 40011"));
    for (int i = 0; i < bar.count(); ++i)
        QVERIFY2(bar.tabRect(i).width() >= room, qPrintable(QString::number(i)));
    QCOMPARE(bar.elideMode(), Qt::ElideMiddle);
}

void TestClientTabs::iconsAndList()
{
    Session session;
    session.window.resize(600, 500);
    session.window.show();
    RawClient& ended = session.connectApplication();
    ended.send(bytes(pid(1)) + bytes(text(Type::SetName, "a & b")) + bytes(text(Type::Error, "x"))
        + bytes(make(Type::CleanDisconnect)));
    RawClient& lost = session.connectApplication();
    lost.send(bytes(pid(2)) + bytes(text(Type::Error, "x")) + bytes(text(Type::Error, "y"))
        + bytes(text(Type::Warning, "z")));
    lost.close();
    session.connectApplication().send(pid(3));
    session.connectApplication();
    QTRY_COMPARE(session.tabs().connectionAt(1), ClientTabWidget::Connection::Lost);
    QTRY_COMPARE(session.tabs().connectionAt(0), ClientTabWidget::Connection::Ended);
    QTRY_COMPARE(session.titles().at(2), QStringLiteral("PID: 3"));
    std::set<QByteArray> pictures;
    for (int i = 0; i < 3; ++i) {
        const QImage picture = session.tabs().tabIcon(i).pixmap(16, 16).toImage();
        pictures.insert(
            QByteArray(reinterpret_cast<const char*>(picture.constBits()), picture.sizeInBytes()));
    }
    QCOMPARE(pictures.size(), 3U);

    auto& button = *session.tabs().findChild<QToolButton*>(QStringLiteral("btnClientList"));
    QMenu& menu = *button.findChild<QMenu*>();
    button.click();
    QCOMPARE(menu.geometry().right(), button.mapToGlobal(button.rect().bottomRight()).x());
    menu.close();
    session.connectApplication().send(text(Type::SetName, std::string(200, 'n')));
    QTRY_VERIFY(session.titles().last().startsWith(QStringLiteral("\"nn")));
    button.click();
    QStringList entries;
    for (const QAction* action : menu.actions())
        entries += action->text();
    QCOMPARE(entries,
        QStringList(
            {"1: \"a && b\" PID: 1, ended\t1 error, 0 warnings", "2: PID: 2, lost\t2 errors, 1 warning",
                "3: PID: 3, connected\t0 errors, 0 warnings", "4: <unknown>, connected\t0 errors, 0 warnings",
                QStringLiteral("5: \"%1\u2026, connected\t0 errors, 0 warnings").arg(QString(79, 'n'))}));
    QVERIFY(menu.actions().constLast()->isChecked() && !menu.actions().constFirst()->isChecked());
    menu.actions().constFirst()->trigger();
    menu.close();
    QCOMPARE(session.tabs().currentIndex(), 0);
}

QTEST_MAIN(TestClientTabs)
#include "TestClientTabs.moc"
