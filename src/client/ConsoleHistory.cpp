#include "ConsoleHistory.h"

#include "ConsoleFollower.h"
#include "ConsoleSpool.h"
#include "TextViewPlace.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextEdit>

#include <algorithm>
#include <deque>
#include <iterator>

namespace {

/// Weight of the entries that a window has before and behind the reader's place, at least and at most.
/// Measured: 600 entries are written and laid out in 30 to 45 ms.
constexpr int leastHalf = 200;
constexpr int mostHalf = 300;

/// Entries that are read at once at most, where many are folded into few. Measured: 20 ms.
constexpr std::uint64_t mostRead = 50'000;

int linesOf(const QTextEdit& view)
{
    return view.viewport()->height() / std::max(1, view.fontMetrics().lineSpacing()) + 1;
}

/// The text at a height of the view. In its middle, as beside a frame it would be the frame's start.
QTextCursor cursorAt(const QTextEdit& view, int y)
{
    return view.cursorForPosition(QPoint(view.viewport()->width() / 2, y));
}

bool isSeparator(QChar character)
{
    constexpr char16_t frameStart = 0xFDD0;
    constexpr char16_t frameEnd = 0xFDD1;
    return character == QChar::ParagraphSeparator || character == frameStart || character == frameEnd;
}

/// The line that stands for missing entries takes the place of the last of them.
std::uint64_t itemSerial(const ConsoleSpool::Reader& reader)
{
    return reader.isEntry() ? reader.serial() : reader.serial() - 1;
}

} // namespace

ConsoleHistory::ConsoleHistory(
    QTextEdit* view, ConsoleSpool& spool, ConsoleFollower& follower, ConsoleDocument& liveDocument)
    : m_view(view)
    , m_spool(spool)
    , m_follower(follower)
    , m_live(liveDocument)
    , m_window(view->document())
{
    m_window.setPalette(view->palette());
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
    view->viewport()->setMouseTracking(true);
    connect(&follower, &ConsoleFollower::readerMoved, this, &ConsoleHistory::extend);
}

void ConsoleHistory::rewrite(const QPalette& palette)
{
    m_window.setPalette(palette);
    if (m_isShown)
        m_window.rewrite();
}

/// Brings more entries when the reader has come near to the end of those that are shown.
void ConsoleHistory::extend()
{
    const QScrollBar& bar = *m_view->verticalScrollBar();
    if (m_follower.isFollowing() || m_follower.isHeld() || bar.isSliderDown())
        return;
    const bool needsEarlier =
        bar.value() < bar.pageStep() && document().hasEarlier() && (m_isShown || !m_live.isFillable());
    const bool needsLater = document().isClosed() && isNearEnd();
    if (!needsEarlier && !needsLater)
        return;
    const int y = needsEarlier ? 0 : m_view->viewport()->height() - 1;
    const QTextCursor cursor = cursorAt(*m_view, y);
    if (const std::optional<std::uint64_t> serial = document().serialAt(cursor.position())) {
        const std::optional<ConsoleDocument::Range> range = rangeOf(*serial);
        QTextCursor start(m_view->document());
        start.setPosition(range ? textStart(*range) : cursor.position());
        showAround(*serial, m_view->cursorRect(start).top());
    }
}

bool ConsoleHistory::isNearEnd() const
{
    const QTextCursor bottom = cursorAt(*m_view, m_view->viewport()->height() - 1);
    return m_view->document()->blockCount() - bottom.blockNumber() < linesOf(*m_view);
}

int ConsoleHistory::halfWeight() const
{
    return std::clamp(2 * linesOf(*m_view), leastHalf, mostHalf);
}

/// Entries of a given weight before an entry, and as many behind it.
std::vector<ConsoleItem> ConsoleHistory::itemsAround(std::uint64_t serial, int weight, bool& reachesEnd) const
{
    const std::uint64_t available = serial - m_spool.firstSerial();
    auto before = static_cast<std::uint64_t>(weight);
    std::vector<ConsoleItem> items =
        itemsFrom(serial - std::min(available, before), serial, weight, reachesEnd);
    // Where many are folded into few, those before them have to be read as well.
    while (m_folding && m_folding->isActive() && before < std::min(available, mostRead) && !items.empty()
        && (items.size() < static_cast<std::size_t>(weight) || items.front().isCut)) {
        before *= 8;
        items = itemsFrom(serial - std::min(available, before), serial, weight, reachesEnd);
    }
    return items;
}

