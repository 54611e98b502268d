#include "SessionActions.h"

#include "Client.h"
#include "ClientInterface.h"
#include "ClientTabWidget.h"
#include "CompareSessionsDialog.h"
#include "PlainMessageBox.h"
#include "Preferences.h"
#include "RecentFilesMenu.h"
#include "SaveSessionDialog.h"
#include "SessionFiles.h"

#include <QDateTime>
#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMimeData>
#include <QUrl>

namespace {

/// The local files of what is dragged.
QStringList filesOf(const QMimeData* data)
{
    QStringList files;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    }
    return files;
}

} // namespace

SessionActions::SessionActions(
    Preferences& preferences, QMenu* menu, QAction* before, ClientTabWidget& tabs, SessionPages& pages)
    : QObject(menu->window())
    , m_window(menu->parentWidget()->window())
    , m_preferences(preferences)
    , m_tabs(tabs)
    , m_pages(pages)
    , m_copy(nullptr)
{
    setUpActions(menu, before);
    connect(&m_pages, &SessionPages::statusMessage, this, &SessionActions::statusMessage);
    connect(&m_pages, &SessionPages::notOpened, this, &SessionActions::tellNotOpened);
    connect(&m_pages, &SessionPages::sourcesChanged, this, &SessionActions::updateActions);
    connect(&m_pages, &SessionPages::opened, this, [this](const QString& path) {
        m_recent->addFile(path);
        Q_EMIT pageWanted();
    });
    connect(
        &m_copy, &SessionCopy::ended, this, [this](bool isSaved, const QString& path, const QString& text) {
            if (isSaved)
                m_recent->addFile(path);
            Q_EMIT statusMessage(text);
            updateActions();
            Q_EMIT saved(isSaved);
        });
    m_window->setAcceptDrops(true);
    m_window->installEventFilter(this);
    updateActions();
}

void SessionActions::setUpActions(QMenu* menu, QAction* before)
{
    auto* open = new QAction(tr("&Open Session..."), this);
    open->setObjectName(QStringLiteral("actionOpenSession"));
    open->setShortcut(QKeySequence::Open);
    connect(open, &QAction::triggered, this, &SessionActions::askForSession);
    m_save = new QAction(tr("Sa&ve Session..."), this);
    m_save->setObjectName(QStringLiteral("actionSaveSession"));
    m_save->setShortcut(QStringLiteral("Ctrl+Alt+S"));
    connect(m_save, &QAction::triggered, this, &SessionActions::askForSave);
    auto* compare = new QAction(tr("Com&pare Sessions..."), this);
    compare->setObjectName(QStringLiteral("actionCompareSessions"));
    connect(compare, &QAction::triggered, this, &SessionActions::compare);
    m_record = new QAction(tr("Record A&ll Sessions"), this);
    m_record->setObjectName(QStringLiteral("actionRecordSessions"));
    m_record->setCheckable(true);
    m_record->setStatusTip(
        tr("Keep what the next programs report in \"%1\": the last 20 sessions, 1 GiB at most")
            .arg(QDir::toNativeSeparators(m_pages.folder().path())));
    const bool records = m_preferences.get(settings::recordSessions);
    m_record->setChecked(records);
    m_pages.setRecordsAll(records);
    connect(m_record, &QAction::triggered, this, &SessionActions::setRecords);

    m_recent = new RecentFilesMenu(m_preferences, tr("Recent Sess&ions"), m_window, settings::recentSessions);
    m_recent->setObjectName(QStringLiteral("menuRecentSessions"));
    connect(
        m_recent, &RecentFilesMenu::fileChosen, this, [this](const QString& path) { m_pages.open(path); });
    connect(m_recent, &RecentFilesMenu::fileMissing, this, [this](const QString& path) {
        Q_EMIT statusMessage(
            tr("\"%1\" is not there any more, and was taken out of the list of recent sessions.").arg(path));
    });
    menu->insertAction(before, open);
    menu->insertMenu(before, m_recent);
    menu->insertActions(before, {m_save, compare, m_record});
    menu->insertSeparator(before);
}

void SessionActions::setRecords(bool records)
{
    m_preferences.set(settings::recordSessions, records);
    m_pages.setRecordsAll(records);
    const QString folder = QDir::toNativeSeparators(m_pages.folder().path());
    Q_EMIT statusMessage(records
            ? tr("Programs that connect from now on are recorded in \"%1\".").arg(folder)
            : tr("Programs that connect from now on are not recorded. What is there stays in \"%1\".")
                  .arg(folder));
}

void SessionActions::updateActions()
{
    m_save->setEnabled(!m_copy.isBusy() && m_pages.hasSources());
}

void SessionActions::askForSave()
{
    const ClientInterface* page = m_tabs.pageAt(m_tabs.currentIndex());
    const std::optional<SessionSource> current = m_pages.sourceOf(page);
    const std::vector<SessionSource> all = m_pages.sources();
    if (all.empty() || m_copy.isBusy())
        return;
    if (all.size() == 1) {
        askForFile(all);
        return;
    }
    auto* dialog = new SaveSessionDialog(current ? current->title : QString(), all.size(), m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog, current, all] {
        askForFile(dialog->isForAll() || !current ? all : std::vector<SessionSource>{*current});
    });
    dialog->open();
}

void SessionActions::askForFile(const std::vector<SessionSource>& sources)
{
    auto* dialog = new QFileDialog(m_window, tr("Save session"), QDir::homePath());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters(session_files::nameFilters());
    dialog->setDefaultSuffix(session_files::suffix());
    dialog->selectFile(session_files::proposedName(sources.size() == 1 ? sources.front().title : tr("all")));
    connect(dialog, &QFileDialog::fileSelected, this, [this, sources](const QString& path) {
        if (m_copy.isBusy())
            return;
        Q_EMIT statusMessage(tr("Saving the session..."));
        m_copy.start(sources, path);
        updateActions();
    });
    dialog->open();
}

void SessionActions::askForSession()
{
    auto* dialog =
        new QFileDialog(m_window, tr("Open session"), session_files::usualFolder(m_recent->files()));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters(session_files::nameFilters());
    connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& files) {
        for (const QString& file : files)
            m_pages.open(file);
    });
    dialog->open();
}

void SessionActions::compare()
{
    auto* dialog = new CompareSessionsDialog(m_pages.sources(), m_recent->files(), m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

void SessionActions::tellNotOpened(const QString& path, const QString& reason)
{
    auto* box = new PlainMessageBox(QMessageBox::Warning, tr("Open session"),
        tr("\"%1\" cannot be shown.").arg(QFileInfo(path).fileName()), reason, m_window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

bool SessionActions::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::DragEnter) {
        auto* drag = static_cast<QDragEnterEvent*>(event);
        if (!filesOf(drag->mimeData()).isEmpty())
            drag->acceptProposedAction();
    } else if (event->type() == QEvent::Drop) {
        auto* drop = static_cast<QDropEvent*>(event);
        for (const QString& file : filesOf(drop->mimeData()))
            m_pages.open(file);
        drop->acceptProposedAction();
    }
    return QObject::eventFilter(watched, event);
}
