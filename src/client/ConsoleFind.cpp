#include "ConsoleFind.h"

#include "Console.h"
#include "ScrollBarMarks.h"
#include "TextFindMarks.h"

#include <QElapsedTimer>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextEdit>

#include <algorithm>
#include <utility>

namespace {

/// Milliseconds of searching in an iteration of the event loop, until new entries are looked at, and between
/// two times of marking in the scroll bar.
constexpr int stepTime = 8;
constexpr int waitingTime = 100;
constexpr int markingTime = 250;

/// Entries between two looks at the clock.
constexpr int entriesPerLook = 32;

} // namespace

ConsoleFind::ConsoleFind(Console* console, QTextEdit* view)
    : Findable(console)
    , m_console(console)
    , m_view(view)
    , m_marks(new TextFindMarks(view))
    , m_barMarks(new ScrollBarMarks(view->verticalScrollBar()))
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &ConsoleFind::step);
    m_barTimer.setSingleShot(true);
    m_barTimer.setInterval(markingTime);
    connect(&m_barTimer, &QTimer::timeout, this, &ConsoleFind::markScrollBar);
    connect(view->document(), &QTextDocument::contentsChanged, this, [this] {
        if (!m_pattern.isEmpty() && !m_barTimer.isActive())
            m_barTimer.start();
    });
}

ConsoleFind::~ConsoleFind() = default;

QWidget* ConsoleFind::view() const
{
    return m_view;
}

QString ConsoleFind::selectedText() const
{
    const QString text = m_view->textCursor().selectedText();
    return text.contains(QChar::ParagraphSeparator) ? QString() : text;
}

void ConsoleFind::stop()
{
    m_pattern = FindPattern();
    m_timer.stop();
    m_barTimer.stop();
    m_reader.reset();
    m_behind.clear();
    m_before.clear();
    m_marks->setPattern(m_pattern);
    m_barMarks->setMarks({});
}

void ConsoleFind::start(const FindPattern& pattern)
{
    stop();
    m_pattern = pattern;
    m_current.reset();
    m_from.reset();
    m_wrapped = Wrapped::No;
    m_isLimited = false;
    if (pattern.isEmpty()) {
        Q_EMIT stateChanged();
        return;
    }
    m_marks->setPattern(pattern);
    const QTextCursor cursor = m_view->textCursor();
    const ConsoleHistory& history = m_console->history();
    m_originPosition = cursor.hasSelection() ? cursor.selectionStart() : -1;
    m_firstSerial = m_console->spool().firstSerial();
    const std::optional<std::uint64_t> place =
        cursor.hasSelection() ? history.entryAt(m_originPosition) : history.topEntry();
    m_origin = place.value_or(m_firstSerial);
    m_part = Part::Behind;
    m_searchedUpTo = m_origin;
    m_reader = std::make_unique<ConsoleSpool::Reader>(m_console->spool(), m_origin);
    m_wanted = Direction::Forward;
    step();
}

void ConsoleFind::step()
{
    if (m_console->spool().firstSerial() != m_firstSerial) {
        start(FindPattern(m_pattern)); // The console was cleared.
        return;
    }
    const std::uint64_t before = m_behind.total() + m_before.total();
    const bool wasArriving = m_part == Part::Arriving;
    const bool hasMore = search();
    tryToGo();
    m_timer.start(hasMore ? 0 : waitingTime);
    if (before != m_behind.total() + m_before.total() && !m_barTimer.isActive())
        m_barTimer.start();
    if (!wasArriving || before != m_behind.total() + m_before.total())
        Q_EMIT stateChanged();
}

/// Searches for the time of a step. False when all there is has been searched.
bool ConsoleFind::search()
{
    QElapsedTimer time;
    time.start();
    while (!time.hasExpired(stepTime)) {
        for (int i = 0; i < entriesPerLook; ++i) {
            std::string_view entry;
            const bool isThere = m_reader && m_reader->next(entry)
                && (m_part != Part::Before || m_reader->serial() < m_origin);
            if (isThere) {
                searchEntry(entry);
                continue;
            }
            beginNextPart();
            if (!m_reader)
                return false;
        }
    }
    return true;
}

void ConsoleFind::beginNextPart()
{
    const bool isBehindDone = m_part == Part::Behind;
    m_reader.reset();
    if (isBehindDone && m_origin > m_firstSerial && !m_isLimited) {
        m_part = Part::Before;
        m_reader = std::make_unique<ConsoleSpool::Reader>(m_console->spool());
        return;
    }
    m_part = Part::Arriving;
    if (!m_isLimited && m_searchedUpTo < m_console->spool().endSerial())
        m_reader = std::make_unique<ConsoleSpool::Reader>(m_console->spool(), m_searchedUpTo);
}

void ConsoleFind::searchEntry(std::string_view entry)
{
    const std::uint64_t serial = m_reader->isEntry() ? m_reader->serial() : m_reader->serial() - 1;
    m_lines.clear();
    console_entry::appendLines(entry, m_lines);
    if (const std::size_t matches = m_pattern.count(m_lines); matches > 0) {
        if (isFull()) {
            m_isLimited = true;
            m_reader.reset();
            return;
        }
        (m_part == Part::Before ? m_before : m_behind).add(serial, matches);
    }
    if (m_part != Part::Before)
        m_searchedUpTo = serial + 1;
}

bool ConsoleFind::isFull() const
{
    return m_behind.size() + m_before.size() >= FoundEntries::mostEntries || m_behind.isFull()
        || m_before.isFull();
}

