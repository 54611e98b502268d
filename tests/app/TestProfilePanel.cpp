#include "ElidedLineEdit.h"
#include "MetaObjects.h"
#include "ProfilePanelDriver.h"

#include <QHelpEvent>
#include <QLabel>
#include <QToolTip>

namespace {

QString row(const QModelIndex& index)
{
    return QStringLiteral("%1=%2").arg(index.data().toString(), index.siblingAtColumn(1).data().toString());
}

} // namespace

/// The profile page and its trees: viewing, editing, adding and deleting.
class TestProfilePanel : public ProfilePanelDriver {
    Q_OBJECT

public:
    using ProfilePanelDriver::ProfilePanelDriver;

private Q_SLOTS:
    void slotsStandInOrder();
    void viewingAndModifying();
    void savingChangesOneValue();
    void longTextsAreElided();
    void menusOfferWhatIsMissing();
    void rowsAreAddedAndDeleted();
};

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
    QCOMPARE(tree("eglConfigsView")->currentIndex(), index("eglConfigsView", {0, 0}, 1));

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
        .replace(QStringLiteral(">8<"), QStringLiteral(">-1<"));
    QCOMPARE(content(QStringLiteral("mine.xml")), expected);
    QCOMPARE(chooser()->currentText(), QStringLiteral("Mine (mine.xml)"));

    QCOMPARE(tree("eglConfigsView")->currentIndex(), index("eglConfigsView", {0, 0}, 1));

    // Saved is saved: leaving asks nothing, and a second save changes nothing.
    click("btnEdit");
    click("btnSave");
    QCOMPARE(content(QStringLiteral("mine.xml")), expected);
    QVERIFY(!isModifying());
}

void TestProfilePanel::longTextsAreElided()
{
    const QString renderer = QStringLiteral("A renderer with a very long name");
    click("btnEdit");
    auto* edit = find<ElidedLineEdit>("editRenderer");
    edit->setText(renderer);
    edit->resize(100, edit->height());
    const QImage shown = edit->grab().toImage();
    QHelpEvent help(QEvent::ToolTip, {}, edit->mapToGlobal(QPoint()));
    QApplication::sendEvent(edit, &help);
    QVERIFY(QToolTip::text().contains(renderer));
    edit->setText(edit->elidedText());
    QVERIFY(edit->text().size() < renderer.size());
    QCOMPARE(edit->grab().toImage(), shown);
    QToolTip::hideText();
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
        QStringLiteral("Add Config|Add Attribute|Delete|Duplicate"));
    QCOMPARE(offered("eglConfigsView", index("eglConfigsView", {0, 1}, 1)),
        QStringLiteral("Add Attribute|Delete|Duplicate"));
    QCOMPARE(offered("extensionsView", index("extensionsView", {0})),
        QStringLiteral("Add API|Add Extension|Delete|Duplicate"));
    QCOMPARE(offered("capabilitiesView", {}), QStringLiteral("Add API"));
    for (const int version : {11, 3, 31}) {
        QVERIFY(tree("capabilitiesView")->model()->insertRow(0));
        QVERIFY(tree("capabilitiesView")->model()->setData(index("capabilitiesView", {0}), version));
    }
    menu("capabilitiesView", {});
    QCOMPARE(
        offered("capabilitiesView", index("capabilitiesView", {3})), QStringLiteral("Add Capability|Delete"));

    // What a menu does not offer at its place, the keys do elsewhere.
    offered("eglConfigsView", {});
    m_window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_window));
    tree("eglConfigsView")->setFocus();
    QTRY_VERIFY(tree("eglConfigsView")->hasFocus());
    tree("eglConfigsView")->setCurrentIndex(index("eglConfigsView", {0, 0}));
    const int attributes = tree("eglConfigsView")->model()->rowCount(index("eglConfigsView", {0}));
    QTest::keyClick(tree("eglConfigsView"), Qt::Key_Delete);
    QTRY_COMPARE(tree("eglConfigsView")->model()->rowCount(index("eglConfigsView", {0})), attributes - 1);
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
    QCOMPARE(row(index("eglConfigsView", {1})), QStringLiteral("Config 1=without attributes it is not kept"));
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
    add("capabilitiesView", {}, "Add API", "OpenGL ES 3.0");
    add("capabilitiesView", index("capabilitiesView", {0}), "Add Capability", "GL_MAX_DRAW_BUFFERS");
    click("btnSave");
    QCOMPARE(index("extensionsView", {1}).data().toString(), QStringLiteral("OpenGL ES 3.0"));
    QCOMPARE(index("capabilitiesView", {1}).data().toString(), QStringLiteral("OpenGL ES 3.0"));
    QCOMPARE(content(QStringLiteral("mine.xml")),
        QString(m_xml)
            .replace(
                QStringLiteral("<level>0</level>"), QStringLiteral("<config_caveat>EGL_NONE</config_caveat>"))
            .replace(QStringLiteral("</max_texture_size>"),
                QStringLiteral(
                    "</max_texture_size>\n        <max_viewport_dims><width>64</width><height>64</height>"
                    "</max_viewport_dims>"))
            .replace(QStringLiteral("    <egl>"),
                QStringLiteral(
                    "    <es version=\"3\">\n        <max_draw_buffers>4</max_draw_buffers>\n"
                    "    </es>\n    <es version=\"31\">\n        <extension>GL_EXT_robustness</extension>\n"
                    "    </es>\n    <egl>")));
}

int main(int argc, char** argv)
{
    return runOnProgram<TestProfilePanel>(argc, argv);
}

#include "TestProfilePanel.moc"
