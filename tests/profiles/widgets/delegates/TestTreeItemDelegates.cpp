#include "EGLConfigIDSelector.h"
#include "EGLConfigTree.h"
#include "EGLConfigTreeItemDelegate.h"
#include "ESCapabilityTree.h"
#include "ESCapabilityTreeItemDelegate.h"
#include "ESExtensionTree.h"
#include "ESExtensionTreeItemDelegate.h"
#include "GenericValueSelector.h"
#include "ProfileColumns.h"
#include "ProfileData.h"
#include "ProfileReader.h"

#include <QApplication>
#include <QHelpEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QTreeView>

using models::KeyColumn;
using models::ValueColumn;
using namespace widgets;

namespace {

constexpr char document[] = R"(<profile>
<es version="20"><extension>GL_OES_depth24</extension><samples>4</samples><shader_compiler>1</shader_compiler>
 <aliased_point_size_range><min>1</min><max>64</max></aliased_point_size_range>
 <compressed_texture_format>36196</compressed_texture_format><mystery><deep>x</deep></mystery>
 <implementation_color_read_format>5</implementation_color_read_format>
 <smooth_line_width_range>1 8</smooth_line_width_range></es>
<es version="31"><samples>1</samples></es>
<egl><config id="1"><samples>007</samples><surface_type>EGL_WINDOW_BIT</surface_type>
 <config_caveat>EGL_NONE</config_caveat><conformant>5</conformant><secret><a>b</a></secret>
 <odd> text </odd></config><config id="2"><level>0</level></config></egl></profile>)";

} // namespace

/// Drives the editors of real trees as a user does, with keys.
class TestTreeItemDelegates : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void opensTheRightEditor_data();
    void opensTheRightEditor();
    void entersText_data();
    void entersText();
    void leaving_data();
    void leaving();
    void selectorsCommit();
    void idsOfConfigs();
    void paintsWhatUsersRead();
    void offersWhatTheRowLacks();
    void longTextsStayWhole();

private:
    void show(const char* tree);
    /// The cell below the top-level row with this key, or that row's own for an empty path.
    QModelIndex cell(const QStringList& path, int column) const;
    QWidget* edit(const QModelIndex& index);

    ProfileData m_profile;
    std::unique_ptr<models::ProfileTree> m_model;
    std::unique_ptr<QTreeView> m_view;
};

void TestTreeItemDelegates::init()
{
    m_profile = readProfile(document);
}

void TestTreeItemDelegates::cleanup()
{
    QToolTip::hideText();
    m_view.reset();
    m_model.reset();
}

void TestTreeItemDelegates::show(const char* tree)
{
    const QByteArray name(tree);
    m_view = std::make_unique<QTreeView>();
    QAbstractItemDelegate* delegate = nullptr;
    if (name == "EGL") {
        m_model = std::make_unique<models::EGLConfigTree>(m_profile.configs());
        delegate = new EGLConfigTreeItemDelegate(m_view.get());
    } else if (name == "ES") {
        m_model = std::make_unique<models::ESCapabilityTree>(m_profile.capabilities());
        delegate = new ESCapabilityTreeItemDelegate(m_view.get());
    } else {
        m_model = std::make_unique<models::ESExtensionTree>(m_profile.extensions());
        delegate = new ESExtensionTreeItemDelegate(m_view.get());
    }
    m_model->setWritable(true);
    m_view->setModel(m_model.get());
    m_view->setItemDelegate(delegate);
    m_view->expandAll();
    m_view->resize(600, 500);
    m_view->show();
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
}

QModelIndex TestTreeItemDelegates::cell(const QStringList& path, int column) const
{
    QModelIndex found = m_model->index(0, KeyColumn);
    for (const QString& key : path) {
        QModelIndex next;
        for (int row = 0; row < m_model->rowCount(found); ++row) {
            if (m_model->index(row, KeyColumn, found).data() == key)
                next = m_model->index(row, KeyColumn, found);
        }
        found = next;
    }
    return found.siblingAtColumn(column);
}