std::vector<ConsoleItem> ConsoleHistory::itemsFrom(
    std::uint64_t first, std::uint64_t serial, int weight, bool& reachesEnd) const
{
    // The entry before the first one tells whether that is in the middle of what is folded.
    ConsoleSpool::Reader reader(m_spool, std::max(first, m_spool.firstSerial() + 1) - 1);
    reader.followGroups();
    const auto folds = [this, &reader](std::string_view former, std::string_view entry) {
        return m_folding && m_folding->folds(former, entry, reader.place());
    };
    std::optional<std::string> former;
    std::deque<ConsoleItem> items;
    int weightBefore = 0;
    int weightBehind = 0;
    std::uint64_t readBehind = 0;
    std::string_view entry;
    reachesEnd = true;
    while (reader.next(entry)) {
        if (reader.serial() < first) {
            former = entry;
            continue;
        }
        const bool isBefore = reader.serial() < serial;
        // Counted, as serial numbers leap over entries that are missing.
        readBehind += isBefore ? 0 : 1;
        if (!items.empty() && folds(items.back().bytes, entry)) {
            ++items.back().count;
            continue;
        }
        if (weightBehind >= weight || readBehind > mostRead) {
            reachesEnd = false;
            break;
        }
        (isBefore ? weightBefore : weightBehind) += console_entry::weight(entry);
        items.push_back({std::string(entry), itemSerial(reader), reader.stamp(), reader.place()});
        items.back().isCut = items.size() == 1 && former && folds(*former, entry);
        former.reset();
        while (isBefore && weightBefore > weight && items.size() > 1) {
            weightBefore -= console_entry::weight(items.front().bytes);
            items.pop_front();
        }
    }
    if (items.size() > 1 && items.front().isCut && items[1].serial <= serial)
        items.pop_front();
    return {std::make_move_iterator(items.begin()), std::make_move_iterator(items.end())};
}

void ConsoleHistory::reloadLive()
{
    bool reachesEnd = true;
    const std::uint64_t end = m_spool.endSerial();
    std::vector<ConsoleItem> items =
        itemsAround(end, static_cast<int>(ConsoleDocument::liveEntries), reachesEnd);
    const std::uint64_t first = items.empty() ? end : items.front().serial;
    const std::uint64_t earlier = items.empty() ? first - m_spool.firstSerial() : earlierThan(items.front());
    m_live.load(std::move(items), earlier, m_spool.outlineBefore(first));
}

/// The number of entries before an item. The line at the very start that stands for missing entries has none
/// before it that could be seen.
std::uint64_t ConsoleHistory::earlierThan(const ConsoleItem& item) const
{
    ConsoleSpool::Reader reader(m_spool);
    std::string_view entry;
    const bool isFirst = reader.next(entry) && itemSerial(reader) >= item.serial;
    return isFirst ? 0 : item.serial - m_spool.firstSerial();
}

void ConsoleHistory::reload()
{
    const std::optional<std::uint64_t> serial = topEntry();
    if (!serial) {
        reloadLive();
        return;
    }
    QTextCursor start(m_view->document());
    if (const std::optional<ConsoleDocument::Range> range = rangeOf(*serial))
        start.setPosition(textStart(*range));
    showAround(*serial, m_view->cursorRect(start).top(), Live::Reloaded);
}

