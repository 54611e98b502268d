#include "SessionPages.h"

#include "Client.h"
#include "ClientInterface.h"
#include "ClientRecorder.h"
#include "ClientTabWidget.h"
#include "NoticeBar.h"
#include "ReplayedClient.h"

#include <QBoxLayout>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QPushButton>
#include <QSet>

#include <algorithm>
#include <chrono>
#include <memory>

namespace {

QString sessionName(const SessionReplay& replay)
{
    const auto begin =
        std::chrono::duration_cast<std::chrono::milliseconds>(replay.session().begin().time_since_epoch());
    return SessionPages::tr("Session of %1")
        .arg(QDateTime::fromMSecsSinceEpoch(begin.count()).toString(QStringLiteral("yyyy-MM-dd hh:mm")));
}

/// With the name of its file.
QString sessionText(const SessionReplay& replay)
{
    return QStringLiteral("%1, %2").arg(sessionName(replay), QFileInfo(replay.path()).fileName());
}

/// Minutes, seconds and tenths.
QString timeText(sessions::SessionTime time)
{
    const auto tenths = std::chrono::duration_cast<std::chrono::milliseconds>(time).count() / 100;
    return QStringLiteral("%1:%2.%3")
        .arg(tenths / 600)
        .arg(tenths / 10 % 60, 2, 10, QLatin1Char('0'))
        .arg(tenths % 10);
}

} // namespace

SessionPages::SessionPages(ClientTabWidget& tabs, QWidget* around, const AddPage& addPage)
    : QObject(around)
    , m_tabs(tabs)
    , m_addPage(addPage)
{
    setUpBar(around);
    connect(&tabs, &QTabWidget::currentChanged, this, &SessionPages::showBar);
}

SessionPages::~SessionPages() = default;

void SessionPages::setUpBar(QWidget* around)
{
    m_bar = new widgets::NoticeBar(QStringLiteral("sessionBar"), around);
    m_again = m_bar->addButton(QStringLiteral("btnPlaySession"), tr("&Play Again"),
        tr("Play the session anew, at the pace in which it was recorded"));
    m_pause = m_bar->addButton(QStringLiteral("btnPauseSession"), tr("Pau&se"), {});
    m_step = m_bar->addButton(
        QStringLiteral("btnStepSession"), tr("Ne&xt Record"), tr("Play the next record and stop again"));
    m_showAll = m_bar->addButton(
        QStringLiteral("btnShowSession"), tr("Show &All"), tr("Show the rest of the session at once"));
    connect(m_again, &QPushButton::clicked, this, &SessionPages::playAgain);
    connect(m_pause, &QPushButton::clicked, this, &SessionPages::pauseOrGoOn);
    connect(m_step, &QPushButton::clicked, this, [this] {
        if (SessionReplay* replay = currentReplay())
            replay->step();
    });
    connect(m_showAll, &QPushButton::clicked, this, [this] {
        if (SessionReplay* replay = currentReplay())
            replay->play(SessionReplay::Pace::AtOnce);
    });
    if (auto* layout = qobject_cast<QBoxLayout*>(around->layout()))
        layout->insertWidget(0, m_bar);
}

void SessionPages::open(const QString& path, SessionReplay::Pace pace)
{
    auto replay = std::make_unique<SessionReplay>(nullptr);
    if (!replay->open(path)) {
        Q_EMIT notOpened(path, replay->reason());
        return;
    }
    if (replay->clients().empty()) {
        Q_EMIT notOpened(
            path, replay->damage().isEmpty() ? tr("There is no program in this session.") : replay->damage());
        return;
    }
    SessionReplay* shown = replay.release();
    shown->setParent(this);
    connect(shown, &SessionReplay::progressed, this, [this, shown] {
        for (const ReplayedClient* client : shown->clients()) {
            if (ClientInterface* page = m_tabs.pageOf(client))
                page->setErrorsAreNews(shown->pace() != SessionReplay::Pace::AtOnce);
        }
        showBar();
    });
    const QString name = tr("%1, ended").arg(sessionName(*shown));
    for (ReplayedClient* client : shown->clients()) {
        ClientInterface* page = m_addPage(client, name);
        keep(*page, {nullptr, shown, client});
        m_tabs.setDevice(client, client->device());
        m_tabs.setEndText(client, client->endText());
    }
    m_tabs.setCurrentIndex(m_tabs.indexOf(m_tabs.pageOf(shown->clients().front())));
    shown->play(pace);
    Q_EMIT opened(path);
}

void SessionPages::record(Client& client, ClientInterface& page)
{
    const QString path = m_recordsAll ? m_folder.addFile() : QString();
    if (m_recordsAll && path.isEmpty())
        Q_EMIT statusMessage(tr("The folder \"%1\" for recorded sessions cannot be made.")
                                 .arg(QDir::toNativeSeparators(m_folder.path())));
    // What has no name goes with its page; a session in the user's folder is recorded to its end.
    auto* recorder = new ClientRecorder(client, path, &page);
    if (!recorder->path().isEmpty()) {
        recorder->setParent(&client);
        recorder->setLimit([this] { return m_folder.makeRoom(); });
        connect(recorder, &ClientRecorder::closed, this, [this, path, recorder, shown = QPointer(&page)] {
            m_folder.closeFile(path);
            if (!shown)
                recorder->deleteLater();
        });
    } else if (!path.isEmpty()) {
        m_folder.closeFile(path);
    }
    connect(recorder, &ClientRecorder::deviceKnown, &m_tabs,
        [this, &client](const QString& device) { m_tabs.setDevice(&client, device); });
    connect(recorder, &ClientRecorder::closed, &m_tabs,
        [this, recorder, &client] { m_tabs.setEndText(&client, recorder->endText()); });
    connect(recorder, &ClientRecorder::failed, this, [this](const QString& reason) {
        Q_EMIT statusMessage(
            tr("What this application sends cannot be kept as a session any more: %1").arg(reason));
    });
    keep(page, {recorder, nullptr, nullptr});
}

