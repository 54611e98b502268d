#include "ClientInterface.h"

#include "CellContentsDialog.h"
#include "Client.h"
#include "Console.h"
#include "ConsoleFind.h"
#include "ConsoleMargin.h"
#include "ConsoleSaver.h"
#include "ContextInterface.h"
#include "ErrorFilterBar.h"
#include "ErrorListActions.h"
#include "ErrorListFilterProxyModel.h"
#include "ErrorListModel.h"
#include "ErrorOverview.h"
#include "FindBar.h"
#include "GlEnumerants.h"
#include "ItemFind.h"
#include "RecordText.h"
#include "TableExport.h"
#include "UnseenBadge.h"
#include "UnseenErrors.h"
#include "ui_ClientInterface.h"

#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QTextDocument>

#include <algorithm>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

/// Context pages that are kept of a client, and how many of the oldest are removed together beyond that
/// number: whenever the page in front is removed, that takes time for all pages.
constexpr int mostContexts = 500;
constexpr int contextStep = 50;

} // namespace

ClientInterface::ClientInterface(Client* client, int index, const QFont& font, QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::ClientInterface>())
    , m_client(client)
    , m_index(index)
    , m_errorListModel(new ErrorListModel(QIcon(QStringLiteral(":/CorvaleResources/Info")),
          QIcon(QStringLiteral(":/CorvaleResources/Warning")),
          QIcon(QStringLiteral(":/CorvaleResources/Error")), this))
    , m_errorListFilter(new ErrorListFilterProxyModel(this))
    , m_unseenErrors(new UnseenErrors(*m_errorListModel, *this))
{
    m_ui->setupUi(this);
    setUpConsole(font);
    setUpErrorList();
    setUpContexts();
    setUpFind();
    makeConnections();
}

ClientInterface::~ClientInterface() = default;

void ClientInterface::setUpConsole(const QFont& font)
{
    // Unlike the view's own, a document that is given to it is laid out before the view is shown.
    m_ui->txtConsole->setDocument(new QTextDocument(this));
    m_ui->txtConsole->setUndoRedoEnabled(false);
    m_console = new Console(m_ui->txtConsole, m_ui->chkConsoleAutoScroll, this);
    m_margin = new ConsoleMargin(m_ui->txtConsole, m_console->history(), m_ui->tab_console);
    m_ui->consoleTextLayout->insertWidget(0, m_margin);
    connect(m_margin, &ConsoleMargin::groupClicked, m_console, &Console::toggleGroup);
    connect(m_console, &Console::groupFoldingChanged, m_margin, &ConsoleMargin::setGroupsShown);
    auto* fold = new QAction(tr("&Fold or Unfold Group"), this);
    fold->setObjectName(QStringLiteral("actionFoldGroup"));
    fold->setShortcut(Qt::Key_F9);
    fold->setShortcutContext(Qt::WidgetShortcut);
    connect(fold, &QAction::triggered, this, [this] {
        if (!m_console->toggleGroupAtCursor())
            Q_EMIT m_console->statusMessage(tr("The cursor is not in a group."));
    });
    m_ui->txtConsole->addAction(fold);
    m_saver = new ConsoleSaver(m_console, this);
    fontChanged(font);
}

