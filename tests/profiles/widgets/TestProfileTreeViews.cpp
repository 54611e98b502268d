#include "DialogAnswers.h"
#include "EGLConfigTreeView.h"
#include "ESCapabilityTreeView.h"
#include "ESExtensionTreeView.h"
#include "ProfileColumns.h"
#include "ProfileDataWrapper.h"
#include "ProfileWriter.h"
#include "models/Profile.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QComboBox>
#include <QCompleter>
#include <QHelpEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>

using models::KeyColumn;
using models::ValueColumn;

namespace {

constexpr char document[] = R"(<profile>
<es version="2"><extension>GL_OES_depth24</extension><max_texture_size>64</max_texture_size>
 <max_viewport_dims><width>1</width><height>2</height></max_viewport_dims><samples>4</samples></es>
<es version="3"><max_samples>4</max_samples></es>
<egl><config id="1"><surface_type>EGL_WINDOW_BIT</surface_type><transparency><type>EGL_NONE</type><red>3</red>
 </transparency></config><config id="2"><level>0</level></config><config id="3"><level>0</level></config></egl>
</profile>)";

} // namespace

/// The views over real trees, driven by keys and actions.
class TestProfileTreeViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void keysEditValues();
    void keysMoveBetweenKeyAndValue();
    void tabGoesThroughValues();
    void deletingGoesOn();
    void refreshKeepsThePlace();
    void duplicates();
    void listsAndMasksAreAddedAgain();
    void namesAreTyped();
    void newRowsAreLegal_data();
    void newRowsAreLegal();
    void valuesStayInSight();
    void keysYieldToValuesInSight();

private:
    template <typename View> View& show(models::ProfileTree& tree)
    {
        auto* view = new View;
        m_view.reset(view);
        view->setHeaderHidden(true);
        view->setModel(&tree);
        view->setEditable(true);
        view->expandAll();
        view->resize(500, 400);
        view->show();
        view->activateWindow();
        if (!QTest::qWaitForWindowActive(view))
            qFatal("the view gets no focus");
        return *view;
    }
    QModelIndex at(std::initializer_list<int> rows, int column = KeyColumn) const
    {
        QModelIndex found;
        for (const int row : rows)
            found = m_view->model()->index(row, KeyColumn, found);
        return found.siblingAtColumn(column);
    }
    QStringList keys(const QModelIndex& parent = {}) const
    {
        QStringList keys;
        for (int row = 0; row < m_view->model()->rowCount(parent); ++row)
            keys << m_view->model()->index(row, KeyColumn, parent).data().toString();
        return keys;
    }
    void press(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QWidget* editor = m_view->indexWidget(m_view->currentIndex());
        QTest::keyClick(editor ? editor : m_view.get(), Qt::Key(key), modifiers);
        QCoreApplication::processEvents();
    }
    /// The cell that is being edited.
    QModelIndex edited() const
    {
        return m_view->indexWidget(m_view->currentIndex()) ? m_view->currentIndex() : QModelIndex();
    }
    void trigger(const QString& text) const
    {
        for (QAction* action : m_view->actions()) {
            if (action->text() == text)
                return action->trigger();
        }
        QFAIL("no such action");
    }
    void add(const QModelIndex& where, const QString& action, const QString& name)
    {
        m_view->setCurrentIndex(where);
        m_answers.enter(action, name);
        trigger(action);
        press(Qt::Key_Escape);
    }

    std::shared_ptr<ProfileDataWrapper> m_wrapper;
    std::unique_ptr<models::Profile> m_profile;
    std::unique_ptr<widgets::ProfileTreeView> m_view;
    DialogAnswers m_answers;
};

void TestProfileTreeViews::init()
{
    m_wrapper = ProfileDataWrapper::fromText(document, true);
    m_profile = std::make_unique<models::Profile>(*m_wrapper);
    m_profile->setEditable(true);
}

void TestProfileTreeViews::cleanup()
{
    QToolTip::hideText();
    m_view.reset();
    QCOMPARE(m_answers.problems(), QStringList());
}

