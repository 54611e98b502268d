#include "ConsoleDocument.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTextDocument>

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

/// Weight of all that is shown; entries of many lines count as many.
constexpr int liveWeight = 5 * static_cast<int>(ConsoleDocument::liveEntries);

/// Weight of what is written in one go where it cannot be written bit by bit. Measured: 15 to 50 ms.
constexpr int mostAtOnce = 1300;

QString earlierEntriesText(std::uint64_t count)
{
    return QCoreApplication::translate(
        "Console", "%1 earlier entries are no longer shown. Scroll up or click here to see them.")
        .arg(QLocale().toString(static_cast<qulonglong>(count)));
}

/// Collects the changes of a document while it lives.
class Edit {
public:
    explicit Edit(QTextDocument* document)
        : m_cursor(document)
    {
        m_cursor.beginEditBlock();
    }
    ~Edit() { m_cursor.endEditBlock(); }
    Edit(const Edit&) = delete;
    Edit& operator=(const Edit&) = delete;

private:
    QTextCursor m_cursor;
};

int lengthOf(const QTextDocument& document)
{
    // A document always ends with a separator that cannot be removed.
    return document.characterCount() - 1;
}

} // namespace

ConsoleDocument::ConsoleDocument(QTextDocument* document)
    : m_document(document)
    , m_writer(QTextCursor(document), QPalette())
{
}

void ConsoleDocument::setPalette(const QPalette& palette)
{
    m_writer.setPalette(palette);
}

void ConsoleDocument::write(Entry& entry, ConsoleWriter& writer)
{
    const int before = lengthOf(*m_document);
    console_entry::write(entry.bytes, writer);
    entry.length = lengthOf(*m_document) - before;
    m_shownWeight += entry.weight;
    ++m_written;
}

ConsoleDocument::Entry ConsoleDocument::entryOf(ConsoleItem item)
{
    const int weight = console_entry::weight(item.bytes);
    return {std::move(item.bytes), item.serial, item.place, item.count, item.isCut, item.stamp, weight, 0};
}

void ConsoleDocument::append(ConsoleItem item)
{
    Entry entry = entryOf(std::move(item));
    if (fold(m_entries, entry))
        return;
    m_entries.push_back(std::move(entry));
    const Edit edit(m_document);
    write(m_entries.back(), m_writer);
}

/// Folds an entry into the last of others, if it belongs there.
bool ConsoleDocument::fold(Entries& entries, const Entry& entry) const
{
    if (!m_folding || entries.empty() || !m_folding->folds(entries.back().bytes, entry.bytes, entry.place))
        return false;
    entries.back().count += entry.count;
    return true;
}

void ConsoleDocument::enqueue(ConsoleItem item)
{
    Entry entry = entryOf(std::move(item));
    if (fold(m_waiting, entry))
        return;
    m_waiting.push_back(std::move(entry));
    m_waitingWeight += m_waiting.back().weight;
    // What could never be shown only takes memory.
    while (m_waiting.size() > liveEntries || (m_waitingWeight > liveWeight && m_waiting.size() > 1))
        skipOldest();
}

void ConsoleDocument::skipOldest()
{
    if (!m_waitingOutline)
        m_waitingOutline = outlineAt(m_entries.size());
    console_entry::follow(m_waiting.front().bytes, *m_waitingOutline);
    m_waitingWeight -= m_waiting.front().weight;
    m_skipped += m_waiting.front().count;
    m_waiting.pop_front();
}

void ConsoleDocument::appendWaiting(int weight)
{
    const Edit edit(m_document);
    do {
        weight -= m_waiting.front().weight;
        if (takeFromWaiting())
            write(m_entries.back(), m_writer);
    } while (weight > 0 && !m_waiting.empty());
}

/// False when the entry was folded into the one before it.
bool ConsoleDocument::takeFromWaiting()
{
    Entry entry = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_waitingWeight -= entry.weight;
    if (fold(m_entries, entry))
        return false;
    m_entries.push_back(std::move(entry));
    return true;
}