void ClientInterface::setUpErrorList()
{
    m_errorListFilter->setSourceModel(m_errorListModel);
    m_ui->tblErrorList->setModel(m_errorListFilter);
    m_ui->tblErrorList->setFollowButton(m_ui->chkErrorListAutoScroll);
    for (const QAbstractItemModel* model : {static_cast<QAbstractItemModel*>(m_errorListModel),
             static_cast<QAbstractItemModel*>(m_errorListFilter)}) {
        connect(model, &QAbstractItemModel::rowsInserted, this, &ClientInterface::updateErrorListHint);
        connect(model, &QAbstractItemModel::modelReset, this, &ClientInterface::updateErrorListHint);
    }
    connect(
        m_errorListFilter, &ErrorListFilterProxyModel::settled, this, &ClientInterface::updateErrorListHint);
    m_ui->errorFilterBar->setErrors(m_errorListModel);
    connect(m_ui->errorFilterBar, &ErrorFilterBar::filterChanged, m_errorListFilter,
        &ErrorListFilterProxyModel::setFilter);
    connect(
        m_ui->chkFoldErrors, &QCheckBox::toggled, m_errorListFilter, &ErrorListFilterProxyModel::setFolded);
    m_errorListActions = new ErrorListActions(*m_ui->tblErrorList, *m_errorListFilter, *m_ui->tab_errorlist);
    connect(m_ui->btnClearErrors, &QPushButton::clicked, m_errorListModel, &ErrorListModel::clear);
    connect(m_errorListActions, &ErrorListActions::statusMessage, m_console, &Console::statusMessage);
    m_ui->errorOverview->setErrors(m_errorListFilter);
    connect(
        m_ui->errorOverview, &ErrorOverview::framesChosen, m_errorListActions, &ErrorListActions::goToFrames);
    auto* unseen = new UnseenErrors(*m_errorListModel, *m_ui->tblErrorList);
    const int tab = m_ui->tabWidget->indexOf(m_ui->tab_errorlist);
    auto* badge = new UnseenBadge(*unseen, *m_ui->tabWidget->tabBar(), tab);
    connect(unseen, &UnseenErrors::changed, badge, [badge, tab] { badge->showOn(tab); });
    setUpJumps();
    updateErrorListHint();
}

/// Between a row and its entry in the console.
void ClientInterface::setUpJumps()
{
    m_errorListActions->setRowOpener([this](int row) { showInConsole(row); });
    auto* back = new QAction(tr("Show in &Error List"), this);
    back->setObjectName(QStringLiteral("actionShowInErrorList"));
    back->setShortcut(Qt::Key_Return);
    back->setShortcutContext(Qt::WidgetShortcut);
    connect(back, &QAction::triggered, this, &ClientInterface::showInErrorList);
    m_ui->txtConsole->addAction(back);
}

void ClientInterface::showInConsole(int row)
{
    m_ui->tabWidget->setCurrentWidget(m_ui->tab_console);
    m_ui->txtConsole->setFocus();
    if (!m_console->showEntry(m_errorListModel->consoleEntry(row)))
        Q_EMIT m_console->statusMessage(tr("The console was cleared after this row had come."));
}

/// The row of the entry at the cursor, or the next one.
void ClientInterface::showInErrorList()
{
    const std::optional<std::uint64_t> entry = m_console->currentEntry();
    const int row = entry ? m_errorListModel->rowOfConsoleEntry(*entry) : -1;
    if (row < 0) {
        Q_EMIT m_console->statusMessage(tr("No row of the error list has come since this text."));
        return;
    }
    m_ui->tabWidget->setCurrentWidget(m_ui->tab_errorlist);
    m_ui->tblErrorList->setFocus();
    if (!m_errorListActions->goToSourceRow(row))
        Q_EMIT m_console->statusMessage(tr("The error list hides this row; look at its boxes and filter."));
}

void ClientInterface::setKeptFilters(KeptFilters* filters)
{
    m_ui->errorFilterBar->setKeptFilters(filters);
}

void ClientInterface::setMutedErrors(MutedErrors* muted)
{
    m_errorListActions->setMuted(muted, m_ui->btnMutedErrors);
}

void ClientInterface::updateErrorListHint()
{
    const bool isEmpty = m_errorListFilter->rowCount() == 0;
    if (!isEmpty && m_ui->lblErrorListEmpty->isHidden())
        return; // as at nearly every row that arrives
    m_ui->lblErrorListEmpty->setText(emptyListHint());
    m_ui->lblErrorListEmpty->setVisible(isEmpty);
}

QString ClientInterface::emptyListHint() const
{
    if (m_errorListModel->rowCount() == 0)
        return tr("No errors or warnings. Those that the application reports appear here by themselves.");
    if (!m_errorListFilter->isSettled())
        return tr("Looking for rows...");
    if (!m_errorListFilter->filter().isEmpty())
        return tr("No row matches the filter. Esc in its line clears it.");
    if (m_errorListFilter->mutedCount() > 0)
        return tr("All rows are muted. \"Muted Kinds...\" (Ctrl+Shift+M) shows them again.");
    return tr("All rows are hidden. Tick \"Errors\" or \"Warnings\" above to show them.");
}

