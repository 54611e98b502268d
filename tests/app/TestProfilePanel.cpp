#include "Controller.h"
#include "DialogAnswers.h"
#include "EGLConfigTreeView.h"
#include "ESCapabilityTreeView.h"
#include "ESExtensionTreeView.h"
#include "MainWindow.h"
#include "MetaObjects.h"
#include "ProfileData.h"
#include "widgets/Profile.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>

namespace {

constexpr char mine[] =
    "<profile><device>Mine</device><renderer>R</renderer>"
    "<es version=\"2\"><extension>GL_OES_depth24</extension>"
    "<max_texture_size>4096</max_texture_size><samples> 4 </samples></es>"
    "<egl><config id=\"0\"><red_size>8</red_size><level>0</level></config></egl></profile>";

const QString fileNameTitle = QStringLiteral("Choose a file name");
const QString saveTitle = QStringLiteral("Save changes");

QString row(const QModelIndex& index)
{
    return QStringLiteral("%1=%2").arg(index.data().toString(), index.siblingAtColumn(1).data().toString());
}

} // namespace

/// The profile page of the real program, driven by clicks and keys; what counts is what is in the files then.
class TestProfilePanel : public QObject {
    Q_OBJECT

public:
    TestProfilePanel(Controller& controller, MainWindow& window, const QString& folder)
        : m_controller(controller)
        , m_window(window)
        , m_folder(folder)
    {
    }

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void slotsStandInOrder();
    void viewingAndModifying();
    void savingChangesOneValue();
    void readOnlyIsSavedAsACopy();
    void saveAsLeavesTheOriginal();
    void anotherProfileAsksFirst();
    void newProfile();
    void otherProgramsAreNotOverwritten();
    void failedSaveKeepsTheEdits();
    void withoutAFolderOneIsChosen();
    void menusOfferWhatIsMissing();
    void rowsAreAddedAndDeleted();

private:
    template <typename T = QWidget> T* find(const char* name) const
    {
        return m_window.findChild<T*>(QString::fromLatin1(name));
    }
    QPushButton* button(const char* name) const
    {
        return find<widgets::Profile>("profile")->findChild<QPushButton*>(QString::fromLatin1(name));
    }
    QComboBox* chooser() const { return find<QComboBox>("cmbProfile"); }
    widgets::ProfileTreeView* tree(const char* name) const { return find<widgets::ProfileTreeView>(name); }
    QString device() const { return find<QLineEdit>("editDevice")->text(); }
    bool isModifying() const { return button("btnSave")->isVisible(); }

    void click(const char* name) const { QTest::mouseClick(button(name), Qt::LeftButton); }
    void choose(const QString& text) const { chooser()->setCurrentIndex(chooser()->findText(text)); }
    void enterDevice(const QString& text) const
    {
        find<QLineEdit>("editDevice")->selectAll();
        QTest::keyClicks(find<QLineEdit>("editDevice"), text);
    }
    QModelIndex index(const char* view, std::initializer_list<int> rows, int column = 0) const
    {
        QModelIndex found;
        for (const int row : rows)
            found = tree(view)->model()->index(row, 0, found);
        return found.siblingAtColumn(column);
    }
    /// Edits a cell and leaves the editor as the key does; with Key_unknown it stays open.
    void type(const char* view, const QModelIndex& cell, const QString& text, Qt::Key end) const
    {
        tree(view)->setCurrentIndex(cell);
        tree(view)->edit(cell);
        auto* const line = tree(view)->viewport()->findChild<QLineEdit*>();
        QVERIFY(line);
        line->selectAll();
        QTest::keyClicks(line, text);
        if (end != Qt::Key_unknown)
            QTest::keyClick(line, end);
        QCoreApplication::processEvents();
    }
    /// Asks for the context menu of a row, of empty space for none.
    void menu(const char* view, const QModelIndex& at) const
    {
        tree(view)->scrollTo(at);
        const QPoint below(tree(view)->viewport()->rect().bottomLeft() - QPoint(-5, 2));
        const QPoint place = at.isValid() ? tree(view)->visualRect(at).center() : below;
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, tree(view)->viewport()->mapToGlobal(place));
        QApplication::sendEvent(tree(view)->viewport(), &event);
    }

    QString path(const QString& name) const { return m_folder + QLatin1Char('/') + name; }
    void write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), qint64(content.size()));
    }
    QString content(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("none");
    }
    QStringList files() const { return QDir(m_folder).entryList(QDir::Files); }

    Controller& m_controller;
    MainWindow& m_window;
    QString m_folder;
    QString m_xml = QString::fromStdString(ProfileData::fromText(mine).toXml());
    DialogAnswers m_answers;
};