/// Shows a window around an entry, whose text begins at a given height in the view.
void ConsoleHistory::showAround(std::uint64_t serial, int y, Live live)
{
    const QTextCursor cursor = m_view->textCursor();
    const Selection selection{placeOf(cursor.anchor()), placeOf(cursor.position())};
    bool reachesEnd = true;
    std::vector<ConsoleItem> items = itemsAround(serial, halfWeight(), reachesEnd);
    if (live == Live::Reloaded)
        reloadLive();
    if (reachesEnd) {
        m_isShown = false;
        m_live.restart(2 * halfWeight());
    } else {
        const std::uint64_t first = items.front().serial;
        m_live.release();
        m_isShown = true;
        const std::uint64_t earlier = earlierThan(items.front());
        m_window.load(std::move(items), earlier, m_spool.outlineBefore(first));
        m_window.show();
        m_window.close(tr("Newer entries have arrived. Tick \"Auto-scroll\" to see them."));
    }
    if (const std::optional<int> position = positionOf(selection.position)) {
        QTextCursor restored(m_view->document());
        restored.setPosition(positionOf(selection.anchor).value_or(*position));
        restored.setPosition(*position, QTextCursor::KeepAnchor);
        m_view->setTextCursor(restored);
    }
    if (const std::optional<ConsoleDocument::Range> range = rangeOf(serial)) {
        QTextCursor start(m_view->document());
        start.setPosition(textStart(*range));
        if (!positionOf(selection.position))
            m_view->setTextCursor(start);
        TextViewPlace(m_view, start, y).restore();
    }
    if (reachesEnd)
        Q_EMIT liveShown();
}

bool ConsoleHistory::bringEntry(std::uint64_t serial)
{
    if (serial < m_spool.firstSerial() || serial >= m_spool.endSerial())
        return false;
    m_follower.stopFollowing();
    if (!rangeOf(serial))
        showAround(serial, m_view->viewport()->height() / 3);
    return true;
}

bool ConsoleHistory::showEntry(std::uint64_t serial)
{
    if (!bringEntry(serial))
        return false;
    selectEntry(serial);
    return true;
}

void ConsoleHistory::putCursorAt(std::uint64_t serial)
{
    if (const std::optional<ConsoleDocument::Range> range = rangeOf(serial)) {
        QTextCursor cursor(m_view->document());
        cursor.setPosition(textStart(*range));
        m_follower.showCursor(cursor);
    }
}

void ConsoleHistory::selectEntry(std::uint64_t serial)
{
    const std::optional<ConsoleDocument::Range> range = rangeOf(serial);
    if (!range)
        return; // Its text is missing, as the disk had no room for it.
    const QTextDocument& text = *m_view->document();
    const int start = textStart(*range);
    int end = range->end;
    while (end > start && isSeparator(text.characterAt(end - 1)))
        --end;
    select(start, end);
}

/// Selects text, and shows its start.
void ConsoleHistory::select(int start, int end)
{
    QTextCursor cursor(m_view->document());
    // The cursor, which the view makes visible, is to stand at the start.
    cursor.setPosition(end);
    cursor.setPosition(start, QTextCursor::KeepAnchor);
    m_follower.showCursor(cursor);
}

void ConsoleHistory::showMatch(std::uint64_t serial, std::size_t number, const FindPattern& pattern)
{
    if (!bringEntry(serial))
        return;
    const std::vector<ConsoleDocument::Range> matches = matchesIn(serial, pattern);
    if (number < matches.size())
        select(matches[number].start, matches[number].end);
    else
        selectEntry(serial);
}

std::vector<ConsoleDocument::Range> ConsoleHistory::matchesIn(
    std::uint64_t serial, const FindPattern& pattern) const
{
    std::vector<ConsoleDocument::Range> matches;
    const std::optional<ConsoleDocument::Range> range = rangeOf(serial);
    if (!range)
        return matches;
    for (QTextBlock block = m_view->document()->findBlock(textStart(*range));
         block.isValid() && block.position() < range->end; block = block.next()) {
        const QString text = block.text();
        for (FindPattern::Match match = pattern.find(text); match.start >= 0;
             match = pattern.find(text, match.start + match.length)) {
            const int start = block.position() + static_cast<int>(match.start);
            matches.push_back({start, start + static_cast<int>(match.length)});
        }
    }
    return matches;
}

void ConsoleHistory::forEachShown(const std::function<bool(const ConsoleDocument::Shown&)>& function) const
{
    document().forEachShown(function);
}