void ClientInterface::setUpContexts()
{
    // A tab widget without pages shows nothing at all, so words stand in for it.
    if (m_client)
        m_ui->lblNoContexts->setText(
            tr("No rendering context yet. Each context that the application creates gets a page here."));
    else
        setConnectedWithoutTab(0);
    colourContextsHint();
    // The pages of contexts need much room; the window must not grow when the first one comes.
    m_ui->contextsArea->hide();
    m_ui->contextsAreaContents->setAutoFillBackground(false);
    m_ui->contextsArea->viewport()->setAutoFillBackground(false);
}

void ClientInterface::setUpFind()
{
    auto* inConsole = new ConsoleFind(m_console, m_ui->txtConsole);
    m_ui->consoleLayout->addWidget(new FindBar(inConsole, m_ui->tab_console));
    auto* inErrors = new ItemFind(this);
    inErrors->setViews({m_ui->tblErrorList});
    connect(inErrors, &ItemFind::going, this, &ClientInterface::uncheckErrorListAutoScroll);
    m_ui->errorListLayout->addWidget(new FindBar(inErrors, m_ui->tab_errorlist));
    // One bar for all contexts, of which there may be hundreds.
    auto* inContext = new ItemFind(this);
    auto* bar = new FindBar(inContext, m_ui->tab_contextInfo);
    m_ui->contextInfoLayout->addWidget(bar);
    connect(m_ui->tabWidget_contexts, &QTabWidget::currentChanged, this, [this, inContext, bar] {
        QList<QAbstractItemView*> views;
        if (const QWidget* context = m_ui->tabWidget_contexts->currentWidget())
            views = {context->findChild<QTableView*>(), context->findChild<QListView*>()};
        inContext->setViews(views);
        if (!views.isEmpty())
            bar->putBehind(views.last());
        bar->searchAgain();
    });
}

void ClientInterface::setConnectedWithoutTab(std::size_t count)
{
    const QString start =
        tr("Choose \"File > Run Program...\" (Ctrl+R), or start a program in a terminal with "
           "\"corvale-run your-program\", and it appears here by itself.");
    QString state = tr("No application is connected.");
    if (count == 1)
        state = tr("An application is still connected, but its tab is closed.");
    else if (count > 1)
        state = tr("%1 applications are still connected, but their tabs are closed.").arg(count);
    m_ui->lblNoContexts->setText(state + QLatin1Char(' ') + start);
}

void ClientInterface::colourContextsHint()
{
    // The hint is to be read on the disabled page too.
    QPalette colours;
    colours.setColor(
        QPalette::Disabled, QPalette::WindowText, palette().color(QPalette::Active, QPalette::WindowText));
    if (m_ui->lblNoContexts->palette().color(QPalette::Disabled, QPalette::WindowText)
        != colours.color(QPalette::Disabled, QPalette::WindowText))
        m_ui->lblNoContexts->setPalette(colours);
}

void ClientInterface::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        colourContextsHint();
}

void ClientInterface::addConsoleAction(QAction* action)
{
    m_ui->txtConsole->addAction(action);
}

void ClientInterface::showConsoleMenu(const QPoint& position)
{
    // The entries of the menu are for the place of the click.
    if (!m_ui->txtConsole->textCursor().hasSelection())
        m_ui->txtConsole->setTextCursor(m_ui->txtConsole->cursorForPosition(position));
    // Text arrives while the menu is open, and the tab may even be closed.
    QMenu* menu = m_ui->txtConsole->createStandardContextMenu(position);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addSeparator();
    menu->addActions(m_ui->txtConsole->actions());
    QAction* save = menu->addAction(QLatin1Char('&') + m_ui->btnSaveConsole->text());
    save->setEnabled(!m_saver->isBusy());
    connect(save, &QAction::triggered, m_ui->btnSaveConsole, &QPushButton::click);
    menu->popup(m_ui->txtConsole->viewport()->mapToGlobal(position));
}