void TestProfilePanel::initTestCase()
{
    m_window.resize(1100, 750);
    m_window.show();
    m_window.activateWindow();
    find<QTabWidget>("mainTabWidget")->setCurrentIndex(0);
    QVERIFY(QTest::qWaitForWindowActive(&m_window));
}

void TestProfilePanel::init()
{
    write(QStringLiteral("mine.xml"), m_xml.toUtf8());
    m_controller.reloadProfiles();
    choose(QStringLiteral("Mine (mine.xml)"));
    QCOMPARE(device(), QStringLiteral("Mine"));
    for (const char* view : {"capabilitiesView", "extensionsView", "eglConfigsView"})
        tree(view)->expandAll();
}

void TestProfilePanel::cleanup()
{
    QCOMPARE(m_answers.problems(), QStringList());
    if (isModifying())
        click("btnDiscard");
    choose(QStringLiteral("Host"));
    for (const QString& file : files())
        QFile::remove(path(file));
}

void TestProfilePanel::slotsStandInOrder()
{
    QCOMPARE(ownMethods(widgets::Profile::staticMetaObject),
        QStringList({QStringLiteral("discardPressed()"), QStringLiteral("editPressed()"),
            QStringLiteral("savePressed()"), QStringLiteral("saveAsPressed()")}));
}

void TestProfilePanel::viewingAndModifying()
{
    QVERIFY(!find<QLineEdit>("editVendor")->isVisible());
    QVERIFY(!find<QLabel>("lblVendor")->isVisible());
    QVERIFY(find<QLineEdit>("editDevice")->isReadOnly());
    QTest::mouseDClick(tree("eglConfigsView")->viewport(), Qt::LeftButton, {},
        tree("eglConfigsView")->visualRect(index("eglConfigsView", {0, 0}, 1)).center());
    QVERIFY(!tree("eglConfigsView")->viewport()->findChild<QLineEdit*>());
    // A menu would stay open and be told as a problem.
    menu("eglConfigsView", index("eglConfigsView", {0}));

    // The buttons act on the press already.
    QTest::mousePress(button("btnEdit"), Qt::LeftButton);
    QVERIFY(isModifying());
    QVERIFY(find<QLineEdit>("editVendor")->isVisible());
    QVERIFY(!find<QLineEdit>("editDevice")->isReadOnly());
    enterDevice(QStringLiteral("Changed"));
    type("eglConfigsView", index("eglConfigsView", {0, 0}, 1), QStringLiteral("5"), Qt::Key_Return);
    tree("extensionsView")->model()->removeRow(0);
    click("btnDiscard");
    QVERIFY(!isModifying());
    QCOMPARE(device(), QStringLiteral("Mine"));
    QVERIFY(!find<QLineEdit>("editVendor")->isVisible());
    QCOMPARE(row(index("eglConfigsView", {0, 0})), QStringLiteral("EGL_RED_SIZE=8"));
    QCOMPARE(tree("extensionsView")->model()->rowCount(), 1);
    QVERIFY(tree("eglConfigsView")->isExpanded(index("eglConfigsView", {0})));

    choose(QStringLiteral("Host"));
    QVERIFY(!find<widgets::Profile>("profile")->isEnabled());
    QCOMPARE(device(), QStringLiteral("None"));
    QVERIFY(!tree("eglConfigsView")->model());
    QCOMPARE(content(QStringLiteral("mine.xml")), m_xml);
}

void TestProfilePanel::savingChangesOneValue()
{
    click("btnEdit");
    type("capabilitiesView", index("capabilitiesView", {0, 0}, 1), QStringLiteral("8192"), Qt::Key_Return);
    // An editor that is still open counts as well when the keyboard saves.
    type("eglConfigsView", index("eglConfigsView", {0, 0}, 1), QStringLiteral("EGL_DONT_CARE"),
        Qt::Key_unknown);
    QTest::keyClick(&m_window, Qt::Key_S, Qt::ControlModifier);
    QTRY_VERIFY(!isModifying());
    QString expected = m_xml;
    expected.replace(QStringLiteral("4096"), QStringLiteral("8192"))
        .replace(QStringLiteral(">8<"), QStringLiteral(">EGL_DONT_CARE<"));
    QCOMPARE(content(QStringLiteral("mine.xml")), expected);
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine (mine.xml)"));

    // Saved is saved: leaving asks nothing, and a second save changes nothing.
    click("btnEdit");
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")), expected);
    QVERIFY(!isModifying());
}