QWidget* TestTreeItemDelegates::edit(const QModelIndex& index)
{
    m_view->setFocus();
    m_view->setCurrentIndex(index);
    QTest::keyClick(m_view.get(), Qt::Key_F2);
    QWidget* editor = m_view->indexWidget(index);
    return editor ? editor : QApplication::focusWidget();
}

void TestTreeItemDelegates::opensTheRightEditor_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<QStringList>("path");
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("editor");
    const auto row = [](const char* tree, const QStringList& path, int column, const char* editor) {
        QTest::addRow("%s %s %d", tree, qPrintable(path.join(u'/')), column)
            << tree << path << column << editor;
    };
    row("EGL", {}, KeyColumn, "widgets::EGLConfigIDSelector");
    row("EGL", {}, ValueColumn, "");
    row("EGL", {"EGL_SAMPLES"}, KeyColumn, "widgets::EGLAttribSelector");
    row("EGL", {"EGL_SAMPLES"}, ValueColumn, "QLineEdit");
    row("EGL", {"EGL_CONFIG_CAVEAT"}, ValueColumn, "widgets::EGLConfigCaveatSelector");
    row("EGL", {"EGL_CONFORMANT"}, ValueColumn, "widgets::EGLTrueFalseSelector");
    row("EGL", {"odd"}, KeyColumn, "widgets::EGLAttribSelector");
    row("EGL", {"secret"}, ValueColumn, "");
    row("EGL", {"secret", "a"}, KeyColumn, "");
    row("EGL", {"secret", "a"}, ValueColumn, "QLineEdit");
    row("ES", {}, KeyColumn, "widgets::ESAPISelector");
    row("ES", {"GL_SAMPLES"}, KeyColumn, "widgets::ESCapabilitySelector");
    row("ES", {"GL_SHADER_COMPILER"}, ValueColumn, "widgets::ESTrueFalseSelector");
    row("ES", {"GL_COMPRESSED_TEXTURE_FORMATS"}, ValueColumn, "widgets::ImageFormatSelector");
    row("ES", {"GL_ALIASED_POINT_SIZE_RANGE"}, ValueColumn, "");
    row("ES", {"GL_ALIASED_POINT_SIZE_RANGE", "min"}, KeyColumn, "");
    row("ES", {"GL_SMOOTH_LINE_WIDTH_RANGE"}, ValueColumn, "");
    row("extensions", {}, KeyColumn, "widgets::ESAPISelector");
    row("extensions", {"GL_OES_depth24"}, KeyColumn, "widgets::ESExtensionSelector");
}

void TestTreeItemDelegates::opensTheRightEditor()
{
    QFETCH(QString, tree);
    QFETCH(QStringList, path);
    QFETCH(int, column);
    QFETCH(QString, editor);
    show(qPrintable(tree));
    const QModelIndex index = cell(path, column);
    QVERIFY(index.isValid());
    const std::unique_ptr<QWidget> made(m_view->itemDelegate()->createEditor(m_view.get(), {}, index));
    QCOMPARE(made != nullptr, !editor.isEmpty());
    if (!made)
        return;
    QVERIFY2(made->inherits(qPrintable(editor)), made->metaObject()->className());
    QVERIFY(!made->accessibleName().isEmpty());
    // An editor that is left as it was found changes nothing.
    QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
    m_view->itemDelegate()->setModelData(made.get(), m_model.get(), index);
    QCOMPARE(changed.count(), 0);
}

