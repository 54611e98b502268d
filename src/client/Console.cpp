#include "Console.h"

#include "TextViewPlace.h"
#include "TextViewSelection.h"

#include <QAbstractButton>
#include <QDateTime>
#include <QElapsedTimer>
#include <QTextEdit>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace {

/// Weight of the entries that one step of filling up adds.
constexpr int fillWeight = 40;
/// Waiting entries that are appended rather than written with a restart.
constexpr std::size_t mostAppended = 250;

} // namespace

Console::Console(QTextEdit* view, QAbstractButton* autoScroll, QObject* parent)
    : QObject(parent)
    , m_view(view)
    , m_follower(view, autoScroll)
    , m_document(view->document())
    , m_spool(new ConsoleSpool(this))
    , m_history(view, *m_spool, m_follower, m_document)
    , m_start(std::chrono::steady_clock::now())
    , m_startTime(QDateTime::currentMSecsSinceEpoch())
{
    m_document.setFolding(&m_folding);
    m_history.setFolding(&m_folding);
    m_document.setPalette(view->palette());
    // A scroll bar that came and went would have all text laid out for another width, twice in each restart.
    view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    connect(&m_pace, &ConsolePace::refreshDue, this, &Console::refresh);
    connect(&m_follower, &ConsoleFollower::endWanted, this, &Console::showEnd);
    connect(&m_follower, &ConsoleFollower::paletteChanged, this, &Console::recolour);
    connect(&m_follower, &ConsoleFollower::zoomWanted, this, &Console::zoomWanted);
    connect(&m_follower, &ConsoleFollower::viewShown, this, [this] {
        if (m_document.waiting() > 0)
            m_pace.refreshNow();
    });
    connect(&m_history, &ConsoleHistory::liveShown, &m_pace, &ConsolePace::fillUp);
    connect(
        &m_history, &ConsoleHistory::endWanted, autoScroll, [autoScroll] { autoScroll->setChecked(true); });
    connect(m_spool, &ConsoleSpool::failed, this, [this](const QString& reason) {
        Q_EMIT statusMessage(
            tr("The complete console cannot be kept for saving (%1). What is shown is not affected.")
                .arg(reason));
    });
}

void Console::add(const ui::messages::Message& record, ConsolePace::Reading reading, Time time)
{
    if (console_entry::isShown(record.type()))
        addEntry(console_entry::pack(record), record.frame(), reading, time);
}

void Console::addClosingLine(const QString& text, Time time)
{
    addEntry(console_entry::packClosingLine(text.toStdString()), ui::messages::noFrame,
        ConsolePace::Reading::NoConnection, time);
}

void Console::addEntry(std::string entry, std::uint32_t frame, ConsolePace::Reading reading, Time time)
{
    const EntryStamp stamp{time ? *time : timeAt(std::chrono::steady_clock::now()), frame};
    const std::uint64_t serial = entryCount();
    const GroupPlace place = m_spool->nextPlace();
    m_spool->append(entry, stamp);
    ConsoleItem item{std::move(entry), serial, stamp, place};
    if (m_pace.mayWriteAtOnce(reading, m_document.isClosed()))
        writeAtOnce(std::move(item));
    else
        m_document.enqueue(std::move(item));
}

std::int64_t Console::timeAt(std::chrono::steady_clock::time_point time) const
{
    return m_startTime + std::chrono::duration_cast<std::chrono::milliseconds>(time - m_start).count();
}

void Console::writeAtOnce(ConsoleItem item)
{
    QElapsedTimer time;
    time.start();
    {
        const TextViewSelection selection(m_view);
        m_document.append(std::move(item));
        trimIfOverfull();
    }
    showEndIfFollowing();
    if (!m_pace.isRefreshPending() && hasMoreToShow())
        m_pace.fillUp();
    if (m_folding.isActive())
        m_view->viewport()->update(); // for the margin, which counts
    m_pace.addWritingTime(time.nsecsElapsed());
}

void Console::refresh()
{
    if (!m_pace.beginRefresh(m_view->isVisible()))
        return;
    const bool isFillable = showMore();
    if (m_folding.isActive())
        m_view->viewport()->update();
    showEndIfFollowing();
    m_pace.endRefresh(m_document.waiting() > 0 && !m_document.isClosed(), isFillable);
}