void TestProfilePanel::readOnlyIsSavedAsACopy()
{
    chooser()->setCurrentIndex(1);
    const QString name = chooser()->currentText();
    click("btnEdit");
    enterDevice(QStringLiteral("My own"));
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    click("btnSave");
    QVERIFY(isModifying());
    QCOMPARE(device(), QStringLiteral("My own"));
    QCOMPARE(files(), QStringList{QStringLiteral("mine.xml")});

    m_answers.press(saveTitle, QStringLiteral("Copy"));
    m_answers.next(fileNameTitle, [name](QWidget& widget) {
        auto& dialog = static_cast<QInputDialog&>(widget);
        QCOMPARE(dialog.textValue(), name + QStringLiteral(" (copy).xml"));
        dialog.accept();
    });
    click("btnSave");
    QVERIFY(!isModifying());
    const QString file = name + QStringLiteral(" (copy).xml");
    QVERIFY(content(file).contains(QStringLiteral("<device>My own</device>")));
    QCOMPARE(chooser()->currentText(), QStringLiteral("My own (%1)").arg(file));
    chooser()->setCurrentIndex(1);
    QCOMPARE(device(), name);
}

void TestProfilePanel::saveAsLeavesTheOriginal()
{
    click("btnEdit");
    enterDevice(QStringLiteral("Other"));
    m_answers.enter(fileNameTitle, QString());
    click("btnSaveAs");
    QVERIFY(isModifying());
    QCOMPARE(chooser()->count(), 15);

    m_answers.enter(fileNameTitle, QStringLiteral("other.xml"));
    click("btnSaveAs");
    QVERIFY(!isModifying());
    QCOMPARE(content(QStringLiteral("mine.xml")), m_xml);
    QCOMPARE(content(QStringLiteral("other.xml")),
        QString(m_xml).replace(QStringLiteral("Mine"), QStringLiteral("Other")));
    QCOMPARE(chooser()->currentText(), QStringLiteral("Other (other.xml)"));
    QCOMPARE(chooser()->count(), 16);
}

void TestProfilePanel::anotherProfileAsksFirst()
{
    click("btnEdit");
    chooser()->setCurrentIndex(1);
    QVERIFY(isModifying());
    choose(QStringLiteral("Mine (mine.xml)"));

    enterDevice(QStringLiteral("Kept"));
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    chooser()->setCurrentIndex(2);
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine (mine.xml)"));
    QCOMPARE(device(), QStringLiteral("Kept"));
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    m_window.close();
    QVERIFY(m_window.isVisible());

    // A look at the profiles changes nothing, even when the file is gone.
    QFile::remove(path(QStringLiteral("mine.xml")));
    m_controller.reloadProfiles();
    QCOMPARE(device(), QStringLiteral("Kept"));
    m_answers.enter(fileNameTitle, QStringLiteral("mine.xml"));
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")),
        QString(m_xml).replace(QStringLiteral("Mine"), QStringLiteral("Kept")));

    click("btnEdit");
    enterDevice(QStringLiteral("Saved"));
    m_answers.press(saveTitle, QStringLiteral("Save"));
    chooser()->setCurrentIndex(2);
    QCOMPARE(chooser()->currentIndex(), 2);
    QCOMPARE(device(), chooser()->currentText());
    QVERIFY(content(QStringLiteral("mine.xml")).contains(QStringLiteral(">Saved<")));
}