void TestTreeItemDelegates::entersText_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<QStringList>("path");
    QTest::addColumn<QString>("typed");
    // Invalid where the text is refused.
    QTest::addColumn<QVariant>("stored");
    const QVariant refused;
    const auto row = [](const char* tree, const QStringList& path, const char* typed,
                         const QVariant& stored) {
        QTest::addRow("%s %s", qPrintable(path.last()), typed) << tree << path << typed << stored;
    };
    row("EGL", {"EGL_SAMPLES"}, " -2147483648 ", std::numeric_limits<int>::min());
    row("EGL", {"EGL_SAMPLES"}, "2147483648", refused);
    row("EGL", {"EGL_SAMPLES"}, "EGL_DONT_CARE", -1);
    row("EGL", {"EGL_SAMPLES"}, "EGL_WINDOW_BIT", refused);
    row("EGL", {"EGL_SAMPLES"}, "", refused);
    row("EGL", {"EGL_SURFACE_TYPE"}, "EGL_PBUFFER_BIT", "EGL_PBUFFER_BIT");
    row("EGL", {"EGL_SURFACE_TYPE"}, "EGL_NO_SUCH_BIT", refused);
    row("EGL", {"EGL_SURFACE_TYPE"}, "4", 4);
    row("EGL", {"EGL_SURFACE_TYPE"}, "EGL_WINDOW_BIT | EGL_PBUFFER_BIT|EGL_WINDOW_BIT",
        "EGL_WINDOW_BIT|EGL_PBUFFER_BIT");
    row("EGL", {"EGL_SURFACE_TYPE"}, "EGL_WINDOW_BIT|EGL_OPENGL_BIT", refused);
    row("EGL", {"EGL_SURFACE_TYPE"}, "EGL_WINDOW_BIT|", refused);
    row("EGL", {"EGL_SURFACE_TYPE"}, "0xFFFFFFFF", -1);
    row("EGL", {"EGL_SAMPLES"}, "0x3038", 12344);
    row("EGL", {"EGL_SAMPLES"}, "0xFFFFFFFF", refused);
    row("ES", {"GL_SAMPLES"}, "0xFFFFFFFF", "4294967295");
    row("ES", {"GL_SAMPLES"}, "0x100000000", refused);
    row("EGL", {"odd"}, "<any>", "<any>");
    row("EGL", {"secret", "a"}, "1x", "1x");
    row("ES", {"GL_SAMPLES"}, "4294967295", "4294967295");
    row("ES", {"GL_SAMPLES"}, "GL_RGBA", "6408");
    row("ES", {"GL_SAMPLES"}, "gl_rgba", refused);
    row("ES", {"GL_SAMPLES"}, "0.5", refused);
    row("ES", {"GL_ALIASED_POINT_SIZE_RANGE", "max"}, "0.5", "0.5");
    row("ES", {"GL_ALIASED_POINT_SIZE_RANGE", "max"}, "much", refused);
    row("ES", {"mystery", "deep"}, "much", "much");
}

void TestTreeItemDelegates::entersText()
{
    QFETCH(QString, tree);
    QFETCH(QStringList, path);
    QFETCH(QString, typed);
    QFETCH(QVariant, stored);
    show(qPrintable(tree));
    const QPersistentModelIndex index = cell(path, ValueColumn);
    const QVariant before = index.data(Qt::EditRole);
    QPointer<QWidget> editor = edit(index);
    QVERIFY(qobject_cast<QLineEdit*>(editor));
    const int width = editor->width();
    QTest::keyClick(editor, Qt::Key_Delete);
    QTest::keyClicks(editor, typed);
    QVERIFY2(editor->width() >= width, "else the old value shows beside it");
    QTest::keyClick(editor, Qt::Key_Return);
    if (stored.isValid()) {
        QTRY_VERIFY(!editor);
        QCOMPARE(index.data(Qt::EditRole), stored);
        QVERIFY(!QToolTip::isVisible());
        return;
    }
    QVERIFY(QToolTip::isVisible());
    QCoreApplication::processEvents();
    QVERIFY(editor && editor->isVisible());
    QCOMPARE(index.data(Qt::EditRole), before);
    QTest::keyClick(editor, Qt::Key_Escape);
    QTRY_VERIFY(!editor);
    QCOMPARE(index.data(Qt::EditRole), before);
}

void TestTreeItemDelegates::leaving_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("explained");
    // No key: the focus goes elsewhere.
    QTest::newRow("Escape") << "8" << int(Qt::Key_Escape) << "4" << false;
    QTest::newRow("Tab") << "8" << int(Qt::Key_Tab) << "8" << false;
    QTest::newRow("elsewhere") << "8" << 0 << "8" << false;
    QTest::newRow("refused, Tab") << "x" << int(Qt::Key_Tab) << "4" << true;
    QTest::newRow("refused, elsewhere") << "x" << 0 << "4" << true;
    QTest::newRow("refused, Escape") << "x" << int(Qt::Key_Escape) << "4" << false;
}