/// Takes the next step towards what the document should show. True when there are more.
bool Console::showMore()
{
    if (m_document.isClosed())
        return false;
    const bool following = m_follower.isFollowing();
    const TextViewSelection selection(m_view);
    if (m_document.waiting() > 0) {
        showWaiting();
    } else if (following && m_document.needsRebuild()) {
        m_document.restart(restartWeight());
    } else if (m_document.isFillable() && !m_pace.isFlooded()) {
        std::optional<TextViewPlace> place;
        if (!following)
            place.emplace(m_view);
        m_document.fill(fillWeight);
        if (place)
            place->restore();
    } else if (following && !m_pace.isFlooded() && m_document.canRewriteWithOlder()) {
        // Only while the end is followed, as a reader elsewhere would be moved.
        m_document.rewriteWithOlder();
        // So much text is laid out in several steps, after the last of which the end is to be shown again.
        return true;
    }
    return hasMoreToShow();
}

void Console::showWaiting()
{
    const bool following = m_follower.isFollowing();
    if (!following && m_document.hasGap())
        closeDocument();
    else if (following
        && (m_document.waiting() > mostAppended || m_document.hasGap() || m_document.needsRebuild()))
        m_document.restart(restartWeight());
    else
        m_document.appendWaiting(restartWeight());
    trimIfOverfull();
}

bool Console::hasMoreToShow() const
{
    return m_document.isFillable()
        || (m_follower.isFollowing() && (m_document.needsRebuild() || m_document.canRewriteWithOlder()));
}

/// As much as fills the view.
int Console::restartWeight() const
{
    constexpr int least = 20;
    constexpr int most = 150;
    return std::clamp(
        m_view->viewport()->height() / std::max(1, m_view->fontMetrics().lineSpacing()) + 5, least, most);
}

void Console::trimIfOverfull()
{
    if (!m_document.isOverfull())
        return;
    if (m_follower.isFollowing()) {
        if (!m_document.trim(std::numeric_limits<int>::max()))
            m_document.restart(restartWeight());
        return;
    }
    const TextViewPlace place(m_view);
    if (!m_document.trim(m_follower.firstPositionInUse()))
        closeDocument();
    place.restore();
}

/// For a reader who needs what is shown, while the document has no room for more.
void Console::closeDocument()
{
    m_document.close(tr("Newer entries have arrived. Tick \"Auto-scroll\" to see them."));
}

std::optional<std::uint64_t> Console::currentEntry() const
{
    return m_history.entryAt(m_view->textCursor().selectionStart());
}

void Console::clear()
{
    m_history.leave();
    m_document.clear();
    m_spool->clear();
}

void Console::setFont(const QFont& font)
{
    m_view->setFont(font);
    m_view->document()->setDefaultFont(font);
}

void Console::setFoldsRepeats(bool folds)
{
    if (std::exchange(m_folding.repeats, folds) != folds)
        foldAnew();
}

void Console::setFoldsGroups(bool folds)
{
    if (std::exchange(m_folding.groups, folds) == folds)
        return;
    m_folding.exceptions.clear();
    groupsChanged();
}

void Console::toggleGroup(std::uint64_t serial)
{
    if (m_folding.exceptions.erase(serial) == 0)
        m_folding.exceptions.insert(serial);
    groupsChanged();
}

bool Console::toggleGroupAtCursor()
{
    const std::optional<std::uint64_t> group = m_history.groupAt(m_view->textCursor().position());
    if (!group)
        return false;
    // The reader stays with the group.
    m_follower.stopFollowing();
    toggleGroup(*group);
    m_history.putCursorAt(*group);
    return true;
}

void Console::groupsChanged()
{
    foldAnew();
    Q_EMIT groupFoldingChanged(m_folding.groups || !m_folding.exceptions.empty());
}

void Console::foldAnew()
{
    if (m_follower.isFollowing()) {
        m_history.reloadLive();
        restart();
        showEndIfFollowing();
    } else {
        m_history.reload();
    }
}

void Console::restart()
{
    m_history.leave();
    m_document.restart(restartWeight());
    m_pace.fillUp();
}

void Console::recolour()
{
    m_document.setPalette(m_view->palette());
    if (m_follower.isFollowing()) {
        restart();
        m_follower.showEnd(m_document.writeCursor());
    } else {
        m_follower.keepDuring([this] {
            m_history.rewrite(m_view->palette());
            if (!m_history.isShown())
                m_document.rewrite();
        });
    }
}

void Console::showEnd()
{
    if (m_document.isClosed() || m_document.waiting() > 0)
        restart();
    m_follower.showEnd(m_document.writeCursor());
}

void Console::showEndIfFollowing()
{
    if (m_follower.isFollowing())
        m_follower.showEnd(m_document.writeCursor());
}