void ClientInterface::makeConnections()
{
    connect(m_ui->btnClear, &QPushButton::clicked, m_console, &Console::clear);
    connect(m_ui->btnSaveConsole, &QPushButton::clicked, this,
        [this] { m_saver->ask(m_name, m_pid.value_or(0)); });
    connect(m_saver, &ConsoleSaver::busyChanged, m_ui->btnSaveConsole, &QPushButton::setDisabled);
    connect(
        m_ui->txtConsole, &QTextEdit::customContextMenuRequested, this, &ClientInterface::showConsoleMenu);
    // The button is disabled while it saves. By itself the focus would go on to "Clear".
    connect(m_ui->btnSaveConsole, &QPushButton::clicked, m_ui->txtConsole, qOverload<>(&QWidget::setFocus));
    connect(m_ui->chkWireframe, SIGNAL(stateChanged(int)), SLOT(wireframeStateChanged(int)));
    connect(
        m_ui->txtConsole->verticalScrollBar(), SIGNAL(sliderMoved(int)), SLOT(uncheckConsoleAutoScroll()));
    connect(m_ui->tblErrorList->verticalScrollBar(), SIGNAL(sliderMoved(int)),
        SLOT(uncheckErrorListAutoScroll()));
    connect(m_ui->tblErrorList, SIGNAL(contextMenuOpened()), SLOT(uncheckErrorListAutoScroll()));
    connect(m_ui->tblErrorList, SIGNAL(itemContentsRequested(int, int, QPoint)),
        SLOT(showErrorListItemContents(int, int, QPoint)));
    connect(m_ui->chkWarnings, SIGNAL(stateChanged(int)), SLOT(errorListWarningsStateChanged(int)));
    connect(m_ui->chkErrors, SIGNAL(stateChanged(int)), SLOT(errorListErrorsStateChanged(int)));
}

void ClientInterface::setLive()
{
    m_state = State::Live;
}

QString ClientInterface::description() const
{
    QStringList lines{title()};
    if (!m_session.isEmpty())
        lines.append(m_session);
    if (!m_device.isEmpty())
        lines.append(tr("Device: %1").arg(m_device));
    if (!m_endText.isEmpty())
        lines.append(m_endText.at(0).toUpper() + m_endText.mid(1));
    return lines.join(QLatin1Char('\n'));
}

void ClientInterface::setErrorsAreNews(bool areNews)
{
    for (UnseenErrors* unseen : findChildren<UnseenErrors*>())
        unseen->setCounting(areNews);
}

void ClientInterface::showSession(const QString& which)
{
    m_session = which;
    m_ui->grpRendering->setEnabled(false);
    m_ui->grpRendering->setToolTip(tr("This is a session; there is no application to send anything to"));
    m_ui->lblNoContexts->setText(tr("The application of this session created no rendering context."));
}

QString ClientInterface::title() const
{
    if (!m_pid && m_name.isEmpty())
        return QStringLiteral("<unknown>");
    const QString pid = QString::number(m_pid.value_or(0));
    return m_name.isEmpty() ? tr("PID: %1").arg(pid) : tr("\"%1\" PID: %2").arg(m_name, pid);
}

ConsolePace::Reading ClientInterface::reading() const
{
    if (!m_client)
        return ConsolePace::Reading::NoConnection;
    return m_client->hasBacklog() ? ConsolePace::Reading::Behind : ConsolePace::Reading::CaughtUp;
}

std::optional<std::int64_t> ClientInterface::recordTime() const
{
    if (!m_client)
        return {};
    return m_client->recordTime() ? m_client->recordTime() : m_console->timeAt(m_client->readingTime());
}

int ClientInterface::subPage() const
{
    return m_ui->tabWidget->currentIndex();
}

void ClientInterface::showSubPage(int index)
{
    m_ui->tabWidget->setCurrentIndex(index);
    // Not the first widget of the page, which a key would switch.
    QWidget* page = m_ui->tabWidget->currentWidget();
    if (page == m_ui->tab_console)
        m_ui->txtConsole->setFocus();
    else if (page == m_ui->tab_errorlist)
        m_ui->tblErrorList->setFocus();
    else
        m_ui->tabWidget->tabBar()->setFocus();
}

void ClientInterface::receive(const Message& message)
{
    m_console->add(message, reading(), recordTime());
    switch (message.type()) {
    case Type::Warning:
        addErrorListRow(error_list::SeverityWarning, message, QString(),
            record_text::multiLine(message.text(offset::text)), QString());
        break;
    case Type::Error:
        addErrorListRow(error_list::SeverityError, message, QString(),
            record_text::multiLine(message.text(offset::text)), QString());
        break;
    case Type::GlError:
        addErrorListRow(error_list::SeverityError, message,
            QString::fromLatin1(gl::errorName(message.u32(offset::glErrorCode))),
            record_text::multiLine(message.text(offset::glErrorDescription)),
            record_text::singleLine(message.text(offset::glErrorFunction, offset::glErrorDescription)));
        break;
    case Type::ContextInformation:
        addContext(message);
        break;
    default:
        break;
    }
}