void ConsoleHistory::forEachInView(
    const std::function<void(const ConsoleDocument::Shown&, int)>& function) const
{
    const int first = cursorAt(*m_view, 0).position();
    const int last = cursorAt(*m_view, m_view->viewport()->height()).position();
    forEachShown([&](const ConsoleDocument::Shown& entry) {
        if (entry.range.end < first)
            return true;
        const int start = textStart(entry.range);
        if (start == entry.range.end)
            return true;
        QTextCursor cursor(m_view->document());
        cursor.setPosition(start);
        if (start <= last)
            function(entry, m_view->cursorRect(cursor).top());
        return start <= last;
    });
}

std::optional<ConsoleDocument::Range> ConsoleHistory::rangeOf(std::uint64_t serial) const
{
    return document().rangeOf(serial);
}

std::optional<std::uint64_t> ConsoleHistory::topEntry() const
{
    return document().serialAt(cursorAt(*m_view, 0).position());
}

/// A line's end is already the start of the next entry, to which the line break belongs.
int ConsoleHistory::lineStart(int position) const
{
    return m_view->document()->findBlock(position).position();
}

std::optional<std::uint64_t> ConsoleHistory::entryAt(int position) const
{
    return document().serialAt(lineStart(position));
}

std::optional<std::uint64_t> ConsoleHistory::groupAt(int position) const
{
    const std::optional<ConsoleDocument::Shown> shown = document().shownAt(lineStart(position));
    return shown ? shown->group : std::nullopt;
}

/// Where the text of an entry begins, behind the line break or the frame before it.
int ConsoleHistory::textStart(const ConsoleDocument::Range& range) const
{
    int start = range.start;
    while (start < range.end && isSeparator(m_view->document()->characterAt(start)))
        ++start;
    return start;
}

std::optional<ConsoleHistory::Place> ConsoleHistory::placeOf(int position) const
{
    const std::optional<std::uint64_t> serial = document().serialAt(position);
    const std::optional<ConsoleDocument::Range> range = serial ? rangeOf(*serial) : std::nullopt;
    if (!range || position < range->start)
        return {};
    return Place{*serial, position - range->start};
}

std::optional<int> ConsoleHistory::positionOf(const std::optional<Place>& place) const
{
    const std::optional<ConsoleDocument::Range> range = place ? rangeOf(place->serial) : std::nullopt;
    if (!range)
        return {};
    return std::min(range->start + place->offset, range->end);
}

bool ConsoleHistory::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        if (watched == m_view && keyPressed(static_cast<const QKeyEvent&>(*event)))
            return true;
        break;
    case QEvent::MouseMove: {
        const QPoint place = static_cast<const QMouseEvent*>(event)->position().toPoint();
        const bool isLink = !m_view->anchorAt(place).isEmpty();
        m_view->viewport()->setCursor(isLink ? Qt::PointingHandCursor : Qt::IBeamCursor);
        break;
    }
    case QEvent::MouseButtonRelease:
        followLink(static_cast<const QMouseEvent&>(*event));
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

/// Ctrl+Home and Ctrl+End go to the ends of the whole console, not only of what is shown.
bool ConsoleHistory::keyPressed(const QKeyEvent& event)
{
    if (event.matches(QKeySequence::MoveToStartOfDocument) && document().hasEarlier()) {
        m_follower.stopFollowing();
        m_view->moveCursor(QTextCursor::Start);
        showAround(m_spool.firstSerial(), 0);
        m_view->moveCursor(QTextCursor::Start);
        return true;
    }
    if (event.matches(QKeySequence::MoveToEndOfDocument)) {
        Q_EMIT endWanted();
        return true;
    }
    return false;
}

void ConsoleHistory::followLink(const QMouseEvent& event)
{
    const QPoint place = event.position().toPoint();
    if (event.button() != Qt::LeftButton || m_view->textCursor().hasSelection()
        || m_view->anchorAt(place) != QLatin1String(ConsoleDocument::earlierLink))
        return;
    // What was the first entry comes to the bottom of the view, with those before it above.
    const std::optional<std::uint64_t> first = document().serialAt(0);
    if (!first || *first == m_spool.firstSerial())
        return;
    m_follower.stopFollowing();
    showAround(*first - 1, m_view->viewport()->height() - 2 * m_view->fontMetrics().lineSpacing());
}