void TestProfilePanel::newProfile()
{
    m_answers.enter(fileNameTitle, QString());
    find<QAction>("actionNew_Profile")->trigger();
    QCOMPARE(device(), QStringLiteral("New profile"));
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine (mine.xml)"));
    // What the panel shows must not land in the file of the profile that is still chosen.
    click("btnEdit");
    enterDevice(QStringLiteral("Mine 2"));
    m_answers.enter(fileNameTitle, QStringLiteral("2.xml"));
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")), m_xml);
    QVERIFY(content(QStringLiteral("2.xml")).contains(QStringLiteral("<device>Mine 2</device>")));
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine 2 (2.xml)"));

    m_answers.enter(fileNameTitle, QStringLiteral("3.xml"));
    find<QAction>("actionNew_Profile")->trigger();
    QCOMPARE(chooser()->currentText(), QStringLiteral("New profile (3.xml)"));
    QVERIFY(
        content(QStringLiteral("3.xml")).contains(QStringLiteral("<renderer>Unknown renderer</renderer>")));
    QCOMPARE(chooser()->count(), 17);
}

void TestProfilePanel::otherProgramsAreNotOverwritten()
{
    click("btnEdit");
    enterDevice(QStringLiteral("Ours"));
    write(QStringLiteral("mine.xml"), "<profile><device>Theirs</device></profile>");
    m_answers.press(saveTitle, QStringLiteral("Cancel"));
    click("btnSave");
    QVERIFY(isModifying());
    QVERIFY(content(QStringLiteral("mine.xml")).contains(QStringLiteral("Theirs")));
    m_answers.press(saveTitle, QStringLiteral("Replace"));
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")),
        QString(m_xml).replace(QStringLiteral("Mine"), QStringLiteral("Ours")));
}

void TestProfilePanel::failedSaveKeepsTheEdits()
{
    click("btnEdit");
    enterDevice(QStringLiteral("Ours"));
    QFile::remove(path(QStringLiteral("mine.xml")));
    QVERIFY(QDir(m_folder).mkpath(QStringLiteral("mine.xml/in the way")));
    m_answers.press(saveTitle, QStringLiteral("Replace"));
    m_answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("OK"));
    click("btnSave");
    QVERIFY(isModifying());
    QCOMPARE(device(), QStringLiteral("Ours"));
    click("btnDiscard");
    QCOMPARE(device(), QStringLiteral("Mine"));
    QVERIFY(QDir(path(QStringLiteral("mine.xml"))).removeRecursively());
}

void TestProfilePanel::withoutAFolderOneIsChosen()
{
    unsetenv("CORVALE_PROFILE_PATH");
    m_controller.reloadProfiles();
    chooser()->setCurrentIndex(1);
    click("btnEdit");
    m_answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("Cancel"));
    click("btnSaveAs");
    QVERIFY(isModifying());
    m_answers.press(QStringLiteral("Corvale GUI"), QStringLiteral("Choose..."));
    m_answers.next(QStringLiteral("Choose directory"), [this](QWidget& widget) {
        auto& dialog = static_cast<QFileDialog&>(widget);
        dialog.setDirectory(m_folder);
        dialog.selectFile(m_folder);
        static_cast<QDialog&>(dialog).accept();
    });
    m_answers.enter(fileNameTitle, QStringLiteral("first.xml"));
    click("btnSaveAs");
    QVERIFY(!isModifying());
    QCOMPARE(files(), QStringList({QStringLiteral("first.xml"), QStringLiteral("mine.xml")}));
    QVERIFY(chooser()->currentText().endsWith(QStringLiteral("(first.xml)")));
}

void TestProfilePanel::menusOfferWhatIsMissing()
{
    click("btnEdit");
    const auto offered = [this](const char* view, const QModelIndex& at) {
        QStringList visible;
        m_answers.choose(QString(), &visible);
        menu(view, at);
        return visible.join(QLatin1Char('|'));
    };
    QCOMPARE(offered("eglConfigsView", {}), QStringLiteral("Add Config"));
    QCOMPARE(offered("eglConfigsView", index("eglConfigsView", {0})),
        QStringLiteral("Add Config|Add Attribute|Delete"));
    QCOMPARE(offered("eglConfigsView", index("eglConfigsView", {0, 1}, 1)),
        QStringLiteral("Add Attribute|Delete"));
    QCOMPARE(offered("extensionsView", index("extensionsView", {0})),
        QStringLiteral("Add API|Add Extension|Delete"));
    QCOMPARE(offered("capabilitiesView", {}), QStringLiteral("Add API"));
    for (const int version : {11, 3, 31}) {
        QVERIFY(tree("capabilitiesView")->model()->insertRow(0));
        QVERIFY(tree("capabilitiesView")->model()->setData(index("capabilitiesView", {0}), version));
    }
    menu("capabilitiesView", {});
    QCOMPARE(
        offered("capabilitiesView", index("capabilitiesView", {3})), QStringLiteral("Add Capability|Delete"));
}

