#pragma once

#include "Controller.h"
#include "DialogAnswers.h"
#include "MainWindow.h"
#include "ProfileData.h"
#include "ProfileReader.h"
#include "ProfileTreeView.h"
#include "ProfileWriter.h"
#include "widgets/Profile.h"

#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>

/// A test of the profile page of the real program, and of the folder of its profiles, which holds "mine.xml"
/// before each case. Driven by clicks and keys; what counts is what is in the files then.
class ProfilePanelDriver : public QObject {
    Q_OBJECT

public:
    ProfilePanelDriver(MainWindow& window, const QString& folder)
        : m_window(window)
        , m_folder(folder)
    {
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_window.resize(1100, 750);
        m_window.show();
        m_window.activateWindow();
        find<QTabWidget>("mainTabWidget")->setCurrentIndex(0);
        QVERIFY(QTest::qWaitForWindowActive(&m_window));
    }

    void init()
    {
        write(QStringLiteral("mine.xml"), m_xml.toUtf8());
        m_window.reloadProfiles();
        choose(QStringLiteral("Mine (mine.xml)"));
        QCOMPARE(device(), QStringLiteral("Mine"));
        for (const char* view : {"capabilitiesView", "extensionsView", "eglConfigsView"})
            tree(view)->expandAll();
    }

    void cleanup()
    {
        QCOMPARE(m_answers.problems(), QStringList());
        if (isModifying())
            click("btnDiscard");
        choose(QStringLiteral("Host"));
        for (const QString& file : files())
            QFile::remove(path(file));
    }

protected:
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
        auto* line = tree(view)->viewport()->findChild<QLineEdit*>();
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

    const QString fileNameTitle = QStringLiteral("Choose a file name");
    const QString saveTitle = QStringLiteral("Save changes");

    MainWindow& m_window;
    QString m_folder;
    QString m_xml = QString::fromStdString(writeProfile(readProfile(
        "<profile><device>Mine</device><renderer>R</renderer>"
        "<es version=\"2\"><extension>GL_OES_depth24</extension>"
        "<max_texture_size>4096</max_texture_size><samples> 4 </samples></es>"
        "<egl><config id=\"0\"><red_size>8</red_size><level>0</level></config></egl></profile>")));
    DialogAnswers m_answers;
};

/// Runs a test that derives from ProfilePanelDriver on the program.
template <typename Test> int runOnProgram(int argc, char** argv)
{
    const QTemporaryDir folder;
    setenv("CORVALE_PROFILE_PATH", folder.path().toLocal8Bit().constData(), 1);
    const Controller controller(argc, argv);
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<MainWindow*>(widget)) {
            Test test(*window, folder.path());
            return QTest::qExec(&test, argc, argv);
        }
    }
    return EXIT_FAILURE;
}