void ConsoleDocument::takeAllWaiting()
{
    if (m_skipped > 0) {
        for (const Entry& entry : m_entries)
            m_forgotten += entry.count;
        m_forgotten += m_skipped;
        m_outline = *m_waitingOutline;
        m_entries.clear();
    }
    m_skipped = 0;
    m_waitingOutline.reset();
    while (!m_waiting.empty())
        takeFromWaiting();
    while (m_entries.size() > liveEntries)
        forgetOldest();
}

void ConsoleDocument::forgetOldest()
{
    console_entry::follow(m_entries.front().bytes, m_outline);
    m_forgotten += m_entries.front().count;
    m_entries.pop_front();
}

ConsoleOutline ConsoleDocument::outlineAt(std::size_t entry) const
{
    ConsoleOutline outline = m_outline;
    for (std::size_t i = 0; i < entry; ++i)
        console_entry::follow(m_entries[i].bytes, outline);
    return outline;
}

/// Number of entries before those that are shown.
std::uint64_t ConsoleDocument::earlierEntries() const
{
    return std::accumulate(m_entries.begin(), m_entries.begin() + static_cast<std::ptrdiff_t>(m_first),
        m_forgotten, [](std::uint64_t sum, const Entry& entry) { return sum + entry.count; });
}

std::size_t ConsoleDocument::firstOfNewest(int weight) const
{
    std::size_t first = m_entries.size();
    while (first > 0 && (first == m_entries.size() || weight >= m_entries[first - 1].weight))
        weight -= m_entries[--first].weight;
    return first;
}

void ConsoleDocument::restart(int weight)
{
    takeAllWaiting();
    showFrom(firstOfNewest(weight));
}

void ConsoleDocument::load(
    std::vector<ConsoleItem> items, std::uint64_t earlier, const ConsoleOutline& before)
{
    m_waiting.clear();
    m_waitingWeight = 0;
    m_waitingOutline.reset();
    m_skipped = 0;
    m_entries.clear();
    for (ConsoleItem& item : items)
        m_entries.push_back(entryOf(std::move(item)));
    m_forgotten = earlier;
    m_outline = before;
    m_first = 0;
}

void ConsoleDocument::rewrite()
{
    const bool wasClosed = m_closed;
    showFrom(m_first);
    if (wasClosed)
        close(m_closingReason);
}

void ConsoleDocument::showFrom(std::size_t first)
{
    m_document->clear();
    m_closed = false;
    m_written = 0;
    m_shownWeight = 0;
    m_headLength = 0;
    m_closingLength = 0;
    m_first = first;
    writeFrom(first);
}

void ConsoleDocument::writeFrom(std::size_t first)
{
    const Edit edit(m_document);
    addHead();
    const ConsoleOutline outline = outlineAt(first);
    if (outline.isInFrame()) {
        // What is inside of frames is shown inside of them, with the headings that opened them.
        m_writer.moveToEnd(ConsoleOutline());
        for (const std::string& heading : outline.openFrames())
            console_entry::write(heading, m_writer);
        m_writer.setLastWasHeading(outline.lastWasHeading());
    } else {
        m_writer.moveToEnd(outline);
    }
    m_headLength = lengthOf(*m_document);
    for (std::size_t i = first; i < m_entries.size(); ++i)
        write(m_entries[i], m_writer);
}

/// Writes the line about earlier entries at the start. It ends so that what follows stands as it would behind
/// the entry before it.
void ConsoleDocument::addHead()
{
    const std::uint64_t earlier = earlierEntries();
    if (earlier == 0)
        return;
    const ConsoleOutline outline = outlineAt(m_first);
    const bool isOwnLine = outline.isLineEmpty() && !outline.isInFrame();
    QTextCursor cursor(m_document);
    if (isOwnLine) {
        const QTextBlockFormat format = cursor.blockFormat();
        cursor.insertBlock(format, cursor.blockCharFormat());
        cursor.movePosition(QTextCursor::Start);
    }
    cursor.setBlockFormat(QTextBlockFormat());
    cursor.setBlockCharFormat(QTextCharFormat());
    const int before = lengthOf(*m_document);
    QTextCharFormat link = ConsoleWriter::ownLineFormat();
    link.setAnchor(true);
    link.setAnchorHref(QLatin1String(earlierLink));
    link.setFontUnderline(true);
    cursor.insertText(earlierEntriesText(earlier), link);
    m_headLength = lengthOf(*m_document) - before + (isOwnLine ? 1 : 0);
}