void TestProfileTreeViews::keysEditValues()
{
    show<widgets::ESCapabilityTreeView>(m_profile->capabilities());
    const std::pair<QModelIndex, QModelIndex> cells[] = {
        {at({0, 2}), at({0, 2}, ValueColumn)}, // a value
        {at({0, 1}), at({0, 1, 0}, ValueColumn)}, // the first part of a size
        {at({0}), at({0})}, // an API has no value
    };
    for (const int key : {Qt::Key_F2, Qt::Key_Return, Qt::Key_Enter}) {
        for (const auto& [current, wanted] : cells) {
            m_view->setCurrentIndex(current);
            press(key, key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
            QCOMPARE(edited(), wanted);
            press(Qt::Key_Escape);
            QVERIFY(!edited().isValid());
        }
    }
    m_view->setCurrentIndex(at({0, 2}, ValueColumn));
    press(Qt::Key_F2, Qt::ShiftModifier);
    QCOMPARE(edited(), at({0, 2}));
    press(Qt::Key_Escape);
    m_profile->setEditable(false);
    press(Qt::Key_F2);
    QVERIFY(!edited().isValid());
}

void TestProfileTreeViews::keysMoveBetweenKeyAndValue()
{
    show<widgets::ESCapabilityTreeView>(m_profile->capabilities());
    m_view->setCurrentIndex(at({0, 2}));
    press(Qt::Key_Right);
    QCOMPARE(m_view->currentIndex(), at({0, 2}, ValueColumn));
    press(Qt::Key_Up);
    QCOMPARE(m_view->currentIndex(), at({0, 1, 1}, ValueColumn));
    press(Qt::Key_Left);
    QCOMPARE(m_view->currentIndex(), at({0, 1, 1}));
    press(Qt::Key_Left);
    QCOMPARE(m_view->currentIndex(), at({0, 1}));
    press(Qt::Key_Left);
    QVERIFY(!m_view->isExpanded(at({0, 1})));
    press(Qt::Key_Right);
    QVERIFY(m_view->isExpanded(at({0, 1})));
    QCOMPARE(m_view->currentIndex(), at({0, 1}));
}

void TestProfileTreeViews::tabGoesThroughValues()
{
    show<widgets::ESCapabilityTreeView>(m_profile->capabilities());
    m_view->setCurrentIndex(at({0, 0}));
    press(Qt::Key_F2);
    QTest::keyClicks(m_view->indexWidget(edited()), QStringLiteral("128"));
    // Over the size and the API, which have no values.
    for (const auto& rows : {std::initializer_list<int>{0, 1, 0}, {0, 1, 1}, {0, 2}, {1, 0}}) {
        press(Qt::Key_Tab);
        QCOMPARE(edited(), at(rows, ValueColumn));
    }
    QCOMPARE(at({0, 0}, ValueColumn).data(Qt::EditRole).toString(), QStringLiteral("128"));
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(edited(), at({0, 2}, ValueColumn));
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    QVERIFY(!edited().isValid());
    QCOMPARE(m_view->currentIndex(), at({1, 0}, ValueColumn));
    // From a key to its own value.
    m_view->setCurrentIndex(at({0, 2}));
    press(Qt::Key_F2, Qt::ShiftModifier);
    press(Qt::Key_Tab);
    QCOMPARE(edited(), at({0, 2}, ValueColumn));
}

void TestProfileTreeViews::deletingGoesOn()
{
    show<widgets::ESCapabilityTreeView>(m_profile->capabilities());
    m_view->setCurrentIndex(at({0, 0}, ValueColumn));
    press(Qt::Key_Delete);
    QCOMPARE(m_view->currentIndex(), at({0, 0}, ValueColumn));
    QVERIFY(m_view->selectionModel()->isSelected(m_view->currentIndex()));
    m_view->setCurrentIndex(at({0, 1}));
    press(Qt::Key_Delete);
    QCOMPARE(keys(at({0})), QStringList(QStringLiteral("GL_MAX_VIEWPORT_DIMS")));
    QCOMPARE(m_view->currentIndex(), at({0, 0}));
    for (int time = 0; time < 3; ++time)
        press(Qt::Key_Delete);
    QCOMPARE(keys(), QStringList());

    // Several at once, the current one among them.
    show<widgets::EGLConfigTreeView>(m_profile->configs());
    m_view->setCurrentIndex(at({0}));
    m_view->selectionModel()->select(at({1}), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    press(Qt::Key_Delete);
    QCOMPARE(keys(), QStringList(QStringLiteral("Config 3")));
    QCOMPARE(m_view->selectionModel()->selectedRows(), QModelIndexList{at({0})});
}

void TestProfileTreeViews::refreshKeepsThePlace()
{
    std::string many = "<profile><egl>";
    for (int id = 0; id < 60; ++id)
        many += "<config id=\"" + std::to_string(id) + "\"><level>0</level></config>";
    const auto wrapper = ProfileDataWrapper::fromText(many + "</egl></profile>", true);
    m_profile = std::make_unique<models::Profile>(*wrapper);
    m_profile->setEditable(true);
    show<widgets::EGLConfigTreeView>(m_profile->configs());
    m_view->collapse(at({1}));
    // An id that belongs elsewhere, and one that is new.
    QVERIFY(m_profile->configs().setData(at({2}), 100));
    m_view->setCurrentIndex(at({40, 0}, ValueColumn));
    m_view->verticalScrollBar()->setValue(50);
    ProfileData edited = wrapper->data();
    QCOMPARE(m_profile->writeTo(edited), std::string());
    m_profile->refresh(edited);
    QCOMPARE(m_profile->configs().rowCount(), 60);
    QCOMPARE(at({59}).data().toString(), QStringLiteral("Config 100"));
    QCOMPARE(m_view->verticalScrollBar()->value(), 50);
    QCOMPARE(m_view->currentIndex(), at({39, 0}, ValueColumn));
    QVERIFY(m_view->selectionModel()->isSelected(m_view->currentIndex()));
    QVERIFY(!m_view->isExpanded(at({1})));
    QVERIFY(m_view->isExpanded(at({2})) && m_view->isExpanded(at({59})));

    // Without a current row, too.
    m_view->setCurrentIndex({});
    m_view->verticalScrollBar()->setValue(60);
    m_profile->refresh(edited);
    QCOMPARE(m_view->verticalScrollBar()->value(), 60);
}

void TestProfileTreeViews::duplicates()
{
    const QAbstractItemModelTester tester(&m_profile->configs());
    const QAbstractItemModelTester capabilities(&m_profile->capabilities());
    show<widgets::EGLConfigTreeView>(m_profile->configs());
    m_view->setCurrentIndex(at({0}));
    press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(m_view->currentIndex(), at({1}));
    m_view->setCurrentIndex(at({3, 0}, ValueColumn));
    trigger(QStringLiteral("Duplicate"));
    QCOMPARE(keys(at({3})), QStringList({QStringLiteral("EGL_LEVEL"), QStringLiteral("EGL_LEVEL")}));

    show<widgets::ESCapabilityTreeView>(m_profile->capabilities());
    m_view->setCurrentIndex(at({0}));
    trigger(QStringLiteral("Duplicate"));
    QCOMPARE(keys(), QStringList({"OpenGL ES 2.0", "OpenGL ES 1.1", "OpenGL ES 3.0"}));
    QCOMPARE(m_view->model()->rowCount(at({1, 1})), 2);
    m_view->setCurrentIndex(at({0}));
    trigger(QStringLiteral("Duplicate"));
    QCOMPARE(m_view->model()->rowCount(), 4);
    trigger(QStringLiteral("Duplicate"));
    QCOMPARE(m_view->model()->rowCount(), 4);

    ProfileData written = m_wrapper->data();
    QCOMPARE(m_profile->writeTo(written), std::string());
    QVERIFY(written.configs().at(0) == written.configs().at(1));
    QVERIFY(written.capabilities().at(1) == written.capabilities().at(2));
}

void TestProfileTreeViews::listsAndMasksAreAddedAgain()
{
    show<widgets::EGLConfigTreeView>(m_profile->configs());
    add(at({0, 0}), QStringLiteral("Add Attribute"), QStringLiteral("EGL_SURFACE_TYPE"));
    QCOMPARE(keys(at({0})).filter(QStringLiteral("EGL_SURFACE_TYPE")).size(), 2);

    show<widgets::ESCapabilityTreeView>(m_profile->capabilities());
    for (int time = 0; time < 2; ++time)
        add(at({0}), QStringLiteral("Add Capability"), QStringLiteral("GL_COMPRESSED_TEXTURE_FORMATS"));
    QCOMPARE(keys(at({0})).filter(QStringLiteral("GL_COMPRESSED_TEXTURE_FORMATS")).size(), 2);
}

void TestProfileTreeViews::namesAreTyped()
{
    show<widgets::ESCapabilityTreeView>(m_profile->capabilities());
    for (const char* name : {"GL_MAX_DRAW_BUFFERS", " max_color_attachments ", "max_lights"})
        add(at({0}), QStringLiteral("Add Capability"), QString::fromLatin1(name));
    add(at({0}), QStringLiteral("Add Capability"), QStringLiteral("GL_MAX_UNHEARD_OF"));
    QCOMPARE(keys(at({0})).mid(0, 4),
        QStringList({"max_unheard_of", "GL_MAX_LIGHTS", "GL_MAX_COLOR_ATTACHMENTS", "GL_MAX_DRAW_BUFFERS"}));

    const auto refuses = [this](const QModelIndex& where, const char* action, const char* name) {
        bool refused = false;
        m_view->setCurrentIndex(where);
        m_answers.next(QString::fromLatin1(action), [&refused, name](QWidget& widget) {
            auto& dialog = static_cast<QInputDialog&>(widget);
            dialog.setTextValue(QString::fromLatin1(name));
            dialog.accept();
            refused = dialog.isVisible() && QToolTip::isVisible();
            dialog.reject();
        });
        const QStringList before = keys(where);
        trigger(QString::fromLatin1(action));
        return refused && keys(where) == before;
    };
    for (const char* name : {"", "1x", "a b", "extension", "GL_SAMPLES", "samples", "GL_MAX_DRAW_BUFFERS"})
        QVERIFY2(refuses(at({0}), "Add Capability", name), name);

    show<widgets::ESExtensionTreeView>(m_profile->extensions());
    add(at({0}), QStringLiteral("Add Extension"), QStringLiteral("GL_CORVALE_unheard_of"));
    QCOMPARE(keys(at({0})), QStringList({"GL_CORVALE_unheard_of", "GL_OES_depth24"}));
    for (const char* name : {"", "GL OES", "GL_OES_depth24"})
        QVERIFY2(refuses(at({0}), "Add Extension", name), name);

    m_answers.next(QStringLiteral("Add Extension"), [](QWidget& widget) {
        auto* list = widget.findChild<QComboBox*>();
        QCOMPARE(list->lineEdit()->selectedText(), list->currentText());
        QTest::keyClicks(list->lineEdit(), QStringLiteral("anisotropic"));
        QCOMPARE(list->completer()->currentCompletion(), QStringLiteral("GL_EXT_texture_filter_anisotropic"));
        static_cast<QInputDialog&>(widget).reject();
    });
    trigger(QStringLiteral("Add Extension"));
}

void TestProfileTreeViews::newRowsAreLegal_data()
{
    QTest::addColumn<int>("section");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    const auto row = [](int section, const char* name, const char* value) {
        QTest::addRow("%d %s", section, name)
            << section << QString::fromLatin1(name) << QString::fromLatin1(value);
    };
    row(0, "GL_MAX_CUBE_MAP_TEXTURE_SIZE", "16");
    row(0, "GL_MAX_RENDERBUFFER_SIZE", "64");
    row(1, "GL_MAX_TEXTURE_SIZE", "2048");
    row(1, "GL_MAX_RENDERBUFFER_SIZE", "2048");
    row(1, "GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS", "32");
    row(1, "GL_MAX_UNIFORM_BLOCK_SIZE", "16384");
    row(1, "GL_COMPRESSED_TEXTURE_FORMATS", "37492");
    row(1, "GL_MAX_VIEWPORT_DIMS", "2048");
    row(1, "GL_MAX_TEXTURE_LOD_BIAS", "2");
    row(1, "GL_MAX_COMPUTE_WORK_GROUP_SIZE", "1");
}

void TestProfileTreeViews::newRowsAreLegal()
{
    QFETCH(int, section);
    QFETCH(QString, name);
    show<widgets::ESCapabilityTreeView>(m_profile->capabilities());
    QVERIFY(m_view->model()->removeRows(1, 1, at({0})));
    add(at({section}), QStringLiteral("Add Capability"), name);
    const QModelIndex added = at({section, 0});
    const QModelIndex value = m_view->model()->hasChildren(added) ? at({section, 0, 1}) : added;
    QTEST(value.siblingAtColumn(ValueColumn).data(Qt::EditRole).toString(), "value");
}

void TestProfileTreeViews::valuesStayInSight()
{
    show<widgets::EGLConfigTreeView>(m_profile->configs());
    for (const int width : {500, 250, 150, 100, 400}) {
        m_view->resize(width, 300);
        QCoreApplication::processEvents();
        const int room = m_view->viewport()->width();
        QVERIFY2(m_view->columnViewportPosition(ValueColumn) <= room * 3 / 5 + 1
                || m_view->visualRect(at({0, 0}, ValueColumn)).right() < room,
            qPrintable(QString::number(width)));
    }
    // A key that is cut can be read nevertheless.
    m_view->resize(100, 300);
    QCoreApplication::processEvents();
    const QPoint place = m_view->visualRect(at({0, 0})).center();
    QHelpEvent help(QEvent::ToolTip, place, m_view->viewport()->mapToGlobal(place));
    QApplication::sendEvent(m_view->viewport(), &help);
    QVERIFY(QToolTip::text().contains(QStringLiteral("EGL_SURFACE_TYPE")));

    m_view->resize(500, 300);
    QCoreApplication::processEvents();
    QVERIFY(m_view->columnWidth(KeyColumn) >= m_view->sizeHintForIndex(at({0, 0})).width());
}

void TestProfileTreeViews::keysYieldToValuesInSight()
{
    std::string rows;
    for (int i = 0; i < 40; ++i)
        rows += "<max_texture_size>4096</max_texture_size>";
    const auto wrapper = ProfileDataWrapper::fromText("<profile><es version=\"2\">" + rows
            + "<compressed_texture_format>37495</compressed_texture_format></es></profile>",
        true);
    m_profile = std::make_unique<models::Profile>(*wrapper);
    show<widgets::ESCapabilityTreeView>(m_profile->capabilities());
    m_view->resize(2000, 300);
    QCoreApplication::processEvents();
    const int keys = m_view->columnWidth(KeyColumn);
    const int wide = m_view->sizeHintForIndex(at({0, 40}, ValueColumn)).width();
    m_view->resize(keys + wide / 2, 300);
    QCoreApplication::processEvents();
    // Neither a value out of sight nor one of a closed section takes room from the keys.
    const auto isWhole = [&] {
        return m_view->columnWidth(KeyColumn) == keys && m_view->horizontalScrollBar()->maximum() == 0;
    };
    QVERIFY(isWhole());
    m_view->scrollToBottom();
    QVERIFY(m_view->columnWidth(KeyColumn) < keys);
    QCOMPARE(m_view->columnWidth(ValueColumn), wide);
    m_view->scrollToTop();
    m_view->collapse(at({0}));
    m_view->expand(at({0}));
    QTRY_VERIFY(isWhole());
}

QTEST_MAIN(TestProfileTreeViews)
#include "TestProfileTreeViews.moc"