void ClientInterface::addContext(const Message& message)
{
    // A page takes far more memory than its record. Of an application that makes contexts without end, only
    // the newest ones are kept.
    if (m_ui->tabWidget_contexts->count() >= mostContexts)
        removeOldestContexts();
    auto* page = new ContextInterface(message, m_ui->tabWidget_contexts);
    connect(page, &ContextInterface::statusMessage, m_console, &Console::statusMessage);
    if (m_contextFollower)
        m_contextFollower(*page);
    m_ui->tabWidget_contexts->addTab(page, tr("Context %1").arg(message.i32(offset::contextNumber)));
    m_ui->lblNoContexts->hide();
    m_ui->contextsArea->show();
}

void ClientInterface::removeOldestContexts()
{
    QTabWidget& pages = *m_ui->tabWidget_contexts;
    pages.setCurrentIndex(std::max(pages.currentIndex(), contextStep));
    for (int i = 0; i < contextStep; ++i)
        delete pages.widget(0);
}

void ClientInterface::addErrorListRow(qint32 severity, const Message& message, const QString& code,
    const QString& description, const QString& function)
{
    // Its entry is the newest one of the console.
    m_errorListModel->append(
        severity, message.i32(offset::frame), code, description, function, m_console->entryCount() - 1);
    m_ui->tblErrorList->followEnd();
}

void ClientInterface::fontChanged(const QFont& font)
{
    m_console->setFont(font);
}

void ClientInterface::finish(const QString& text)
{
    m_console->addClosingLine(text, m_client ? m_client->recordTime() : std::nullopt);
    m_state = State::Finished;
    if (!m_session.isEmpty())
        return;
    m_ui->grpRendering->setEnabled(false);
    m_ui->grpRendering->setToolTip(tr("The application is no longer connected"));
    m_ui->lblNoContexts->setText(tr("The application created no rendering context."));
}

void ClientInterface::closeOnceSaved()
{
    if (m_client)
        m_client->disconnect(this);
    hide();
    const auto closeIfDone = [this] {
        if (!isBusy())
            deleteLater();
    };
    connect(m_saver, &ConsoleSaver::busyChanged, this, closeIfDone);
    for (const TableExport* rows : findChildren<TableExport*>())
        connect(rows, &TableExport::done, this, closeIfDone);
}

const TableExport& ClientInterface::rowExport() const
{
    return m_errorListActions->rowExport();
}

bool ClientInterface::isSaving() const
{
    return m_saver->isSaving() || rowExport().isSaving();
}

bool ClientInterface::isBusy() const
{
    // Each context has exports of its own.
    const QList<TableExport*> exports = findChildren<TableExport*>();
    return m_saver->isBusy() || std::any_of(exports.begin(), exports.end(), [](const TableExport* rows) {
        return rows->isBusy();
    });
}

void ClientInterface::wireframeStateChanged(int state)
{
    if (!m_client)
        return;
    if (state == Qt::Unchecked)
        m_client->wireframeOff();
    else if (state == Qt::Checked)
        m_client->wireframeOn();
}

void ClientInterface::uncheckConsoleAutoScroll()
{
    m_ui->chkConsoleAutoScroll->setChecked(false);
}

void ClientInterface::uncheckErrorListAutoScroll()
{
    m_ui->chkErrorListAutoScroll->setChecked(false);
}

void ClientInterface::errorListWarningsStateChanged(int state)
{
    m_errorListFilter->setShowWarnings(state == Qt::Checked);
    m_ui->tblErrorList->followEnd();
}

void ClientInterface::errorListErrorsStateChanged(int state)
{
    m_errorListFilter->setShowErrors(state == Qt::Checked);
    m_ui->tblErrorList->followEnd();
}

void ClientInterface::showErrorListItemContents(int row, int column, QPoint position)
{
    const QString text = m_errorListFilter->index(row, column).data(Qt::DisplayRole).toString();
    // The dialog owns itself: rows go on arriving while it is open, and the tab may be closed below it.
    auto* dialog = new CellContentsDialog(text, this);
    dialog->showAt(position);
}