Findable::State ConsoleFind::state() const
{
    State state;
    state.total = m_behind.total() + m_before.total();
    state.isLimited = m_isLimited;
    state.hasGivenUp = m_pattern.hasGivenUp();
    state.wrapped = m_wrapped;
    const bool isBeforeKnown = m_part == Part::Arriving;
    if (m_current && m_current->serial < m_origin)
        state.current = m_before.countBefore(*m_current) + 1;
    else if (m_current && isBeforeKnown)
        state.current = m_before.total() + m_behind.countBefore(*m_current) + 1;
    if (!isBeforeKnown && m_reader) {
        const std::uint64_t entries =
            std::max<std::uint64_t>(1, m_console->spool().endSerial() - m_firstSerial);
        const std::uint64_t searched = m_part == Part::Behind
            ? m_searchedUpTo - m_origin
            : m_searchedUpTo - m_origin + (m_reader->serial() - m_firstSerial);
        state.percent = static_cast<int>(std::min<std::uint64_t>(99, searched * 100 / entries));
    }
    return state;
}

/// The match behind the current one, or behind the reader; none as long as that is not found.
std::optional<ConsoleFind::Place> ConsoleFind::next()
{
    const bool isBehindDone = m_part != Part::Behind;
    const bool isAllDone = m_part == Part::Arriving;
    if (!m_from) {
        if (const std::optional<Place> place = placeAtReader())
            return place;
    } else if (m_from->serial >= m_origin) {
        if (const std::optional<Place> place = m_behind.next(*m_from))
            return place;
    } else {
        if (const std::optional<Place> place = m_before.next(*m_from))
            return place;
        if (!isAllDone)
            return {};
        if (m_behind.first())
            return m_behind.first();
    }
    if (const std::optional<Place> place = isBehindDone ? m_before.first() : std::nullopt) {
        m_wrapped = Wrapped::ToStart;
        return place;
    }
    if (!isAllDone || !m_behind.first())
        return {};
    m_wrapped = Wrapped::ToStart;
    return m_behind.first();
}

std::optional<ConsoleFind::Place> ConsoleFind::previous()
{
    const bool isAllDone = m_part == Part::Arriving;
    const Place from = m_from.value_or(Place{m_origin, 0});
    if (from.serial >= m_origin) {
        if (const std::optional<Place> place = m_behind.previous(from))
            return place;
        if (!isAllDone)
            return {};
        if (m_before.last())
            return m_before.last();
    } else if (const std::optional<Place> place = m_before.previous(from)) {
        return place;
    }
    if (!isAllDone)
        return {};
    m_wrapped = Wrapped::ToEnd;
    return m_behind.last() ? m_behind.last() : m_before.last();
}

/// The first match that is not before the place where the reader was.
std::optional<ConsoleFind::Place> ConsoleFind::placeAtReader() const
{
    std::optional<Place> place = m_behind.first();
    while (place && place->serial == m_origin && m_originPosition >= 0) {
        const std::vector<ConsoleDocument::Range> shown = m_console->history().matchesIn(m_origin, m_pattern);
        if (place->number < shown.size() && shown[place->number].start >= m_originPosition)
            break;
        place = m_behind.next(*place);
    }
    return place;
}

/// Goes on from the cursor where that is not any more where the last match left it.
void ConsoleFind::followReader(Direction direction)
{
    const ConsoleHistory& history = m_console->history();
    const QTextCursor cursor = m_view->textCursor();
    if (!m_from || history.placeOf(cursor.position()) == m_seenCursor)
        return;
    const bool isForward = direction == Direction::Forward;
    const int position = isForward ? cursor.selectionEnd() : cursor.selectionStart();
    const std::optional<std::uint64_t> serial = history.entryAt(position);
    if (!serial)
        return;
    std::size_t before = 0; // matches in the entry
    for (const ConsoleDocument::Range& match : history.matchesIn(*serial, m_pattern))
        before += match.start < position ? 1 : 0;
    // next() gives the first match of an entry behind the number that is one below 0.
    m_from = Place{*serial, isForward ? before - 1 : before};
    m_current.reset();
}

void ConsoleFind::go(Direction direction)
{
    followReader(direction);
    m_wrapped = Wrapped::No;
    m_wanted = direction;
    tryToGo();
    Q_EMIT stateChanged();
}

void ConsoleFind::tryToGo()
{
    if (!m_wanted)
        return;
    const std::optional<Place> place = *m_wanted == Direction::Forward ? next() : previous();
    if (place) {
        m_wanted.reset();
        m_current = m_from = place;
        m_console->history().showMatch(place->serial, place->number, m_pattern);
        m_seenCursor = m_console->history().placeOf(m_view->textCursor().position());
    } else if (m_part == Part::Arriving) {
        m_wanted.reset(); // There is none.
    }
}

void ConsoleFind::markScrollBar()
{
    if (m_pattern.isEmpty() || !m_view->isVisible())
        return;
    std::vector<double> places;
    const QTextDocument& document = *m_view->document();
    m_console->history().forEachShown([&](const ConsoleDocument::Shown& entry) {
        const FoundEntries& found = entry.serial < m_origin ? m_before : m_behind;
        if (found.contains(entry.serial))
            places.push_back(static_cast<double>(document.findBlock(entry.range.start).blockNumber())
                / document.blockCount());
        return true;
    });
    m_barMarks->setMarks(std::move(places));
}