void TestTreeItemDelegates::leaving()
{
    QFETCH(QString, typed);
    QFETCH(int, key);
    QFETCH(QString, stored);
    QFETCH(bool, explained);
    show("ES");
    const QPersistentModelIndex index = cell({"GL_SAMPLES"}, ValueColumn);
    QPointer<QWidget> editor = edit(index);
    QTest::keyClicks(editor, typed);
    if (key != 0)
        QTest::keyClick(editor, Qt::Key(key));
    else
        m_view->setFocus();
    QTRY_VERIFY(!editor);
    QCOMPARE(index.data(Qt::EditRole).toString(), stored);
    QTRY_COMPARE(QToolTip::isVisible(), explained);
}

void TestTreeItemDelegates::selectorsCommit()
{
    show("EGL");
    const QPersistentModelIndex index = cell({"EGL_CONFIG_CAVEAT"}, ValueColumn);
    QPointer<GenericValueSelector> selector = qobject_cast<GenericValueSelector*>(edit(index));
    QVERIFY(selector);
    QTest::keyClicks(selector, QStringLiteral("egl_slow"));
    QCOMPARE(index.data(Qt::EditRole), 12344);
    QTest::keyClick(selector, Qt::Key_Escape);
    QTRY_VERIFY(!selector);
    QCOMPARE(index.data(Qt::EditRole), 12344);

    selector = qobject_cast<GenericValueSelector*>(edit(index));
    QTest::keyClicks(selector, QStringLiteral("egl_slow"));
    QTest::keyClick(selector, Qt::Key_Return);
    QTRY_VERIFY(!selector);
    QCOMPARE(index.data(), "EGL_SLOW_CONFIG");

    selector = qobject_cast<GenericValueSelector*>(edit(index));
    selector->showPopup();
    QTest::keyClick(selector->view(), Qt::Key_End);
    QTest::keyClick(selector->view(), Qt::Key_Return);
    QTRY_VERIFY(!selector);
    QCOMPARE(index.data(), "EGL_NON_CONFORMANT_CONFIG");
}

void TestTreeItemDelegates::idsOfConfigs()
{
    show("EGL");
    const QPersistentModelIndex index = cell({}, KeyColumn);
    QPointer<EGLConfigIDSelector> id = qobject_cast<EGLConfigIDSelector*>(edit(index));
    QVERIFY(id);
    QTest::keyClicks(id, QStringLiteral("2"));
    QTest::keyClick(id, Qt::Key_Return);
    QVERIFY(QToolTip::text().contains(QStringLiteral("config 2")));
    QVERIFY(id && id->isVisible());
    QTest::keyClicks(id, QStringLiteral("7"));
    QTest::keyClick(id, Qt::Key_Return);
    QTRY_VERIFY(!id);
    QCOMPARE(index.data(Qt::EditRole), 27);

    // A number that was cut off would look like the one that was entered.
    id = qobject_cast<EGLConfigIDSelector*>(edit(index));
    QTest::keyClicks(id, QStringLiteral("99999999999"));
    QTest::keyClick(id, Qt::Key_Return);
    QVERIFY(QToolTip::text().contains(QStringLiteral("2147483647")));
    QVERIFY(id && id->isVisible());
    id->selectAll();
    QTest::keyClicks(id, QStringLiteral("0x1F"));
    QTest::keyClick(id, Qt::Key_Return);
    QTRY_VERIFY(!id);
    QCOMPARE(index.data(Qt::EditRole), 31);
}