void ConsoleDocument::removeHead()
{
    removeUpTo(m_headLength);
    m_headLength = 0;
}

void ConsoleDocument::removeUpTo(int position)
{
    QTextCursor cursor(m_document);
    cursor.setPosition(position);
    const QTextBlockFormat format = cursor.blockFormat();
    const QTextCharFormat characters = cursor.blockCharFormat();
    cursor.movePosition(QTextCursor::Start, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    // The block that is left may have taken the looks of one that went.
    cursor.setBlockFormat(format);
    cursor.setBlockCharFormat(characters);
}

bool ConsoleDocument::hasRoomForOlder() const
{
    return m_first > 0 && !m_closed && m_entries.size() - m_first < liveEntries && m_shownWeight < liveWeight
        && isUnchanged();
}

/// From where on entries of a given weight can be put before what is shown: outside of any frame, for inside
/// of one nothing can be put before what it holds. What is shown first where there is no such place near
/// enough.
std::size_t ConsoleDocument::fillPlace(int weight) const
{
    std::vector<std::size_t> places;
    ConsoleOutline outline = m_outline;
    for (std::size_t i = 0; i < m_first; ++i) {
        if (!outline.isInFrame())
            places.push_back(i);
        console_entry::follow(m_entries[i].bytes, outline);
    }
    std::size_t first = m_first;
    if (outline.isInFrame())
        return first;
    int sum = 0;
    std::size_t at = m_first;
    for (auto place = places.rbegin(); place != places.rend() && sum < weight; ++place) {
        while (at > *place)
            sum += m_entries[--at].weight;
        if (sum > mostAtOnce && at + 1 < m_first)
            break;
        first = at;
    }
    return first;
}

bool ConsoleDocument::isFillable() const
{
    return hasRoomForOlder() && fillPlace(1) < m_first;
}

bool ConsoleDocument::canRewriteWithOlder() const
{
    return hasRoomForOlder() && firstOfNewest(mostAtOnce) < m_first && fillPlace(1) == m_first;
}

void ConsoleDocument::rewriteWithOlder()
{
    m_first = firstOfNewest(mostAtOnce);
    for (; m_first > 0; --m_first)
        forgetOldest();
    showFrom(0);
}

void ConsoleDocument::fill(int weight)
{
    const std::size_t first = fillPlace(weight);
    if (first == m_first)
        return;
    const Edit edit(m_document);
    removeHead();
    const bool join = outlineAt(m_first).isLineEmpty();
    QTextCursor cursor(m_document);
    if (join) {
        cursor.insertBlock(cursor.blockFormat(), cursor.blockCharFormat());
        cursor.movePosition(QTextCursor::Start);
        cursor.setBlockFormat(QTextBlockFormat());
        cursor.setBlockCharFormat(QTextCharFormat());
    }
    const std::size_t formerFirst = std::exchange(m_first, first);
    addHead();
    cursor.setPosition(m_headLength);
    ConsoleWriter writer = m_writer.at(cursor, outlineAt(first));
    for (std::size_t i = first; i < formerFirst; ++i)
        write(m_entries[i], writer);
    if (join)
        joinWithNextBlock(writer.cursor());
}

/// Takes an empty block away, so that the next one is in its place.
void ConsoleDocument::joinWithNextBlock(QTextCursor cursor)
{
    cursor.movePosition(QTextCursor::NextBlock);
    const QTextBlockFormat format = cursor.blockFormat();
    const QTextCharFormat characters = cursor.blockCharFormat();
    cursor.deletePreviousChar();
    cursor.setBlockFormat(format);
    cursor.setBlockCharFormat(characters);
}

bool ConsoleDocument::isOverfull() const
{
    return m_entries.size() - m_first > liveEntries + trimStep || m_shownWeight > liveWeight + liveWeight / 4;
}

int ConsoleDocument::shownLength() const
{
    return std::accumulate(m_entries.begin() + static_cast<std::ptrdiff_t>(m_first), m_entries.end(),
        m_headLength, [](int sum, const Entry& entry) { return sum + entry.length; });
}

/// False when somebody else has changed the document, where the lengths of the entries no longer tell their
/// places.
bool ConsoleDocument::isUnchanged() const
{
    return shownLength() + m_closingLength == lengthOf(*m_document);
}

bool ConsoleDocument::trim(int limit)
{
    if (!isUnchanged() || outlineAt(m_first).isInFrame())
        return false;
    ConsoleOutline outline = outlineAt(m_first);
    int position = m_headLength;
    int weight = m_shownWeight;
    std::size_t keptFrom = m_first;
    int keptPosition = position;
    int keptWeight = weight;
    for (std::size_t i = m_first;
         i < m_entries.size() && (m_entries.size() - i > liveEntries || weight > liveWeight)
         && position + m_entries[i].length < limit;
         ++i) {
        console_entry::follow(m_entries[i].bytes, outline);
        position += m_entries[i].length;
        weight -= m_entries[i].weight;
        if (!outline.isInFrame()) {
            keptFrom = i + 1;
            keptPosition = position;
            keptWeight = weight;
        }
    }
    if (keptFrom == m_first)
        return false;
    const Edit edit(m_document);
    removeUpTo(keptPosition);
    m_shownWeight = keptWeight;
    m_first = keptFrom;
    m_headLength = 0;
    for (; m_first > 0; --m_first)
        forgetOldest();
    addHead();
    return !isOverfull();
}

void ConsoleDocument::close(const QString& reason)
{
    const Edit edit(m_document);
    const int before = lengthOf(*m_document);
    m_writer.closingLine(reason);
    m_closingLength += lengthOf(*m_document) - before;
    m_closed = true;
    m_closingReason = reason;
}

void ConsoleDocument::clear()
{
    takeAllWaiting();
    m_outline = outlineAt(m_entries.size());
    m_outline.removeText();
    m_entries.clear();
    m_forgotten = 0;
    showFrom(0);
}

void ConsoleDocument::forEachShown(const std::function<bool(const Shown&)>& function) const
{
    if (!isUnchanged())
        return;
    int position = m_headLength;
    for (std::size_t i = m_first; i < m_entries.size(); ++i) {
        const Entry& entry = m_entries[i];
        if (!function({entry.serial, entry.count, entry.isCut,
                console_entry::groupOf(entry.bytes, entry.serial, entry.place), entry.stamp,
                {position, position + entry.length}}))
            break;
        position += entry.length;
    }
}

std::optional<ConsoleDocument::Range> ConsoleDocument::rangeOf(std::uint64_t serial) const
{
    if (m_first == m_entries.size() || serial < m_entries[m_first].serial)
        return {};
    std::optional<Range> range;
    forEachShown([&](const Shown& entry) {
        if (serial < entry.serial + entry.count)
            range = entry.range;
        return !range;
    });
    return range;
}

std::optional<ConsoleDocument::Shown> ConsoleDocument::shownAt(int position) const
{
    std::optional<Shown> at;
    forEachShown([&](const Shown& entry) {
        if (!at || entry.range.start <= position)
            at = entry;
        return entry.range.start <= position;
    });
    return at;
}

std::optional<std::uint64_t> ConsoleDocument::serialAt(int position) const
{
    const std::optional<Shown> shown = shownAt(position);
    return shown ? std::optional(shown->serial) : std::nullopt;
}