void SessionPages::keep(ClientInterface& page, const Kept& kept)
{
    m_kept[&page] = kept;
    connect(&page, &QObject::destroyed, this, [this, gone = &page] { forget(gone); });
    Q_EMIT sourcesChanged();
}

void SessionPages::forget(const ClientInterface* page)
{
    const auto place = m_kept.find(page);
    if (place == m_kept.end())
        return;
    // One that has not ended goes as soon as it has.
    if (ClientRecorder* recorder = place->second.recorder; recorder && recorder->hasEnded())
        recorder->deleteLater();
    SessionReplay* replay = place->second.replay;
    m_kept.erase(place);
    const bool isUsed = std::any_of(
        m_kept.begin(), m_kept.end(), [replay](const auto& entry) { return entry.second.replay == replay; });
    if (replay && !isUsed) {
        replay->disconnect(this);
        replay->play(SessionReplay::Pace::Paused);
        replay->deleteLater();
    }
    Q_EMIT sourcesChanged();
}

std::optional<SessionSource> SessionPages::sourceOf(const ClientInterface* page) const
{
    const auto place = m_kept.find(page);
    if (place == m_kept.end())
        return std::nullopt;
    const Kept& kept = place->second;
    if (kept.recorder)
        return kept.recorder->source(page->title());
    if (kept.replay)
        return kept.replay->source(
            *kept.client, QStringLiteral("%1 (%2)").arg(page->title(), sessionText(*kept.replay)));
    return std::nullopt;
}

std::vector<SessionSource> SessionPages::sources() const
{
    std::vector<SessionSource> all;
    for (int i = 0; i < m_tabs.count(); ++i) {
        if (std::optional<SessionSource> source = sourceOf(m_tabs.pageAt(i)))
            all.push_back(std::move(*source));
    }
    return all;
}

SessionReplay* SessionPages::currentReplay() const
{
    const auto place = m_kept.find(m_tabs.pageAt(m_tabs.currentIndex()));
    return place == m_kept.end() ? nullptr : place->second.replay.data();
}

void SessionPages::playAgain()
{
    const SessionReplay* former = currentReplay();
    if (!former)
        return;
    QSet<const ClientInterface*> pages;
    for (const auto& [page, kept] : m_kept) {
        if (kept.replay == former)
            pages.insert(page);
    }
    const auto before = m_kept.size();
    open(former->path(), SessionReplay::Pace::Recorded);
    if (m_kept.size() == before)
        return; // It could not be opened, and what is shown stays.
    for (int i = m_tabs.count() - 1; i >= 0; --i) {
        if (pages.contains(m_tabs.pageAt(i)))
            m_tabs.closeTabAt(i);
    }
}

void SessionPages::pauseOrGoOn()
{
    SessionReplay* replay = currentReplay();
    if (!replay)
        return;
    const bool isPaused = replay->pace() == SessionReplay::Pace::Paused;
    replay->play(isPaused ? SessionReplay::Pace::Recorded : SessionReplay::Pace::Paused);
}

void SessionPages::showBar()
{
    const SessionReplay* replay = currentReplay();
    if (!replay) {
        m_bar->setText({});
        return;
    }
    const bool isPaced = !replay->hasEnded() && replay->pace() != SessionReplay::Pace::AtOnce;
    const bool isPaused = replay->pace() == SessionReplay::Pace::Paused;
    m_again->setVisible(!isPaced);
    m_again->setEnabled(replay->hasEnded());
    m_pause->setVisible(isPaced);
    m_pause->setText(isPaused ? tr("&Go On") : tr("Pau&se"));
    m_pause->setToolTip(isPaused ? tr("Go on at the pace in which the session was recorded")
                                 : tr("Stop before the next record"));
    m_step->setVisible(isPaced);
    m_step->setEnabled(isPaused);
    m_showAll->setVisible(isPaced);
    m_bar->setText(barText(*replay), QDir::toNativeSeparators(replay->path()));
}

QString SessionPages::barText(const SessionReplay& replay) const
{
    const QString name = sessionText(replay);
    QString text;
    if (replay.hasEnded())
        text = tr("%1: ended.").arg(name);
    else if (replay.pace() == SessionReplay::Pace::AtOnce)
        text = tr("%1: reading, %2 of %3 records.")
                   .arg(name)
                   .arg(QLocale().toString(static_cast<qulonglong>(replay.playedRecords())))
                   .arg(QLocale().toString(static_cast<qulonglong>(replay.session().recordCount())));
    else
        text = tr("%1: %2 of %3.").arg(name, timeText(replay.position()), timeText(replay.length()));
    const QString damage = replay.damage();
    return damage.isEmpty() ? text : text + QLatin1Char(' ') + damage;
}
