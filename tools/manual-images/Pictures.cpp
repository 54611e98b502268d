#include "Pictures.h"

#include "AboutBox.h"
#include "FileListWidget.h"
#include "MainWindow.h"
#include "Stage.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QCursor>
#include <QDialog>
#include <QFontComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QTextBlock>
#include <QTextEdit>
#include <QToolButton>
#include <QTreeView>
#include <QTreeWidget>

#include <utility>

namespace {

enum class MainPage { Profile, Programs, Report };
enum class ClientPage { Console, ErrorList, Contexts };

void showPage(Stage& stage, MainPage page)
{
    stage.find<QTabWidget>("mainTabWidget").setCurrentIndex(static_cast<int>(page));
}

/// The tab of the application that came last.
QWidget& client(Stage& stage)
{
    return *stage.find<QTabWidget>("clienttabs").currentWidget();
}

QTextEdit& console(Stage& stage)
{
    return stage.find<QTextEdit>("txtConsole", &client(stage));
}

void showClientPage(Stage& stage, ClientPage page)
{
    stage.find<QTabWidget>("tabWidget", &client(stage)).setCurrentIndex(static_cast<int>(page));
}

/// Starts an application and waits until its console has the text.
void connectClient(Stage& stage, const QStringList& arguments, const QString& lastText)
{
    const auto& tabs = stage.find<QTabWidget>("clienttabs");
    // A new page may stand in memory where the one that it replaces stood.
    const QPointer<QWidget> before = tabs.currentWidget();
    stage.startClient(arguments);
    stage.waitFor("the application's tab", [&] { return tabs.currentWidget() != before; });
    stage.waitFor(
        "the application's last text", [&] { return console(stage).toPlainText().contains(lastText); });
    showClientPage(stage, ClientPage::Console);
    stage.settle();
}

/// Scrolls the console, as the user does, so that the text stands at its top.
void scrollTo(Stage& stage, const QString& text)
{
    QTextEdit& view = console(stage);
    stage.find<QCheckBox>("chkConsoleAutoScroll", &client(stage)).setChecked(false);
    const QTextCursor found = view.document()->find(text);
    if (found.isNull())
        throw StageError("the console has no " + text.toStdString());
    QScrollBar& bar = *view.verticalScrollBar();
    QTextCursor start = found;
    start.setPosition(found.selectionStart());
    bar.setValue(bar.value() + view.cursorRect(start).top() - 2);
}

/// Older entries come in above while there is time, so this waits until the document has stopped growing.
void scrollToFirstLine(Stage& stage)
{
    stage.find<QCheckBox>("chkConsoleAutoScroll", &client(stage)).setChecked(false);
    const QTextDocument& document = *console(stage).document();
    int blocks = 0;
    stage.waitFor("the first line of the console", [&] {
        const int before = std::exchange(blocks, document.blockCount());
        stage.settle();
        return blocks == before && document.firstBlock().text().contains(QStringLiteral("no longer shown"));
    });
    console(stage).verticalScrollBar()->setValue(0);
}

QModelIndex child(const QTreeView& tree, const QModelIndex& parent, const QString& text)
{
    for (int row = 0; row < tree.model()->rowCount(parent); ++row) {
        const QModelIndex index = tree.model()->index(row, 0, parent);
        if (index.data().toString() == text || index.data(Qt::EditRole).toString() == text)
            return index;
    }
    throw StageError("the profile has no " + text.toStdString());
}

void press(QWidget& widget, int key, const QString& text = {})
{
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&widget, &down);
    QCoreApplication::sendEvent(&widget, &up);
}

/// Opens the in-place editor of a row's value.
template <typename Editor> Editor& edit(QTreeView& tree, const QModelIndex& row)
{
    const QModelIndex value = row.siblingAtColumn(1);
    tree.scrollTo(row, QAbstractItemView::PositionAtCenter);
    tree.setFocus();
    tree.setCurrentIndex(value);
    tree.edit(value);
    tree.horizontalScrollBar()->setValue(0);
    auto* editor = tree.viewport()->findChild<Editor*>();
    if (!editor)
        throw StageError("the value opens no editor");
    return *editor;
}

void takeSelector(Stage& stage, QTreeView& tree, const QModelIndex& api)
{
    const QModelIndex formats = child(tree, api, QStringLiteral("compressed_texture_format"));
    auto& selector = edit<QComboBox>(tree, formats);
    selector.showPopup();
    stage.take("profile-selector");
    selector.hidePopup();
    press(selector, Qt::Key_Escape);
}