void TestProfilePanel::rowsAreAddedAndDeleted()
{
    click("btnEdit");
    const auto add = [this](const char* view, const QModelIndex& at, const char* entry, const char* name) {
        m_answers.choose(QString::fromLatin1(entry));
        if (name)
            m_answers.next(QString::fromLatin1(entry), [name](QWidget& widget) {
                auto& dialog = static_cast<QInputDialog&>(widget);
                dialog.setTextValue(QString::fromLatin1(name));
                QVERIFY(!dialog.comboBoxItems().contains(QStringLiteral("EGL_RED_SIZE")));
                QCOMPARE(dialog.textValue(), QString::fromLatin1(name));
                dialog.accept();
            });
        menu(view, at);
        // Editors of new rows are left as they came.
        if (QWidget* editor =
                tree(view)->viewport()->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            QTest::keyClick(editor, Qt::Key_Escape);
        QCoreApplication::processEvents();
    };
    // Below the row that was asked, and first when that was the config.
    add("eglConfigsView", index("eglConfigsView", {0, 0}), "Add Attribute", "EGL_CONFIG_CAVEAT");
    add("eglConfigsView", index("eglConfigsView", {0}), "Add Attribute", "EGL_MAX_PBUFFER_WIDTH");
    add("eglConfigsView", {}, "Add Config", nullptr);
    add("capabilitiesView", index("capabilitiesView", {0, 0}), "Add Capability", "GL_MAX_VIEWPORT_DIMS");
    add("extensionsView", index("extensionsView", {0}), "Add API", "OpenGL ES 3.1");
    add("extensionsView", index("extensionsView", {1}), "Add Extension", "GL_EXT_robustness");
    QCOMPARE(row(index("eglConfigsView", {0, 0})), QStringLiteral("EGL_MAX_PBUFFER_WIDTH=EGL_FALSE"));
    QCOMPARE(row(index("eglConfigsView", {0, 2})), QStringLiteral("EGL_CONFIG_CAVEAT=EGL_NONE"));
    QCOMPARE(row(index("eglConfigsView", {1})), QStringLiteral("Config 1="));
    QCOMPARE(row(index("capabilitiesView", {0, 1, 1})), QStringLiteral("height=GL_COMMAND_BARRIER_BIT"));
    QCOMPARE(index("extensionsView", {1, 0}).data().toString(), QStringLiteral("GL_EXT_robustness"));

    // Rows in any order, with both columns and together with what stands below them.
    QItemSelectionModel& selected = *tree("eglConfigsView")->selectionModel();
    selected.clear();
    for (const QModelIndex& cell : {index("eglConfigsView", {0, 3}, 1), index("eglConfigsView", {0, 3}),
             index("eglConfigsView", {0, 0}), index("eglConfigsView", {1})})
        selected.select(cell, QItemSelectionModel::Select);
    m_answers.choose(QStringLiteral("Delete"));
    menu("eglConfigsView", index("eglConfigsView", {0, 3}));
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")),
        QString(m_xml)
            .replace(
                QStringLiteral("<level>0</level>"), QStringLiteral("<config_caveat>EGL_NONE</config_caveat>"))
            .replace(QStringLiteral("</max_texture_size>"),
                QStringLiteral(
                    "</max_texture_size>\n        <max_viewport_dims><width>64</width><height>64</height>"
                    "</max_viewport_dims>"))
            .replace(QStringLiteral("    <egl>"),
                QStringLiteral("    <es version=\"31\">\n        <extension>GL_EXT_robustness</extension>\n"
                               "    </es>\n    <egl>")));
}

int main(int argc, char** argv)
{
    const QTemporaryDir folder;
    setenv("CORVALE_PROFILE_PATH", folder.path().toLocal8Bit().constData(), 1);
    Controller controller(argc, argv);
    MainWindow* window = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* found = qobject_cast<MainWindow*>(widget))
            window = found;
    }
    TestProfilePanel test(controller, *window, folder.path());
    return QTest::qExec(&test, argc, argv);
}

#include "TestProfilePanel.moc"