void TestTreeItemDelegates::paintsWhatUsersRead()
{
    const auto option = [this](const QStringList& path, int column) {
        struct Access : ProfileTreeItemDelegate {
            using ProfileTreeItemDelegate::initStyleOption;
        };
        QStyleOptionViewItem shown;
        const auto* delegate = static_cast<ProfileTreeItemDelegate*>(m_view->itemDelegate());
        (delegate->*(&Access::initStyleOption))(&shown, cell(path, column));
        return shown;
    };
    const auto painted = [&option](const QStringList& path) {
        return option(path, ValueColumn).text;
    };
    show("ES");
    QCOMPARE(painted({"GL_SAMPLES"}), "4");
    QCOMPARE(painted({"GL_SHADER_COMPILER"}), "GL_TRUE");
    QCOMPARE(painted({"GL_ALIASED_POINT_SIZE_RANGE", "min"}), "1");
    QCOMPARE(painted({"GL_COMPRESSED_TEXTURE_FORMATS"}), "GL_ETC1_RGB8_OES");
    show("EGL");
    m_model->setData(cell({"EGL_SAMPLES"}, ValueColumn), 1);
    QCOMPARE(painted({"EGL_SAMPLES"}), "1");
    QCOMPARE(painted({"EGL_CONFIG_CAVEAT"}), "EGL_NONE");
    QVERIFY(option({"EGL_SAMPLES"}, KeyColumn).font.bold());
    QVERIFY(!option({"EGL_SAMPLES"}, ValueColumn).font.bold());
    QVERIFY(!option({"EGL_CONFIG_CAVEAT"}, KeyColumn).font.bold());
    const QPoint place = m_view->visualRect(cell({"EGL_SAMPLES"}, KeyColumn)).center();
    QHelpEvent help(QEvent::ToolTip, place, m_view->viewport()->mapToGlobal(place));
    QApplication::sendEvent(m_view->viewport(), &help);
    QVERIFY(QToolTip::text().contains(QStringLiteral("changed, not saved")));
}

void TestTreeItemDelegates::offersWhatTheRowLacks()
{
    const auto choices = [this](const QStringList& path) {
        const std::unique_ptr<QWidget> editor(
            m_view->itemDelegate()->createEditor(m_view.get(), {}, cell(path, KeyColumn)));
        const auto* selector = qobject_cast<const QComboBox*>(editor.get());
        QStringList texts;
        for (int i = 0; selector && i < selector->count(); ++i) {
            if (i != 1)
                texts += selector->itemText(i);
        }
        return texts;
    };
    show("ES");
    QCOMPARE(choices({}), QStringList({"20", "1", "3"}));
    QCOMPARE(choices({"GL_ALIASED_POINT_SIZE_RANGE"}),
        QStringList({"aliased_point_size_range", "aliased_line_width_range", "smooth_point_size_range"}));
    const QStringList scalars = choices({"GL_SAMPLES"});
    QVERIFY(scalars.contains(QStringLiteral("max_lights")));
    QVERIFY(!scalars.contains(QStringLiteral("shader_compiler")));
    QVERIFY(!scalars.contains(QStringLiteral("max_viewport_dims")));

    show("EGL");
    const QStringList attribs = choices({"EGL_SAMPLES"});
    QCOMPARE(attribs.mid(0, 3), QStringList({"12337", "12320", "12321"}));
    QVERIFY(!attribs.contains(QStringLiteral("12339")));

    show("extensions");
    QStringList extensions = choices({"GL_OES_depth24"});
    QCOMPARE(extensions.takeFirst(), "GL_OES_depth24");
    QVERIFY(extensions.size() > 100);
    QVERIFY(std::is_sorted(extensions.begin(), extensions.end()));
    QVERIFY(!extensions.contains(QStringLiteral("GL_OES_depth24")));
}

void TestTreeItemDelegates::longTextsStayWhole()
{
    m_profile.configs()[1].back().value.assign(40000, 'x');
    show("EGL");
    const QPersistentModelIndex index = cell({"odd"}, ValueColumn);
    QPointer<QWidget> editor = edit(index);
    QTest::keyClick(editor, Qt::Key_End);
    QTest::keyClicks(editor, QStringLiteral("yz"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!editor);
    QCOMPARE(index.data(Qt::EditRole).toString().size(), 40002);
}

QTEST_MAIN(TestTreeItemDelegates)
#include "TestTreeItemDelegates.moc"