void takeRefusal(Stage& stage, QTreeView& tree, const QModelIndex& api)
{
    auto& line = edit<QLineEdit>(tree, child(tree, api, QStringLiteral("max_texture_size")));
    line.selectAll();
    // The tool tip goes when the pointer enters or leaves a widget, so that comes first.
    QCursor::setPos(line.mapToGlobal(line.rect().center()));
    stage.settle();
    for (const QChar letter : QStringLiteral("many"))
        press(line, 0, letter);
    press(line, Qt::Key_Return);
    stage.take("profile-refusal");
    QCursor::setPos(0, 0);
    press(line, Qt::Key_Escape);
}

/// In the whole console of a flood.
void takeFind(Stage& stage)
{
    auto& page = stage.find<QWidget>("tab_console", &client(stage));
    stage.find<QAction>("actionFind").trigger();
    stage.find<QLineEdit>("editFind", &page).setText(QStringLiteral("too large"));
    const auto& count = stage.find<QLabel>("lblFindCount", &page);
    stage.waitFor("the number of matches",
        [&count] { return count.text().contains(QStringLiteral("of")) && !count.text().contains(u'%'); });
    stage.take("find");
    stage.find<QToolButton>("btnFindClose", &page).click();
}

void takeErrorFilter(Stage& stage)
{
    auto& filter = stage.find<QLineEdit>("editErrorFilter", &client(stage));
    filter.setFocus();
    filter.setText(QStringLiteral("fn:gl* -program frame:30..x"));
    stage.take("error-filter");
    filter.clear();
}

void takeFoldedErrors(Stage& stage)
{
    auto& fold = stage.find<QCheckBox>("chkFoldErrors", &client(stage));
    auto& list = stage.find<QTableView>("tblErrorList", &client(stage));
    fold.click();
    QHeaderView& header = *list.horizontalHeader();
    header.setSortIndicator(header.count() - 1, Qt::DescendingOrder);
    stage.settle();
    list.setFocus();
    list.setCurrentIndex(list.model()->index(0, 0));
    press(list, Qt::Key_Plus);
    list.scrollToTop();
    stage.take("error-fold");
    header.setSortIndicator(-1, Qt::AscendingOrder);
    fold.click();
}

/// Of what the crashed application and the other one have reported.
void takeComparison(Stage& stage)
{
    stage.find<QAction>("actionCompareSessions").trigger();
    auto& before = stage.find<QComboBox>("cmbBefore");
    auto& after = stage.find<QComboBox>("cmbAfter");
    before.setCurrentIndex(before.count() - 1);
    after.setCurrentIndex(0);
    auto& dialog = *before.window();
    const auto& findings = stage.find<QTreeWidget>("treeFindings", &dialog);
    stage.waitFor("the comparison", [&findings] { return findings.topLevelItemCount() > 0; });
    stage.take("sessions-compare", dialog);
    dialog.close();
}

} // namespace

