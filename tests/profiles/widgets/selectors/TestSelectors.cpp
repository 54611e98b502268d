#include "EGLConfigIDSelector.h"
#include "EGLSelectors.h"
#include "ESSelectors.h"
#include "GenericValueSelectorItemDelegate.h"
#include "GlEnumerants.h"
#include "ImageFormatSelector.h"

#include <QAbstractItemView>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <functional>

using namespace widgets;

namespace {

using Make = std::function<GenericValueSelector*()>;

template <typename Selector, typename... Arguments> Make maker(Arguments... arguments)
{
    return [=] {
        return new Selector(nullptr, arguments...);
    };
}

void turnWheel(QWidget& widget)
{
    QWheelEvent event({5, 5}, widget.mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
        Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
    QVERIFY(!event.isAccepted());
}

} // namespace

Q_DECLARE_METATYPE(Make)

class TestSelectors : public QObject {
    Q_OBJECT

private slots:
    void showsNamesAndHoldsValues_data();
    void showsNamesAndHoldsValues();
    void paintsTheName();
    void everyFormatNameHasAValue();
    void choosingIsReported();
    void typingFindsShownNames();
    void wheelChangesNothing();
};

void TestSelectors::showsNamesAndHoldsValues_data()
{
    QTest::addColumn<Make>("make");
    // The first items only, where there are many.
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<QStringList>("shown");
    const auto row = [](const char* name, const Make& make, const QStringList& stored,
                         const QStringList& shown) {
        QTest::newRow(name) << make << stored << shown;
    };
    const QStringList caveats{"12344", "12368", "12369"};
    const QStringList caveatNames{"EGL_NONE", "EGL_SLOW_CONFIG", "EGL_NON_CONFORMANT_CONFIG"};
    row("number outside", maker<EGLConfigCaveatSelector>(QString("77")), QStringList{"77", ""} + caveats,
        QStringList{"77", ""} + caveatNames);
    row("not a number", maker<EGLConfigCaveatSelector>(QString("EGL_WINDOW_BIT")),
        QStringList{"EGL_WINDOW_BIT", ""} + caveats, QStringList{"EGL_WINDOW_BIT", ""} + caveatNames);
    row("transparent", maker<EGLTransparentTypeSelector>(QString("-1")), {"-1", "", "12344", "12370"},
        {"EGL_DONT_CARE", "", "EGL_NONE", "EGL_TRANSPARENT_RGB"});
    row("EGL truth", maker<EGLTrueFalseSelector>(QString("0")), {"0", "", "1", "0"},
        {"EGL_FALSE", "", "EGL_TRUE", "EGL_FALSE"});
    row("EGL numbers", maker<EGLEnumSelector>(QList<std::int32_t>{-1, 4}, 1), {"1", "", "-1", "4"},
        {"EGL_TRUE", "", "EGL_DONT_CARE", "4"});
    row("attributes", maker<EGLAttribSelector>(QList<std::int32_t>{12321}, QString("odd")),
        {"odd", "", "12321"}, {"odd", "", "EGL_ALPHA_SIZE"});
    row("APIs", maker<ESAPISelector>(QList<std::int32_t>{1, 31}, QString("20")), {"20", "", "1", "31"},
        {"OpenGL ES 2.0", "", "OpenGL ES 1.1", "OpenGL ES 3.1"});
    row("capabilities", maker<ESCapabilitySelector>(QStringList{"samples"}, QString("vendor_limit")),
        {"vendor_limit", "", "samples"}, {"vendor_limit", "", "GL_SAMPLES"});
    row("GL truth", maker<ESTrueFalseSelector>(QString("1")), {"1", "", "1", "0"},
        {"GL_TRUE", "", "GL_TRUE", "GL_FALSE"});
    row("image format", maker<ImageFormatSelector>(ImageFormatSelector::Use::ReadFormat, QString("12x")),
        {"12x", "", "6408"}, {"12x", "", "GL_RGBA"});
    row("shader binaries", maker<ShaderBinaryFormatSelector>(QString("4294967295")),
        {"4294967295", "", "35850"}, {"GL_INVALID_INDEX", "", "GL_TSR_BINARY_BWD"});
}

void TestSelectors::showsNamesAndHoldsValues()
{
    QFETCH(Make, make);
    QFETCH(QStringList, stored);
    QFETCH(QStringList, shown);
    const std::unique_ptr<GenericValueSelector> selector(make());
    QCOMPARE(selector->currentIndex(), 0);
    QVERIFY(selector->count() >= stored.size());
    const auto* list = qobject_cast<QStyledItemDelegate*>(selector->view()->itemDelegate());
    for (int i = 0; i < stored.size(); ++i) {
        QCOMPARE(selector->itemText(i), stored.at(i));
        QCOMPARE(selector->displayText(selector->itemText(i)), shown.at(i));
        const QModelIndex item = selector->model()->index(i, 0);
        QCOMPARE(list->displayText(item.data(), QLocale()), shown.at(i));
        QCOMPARE(GenericValueSelectorItemDelegate::isSeparator(item), i == 1);
    }
    // Room for the longest name, though the values are short.
    int widest = 0;
    for (const QString& name : shown)
        widest = std::max(widest, selector->fontMetrics().horizontalAdvance(name));
    QVERIFY(selector->sizeHint().width() > widest);
    QVERIFY(selector->view()->sizeHintForColumn(0) >= widest);
}

void TestSelectors::paintsTheName()
{
    EGLTrueFalseSelector selector(nullptr, QStringLiteral("12344"));
    GenericValueSelector named(nullptr, {}, QStringLiteral("EGL_NONE"));
    GenericValueSelector numbered(nullptr, {}, QStringLiteral("12344"));
    for (GenericValueSelector* one : {static_cast<GenericValueSelector*>(&selector), &named, &numbered})
        one->resize(240, 30);
    QCOMPARE(selector.grab().toImage(), named.grab().toImage());
    QVERIFY(selector.grab().toImage() != numbered.grab().toImage());
}

void TestSelectors::everyFormatNameHasAValue()
{
    using Use = ImageFormatSelector::Use;
    for (const QList<const char*>& names : {ImageFormatSelector::candidateNames(Use::ReadFormat),
             ImageFormatSelector::candidateNames(Use::ReadType),
             ImageFormatSelector::candidateNames(Use::CompressedTexture),
             ShaderBinaryFormatSelector::candidateNames()}) {
        QSet<std::int32_t> values;
        for (const char* name : names) {
            const std::optional<std::int32_t> value = gl::enumerantValue(name);
            QVERIFY2(value && !values.contains(*value), name);
            values += *value;
        }
    }
}

void TestSelectors::choosingIsReported()
{
    EGLConfigCaveatSelector selector(nullptr, QStringLiteral("12344"));
    QSignalSpy chosen(&selector, &GenericValueSelector::chosen);
    selector.show();
    QTest::keyClick(&selector, Qt::Key_Down);
    QCOMPARE(selector.currentText(), "12344");
    QTest::keyClick(&selector, Qt::Key_Down);
    QCOMPARE(selector.currentText(), "12368");
    QCOMPARE(chosen.count(), 0);

    selector.showPopup();
    QTest::keyClick(selector.view(), Qt::Key_Down);
    QTest::keyClick(selector.view(), Qt::Key_Escape);
    QCOMPARE(selector.currentText(), "12368");
    QCOMPARE(chosen.count(), 0);

    selector.showPopup();
    QTest::keyClick(selector.view(), Qt::Key_Down);
    QTest::keyClick(selector.view(), Qt::Key_Return);
    QCOMPARE(selector.currentText(), "12369");
    QCOMPARE(chosen.count(), 1);
}

void TestSelectors::typingFindsShownNames()
{
    EGLConfigCaveatSelector selector(nullptr, QStringLiteral("77"));
    selector.show();
    QTest::keyClicks(&selector, QStringLiteral("non_"));
    QCOMPARE(selector.currentText(), "12369");
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    QTest::keyClicks(&selector, QStringLiteral("egl_s"));
    QCOMPARE(selector.currentText(), "12368");
}

void TestSelectors::wheelChangesNothing()
{
    EGLTrueFalseSelector selector(nullptr, QStringLiteral("1"));
    EGLConfigIDSelector id(nullptr, -3);
    selector.show();
    id.show();
    turnWheel(selector);
    turnWheel(id);
    QCOMPARE(selector.currentIndex(), 0);
    QCOMPARE(id.text(), "Config -3");
    id.setValue(std::numeric_limits<int>::min());
    QCOMPARE(id.text(), "Config -2147483648");
}

QTEST_MAIN(TestSelectors)
#include "TestSelectors.moc"