namespace pictures {

void takeStart(Stage& stage)
{
    const auto& listening = stage.find<QLabel>("lblListening");
    stage.waitFor("the socket", [&] { return listening.isVisible() && !listening.toolTip().isEmpty(); });
    for (AboutBox* box : stage.window().findChildren<AboutBox*>())
        box->endStart();
    stage.find<QFontComboBox>("cmbFont").setCurrentFont(QFont(QStringLiteral("DejaVu Sans Mono")));
    stage.take("start");
}

void takeApplications(Stage& stage)
{
    connectClient(stage, {QStringLiteral("crash"), QStringLiteral("--pace"), QStringLiteral("0")},
        QStringLiteral("Lost connection to client"));
    stage.take("crash");

    connectClient(stage, {QStringLiteral("flood"), QStringLiteral("--count"), QStringLiteral("5000")},
        QStringLiteral("Client disconnected"));
    scrollToFirstLine(stage);
    stage.take("console-flood");

    takeFind(stage);

    connectClient(stage,
        {QStringLiteral("tour"), QStringLiteral("--pace"), QStringLiteral("0"), QStringLiteral("--stay")},
        QStringLiteral("Good-bye."));
    scrollTo(stage, QStringLiteral("Brass Heron 1.4.2"));
    stage.take("console");
    showClientPage(stage, ClientPage::ErrorList);
    stage.find<QTableView>("tblErrorList", &client(stage)).scrollToTop();
    stage.take("error-list");
    takeErrorFilter(stage);
    takeFoldedErrors(stage);
    showClientPage(stage, ClientPage::Contexts);
    stage.take("context-info");
    takeComparison(stage);
}

void takeReport(Stage& stage)
{
    showPage(stage, MainPage::Report);
    const auto& copy = stage.find<QPushButton>("btnCopy");
    stage.waitFor("the system report", [&copy] { return copy.isEnabled(); });
    stage.take("system-report");
}

void takeProfiles(Stage& stage)
{
    showPage(stage, MainPage::Profile);
    // Wider, so that the values have room beside their keys.
    stage.window().resize(1120, stage.window().height());
    const auto& panel = stage.find<QWidget>("profile");
    stage.find<QSplitter>("profileInfoSplitter").setSizes({640, 460});
    auto& chooser = stage.find<QComboBox>("cmbProfile");
    chooser.setCurrentIndex(chooser.findText(QStringLiteral("Hadlow Tarn 10")));
    auto& capabilities = stage.find<QTreeView>("capabilitiesView");
    const QModelIndex api = child(capabilities, {}, QStringLiteral("OpenGL ES 2.0"));
    capabilities.expand(api);
    auto& extensions = stage.find<QTreeView>("extensionsView");
    extensions.expand(child(extensions, {}, QStringLiteral("OpenGL ES 2.0")));
    auto& configs = stage.find<QTreeView>("eglConfigsView");
    configs.expand(configs.model()->index(0, 0));
    stage.take("profile-view");

    stage.find<QPushButton>("btnEdit").click();
    capabilities.expandRecursively(api);
    const QModelIndex units = child(capabilities, api, QStringLiteral("max_vertex_attribs"));
    capabilities.scrollTo(units);
    capabilities.setCurrentIndex(units);
    const auto openMenu = [&] {
        const QPoint place = capabilities.visualRect(units).center();
        QWidget& viewport = *capabilities.viewport();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, viewport.mapToGlobal(place));
        QCoreApplication::sendEvent(&viewport, &event);
    };
    stage.withOpened(openMenu, [&stage](QWidget& menu) {
        stage.take("profile-menu");
        menu.close();
    });
    takeSelector(stage, capabilities, api);
    takeRefusal(stage, capabilities, api);
    stage.withOpened([&] { stage.find<QPushButton>("btnSave", &panel).click(); },
        [&stage](QWidget& question) {
            stage.take("profile-copy", question);
            question.close();
        });
    stage.find<QPushButton>("btnDiscard").click();
}

void takeDialogs(Stage& stage)
{
    showPage(stage, MainPage::Programs);
    stage.window().resize(900, stage.window().height());
    const auto takePreferences = [&stage](QWidget& dialog) {
        // Places that stand for those of any user.
        stage.find<QLineEdit>("txtProfilesDirectory", &dialog)
            .setText(QStringLiteral("/home/robin/corvale-profiles"));
        stage.take("preferences", dialog);
        stage.find<QCheckBox>("chkExpandProfilesAdvanced", &dialog).click();
        stage.find<FileListWidget>("lstImportFiles", &dialog)
            .addFiles({QStringLiteral("/home/robin/downloads/harbour-board.xml"),
                QStringLiteral("/home/robin/downloads/harbour-board-es3.xml")});
        stage.take("preferences-import", dialog);
        dialog.close();
    };
    stage.withOpened([&stage] { stage.find<QAction>("actionPreferences").trigger(); }, takePreferences);
    stage.withOpened([&stage] { stage.find<QAction>("actionFeedback").trigger(); },
        [&stage](QWidget& dialog) {
            auto& text = stage.find<QPlainTextEdit>("RequiredText", &dialog);
            text.setPlainText(text.toPlainText().replace(QRegularExpression(QStringLiteral("(Kernel: +).*")),
                QStringLiteral("\\1linux 6.1.0, x86_64")));
            stage.take("feedback", dialog);
            dialog.close();
        });
}

void takeDark(Stage& stage)
{
    stage.find<QAction>("actionTheme_dark").trigger();
    showPage(stage, MainPage::Programs);
    showClientPage(stage, ClientPage::Console);
    scrollTo(stage, QStringLiteral("GL_STACK_UNDERFLOW"));
    stage.take("dark");
}

} // namespace pictures
