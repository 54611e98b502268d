#pragma once

#include "ConsoleEntry.h"
#include "ConsoleFolding.h"
#include "ConsoleOutline.h"
#include "ConsoleWriter.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QTextDocument;

/// The newest entries of a console, and a text document that shows them.
///
/// A document cannot take a flood: inserting an entry costs time for every frame that there is. So the
/// document holds a bounded number of entries. Entries that arrive faster than they can be written wait in a
/// queue, of which only the newest are kept as well. The first line says how many entries are not shown
/// before the others. The caller decides when to write and how much at once, and keeps the reader's place.
class ConsoleDocument {
public:
    /// Entries that the document holds. Measured: with 2,000, appending one takes 2 to 5 ms, and 50 at once
    /// take 15 ms; both grow with this number.
    static constexpr std::size_t liveEntries = 2000;
    /// Entries beyond these that it holds before the oldest are trimmed.
    static constexpr std::size_t trimStep = 250;

    /// The anchor of the line about earlier entries.
    static constexpr const char* earlierLink = "#earlier";

    /// Writes into an empty document, which must live longer.
    explicit ConsoleDocument(QTextDocument* document);

    /// The colours of what is written from now on.
    void setPalette(const QPalette& palette);

    /// Writes an entry at the end. Only while none waits.
    void append(ConsoleItem item);
    /// Lets an entry wait for appendWaiting() or restart().
    void enqueue(ConsoleItem item);
    /// What entries that come from now on are folded into; lives at least as long.
    void setFolding(const ConsoleFolding* folding) { m_folding = folding; }
    std::size_t waiting() const { return m_waiting.size(); }
    /// True when entries between those that are shown and those that wait were dropped, so that only
    /// restart() can show the others.
    bool hasGap() const { return m_skipped > 0; }
    /// Writes the oldest of the waiting entries at the end, of a given weight at most, but at least one.
    void appendWaiting(int weight);

    /// Clears the document and writes the newest entries, of a given weight at most, but at least one.
    void restart(int weight);
    /// Clears the document and writes what it has shown, with the line that closed it.
    void rewrite();
    /// Takes these entries, which have so many before them and an outline of the text there, for those that
    /// it has kept. They have to be shown with restart() or show().
    void load(std::vector<ConsoleItem> items, std::uint64_t earlier, const ConsoleOutline& before);
    /// Clears the document and writes all entries that it has kept.
    void show() { showFrom(0); }
    /// True when there are older entries that fill() could add.
    bool isFillable() const;
    /// Adds older entries, of a given weight or a little more, before what is shown.
    void fill(int weight);
    /// True when there are older entries that fill() cannot add, as what is shown begins inside of a frame or
    /// right behind a large one.
    bool canRewriteWithOlder() const;
    /// Clears the document and writes what it has shown behind some older entries. Those before them are
    /// never shown again.
    void rewriteWithOlder();

    /// True when the document is so large that it has to be trimmed.
    bool isOverfull() const;
    /// Removes the oldest entries, but none that reaches a limit, which is a position in the document. False
    /// when the document is still overfull.
    bool trim(int limit);
    /// True after so many entries that the formats they left behind in the document are worth a restart.
    bool needsRebuild() const { return m_written > m_rebuildAfter; }
    void setRebuildAfter(std::uint64_t entries) { m_rebuildAfter = entries; }

    /// Ends the document with a line that says why nothing is added any more. Only restart() opens it again.
    void close(const QString& reason);
    bool isClosed() const { return m_closed; }
    /// Leaves the document to another one that writes into it. This one is closed then.
    void release() { m_closed = true; }

    void clear();

    /// Positions in the document.
    struct Range {
        int start;
        int end;
    };
    /// The text of an entry with the given serial number; none where it is not shown.
    std::optional<Range> rangeOf(std::uint64_t serial) const;
    /// An entry that is shown.
    struct Shown {
        std::uint64_t serial;
        std::uint64_t count; ///< Of this and the entries behind it that are folded into it.
        bool isCut; ///< There are more before it, which are not counted.
        std::optional<std::uint64_t> group; ///< The entry that opens the outermost group around it.
        EntryStamp stamp;
        Range range;

        bool opensGroup() const { return group == serial; }
    };
    /// The entry at a position in the document: the first one that is shown for a place before it.
    std::optional<Shown> shownAt(int position) const;
    std::optional<std::uint64_t> serialAt(int position) const;
    /// Calls a function with each entry that is shown, as long as it returns true.
    void forEachShown(const std::function<bool(const Shown&)>& function) const;
    /// True when there are entries before those that are shown.
    bool hasEarlier() const { return earlierEntries() > 0; }
    /// The place where the next entry is written.
    const QTextCursor& writeCursor() const { return m_writer.cursor(); }

private:
    struct Entry {
        std::string bytes;
        std::uint64_t serial = 0;
        GroupPlace place;
        std::uint64_t count = 1; ///< Of this and the entries behind it that are folded into it.
        bool isCut = false; ///< There are more before it, which are not counted.
        EntryStamp stamp;
        int weight = 1;
        int length = 0; ///< Characters in the document.
    };
    using Entries = std::deque<Entry>;

    static Entry entryOf(ConsoleItem item);
    void write(Entry& entry, ConsoleWriter& writer);
    void skipOldest();
    bool fold(Entries& entries, const Entry& entry) const;
    bool takeFromWaiting();
    void takeAllWaiting();
    void forgetOldest();
    void writeFrom(std::size_t first);
    void showFrom(std::size_t first);
    void addHead();
    void removeHead();
    void removeUpTo(int position);
    void joinWithNextBlock(QTextCursor cursor);
    ConsoleOutline outlineAt(std::size_t entry) const;
    std::uint64_t earlierEntries() const;
    std::size_t firstOfNewest(int weight) const;
    std::size_t fillPlace(int weight) const;
    bool hasRoomForOlder() const;
    bool isUnchanged() const;
    int shownLength() const;

    QTextDocument* m_document;
    ConsoleWriter m_writer;
    Entries m_entries; ///< In order without a gap; those from m_first on are in the document.
    std::size_t m_first = 0;
    ConsoleOutline m_outline; ///< Of the text before the first of m_entries.
    std::uint64_t m_forgotten = 0; ///< Number of entries before the first of m_entries.
    Entries m_waiting;
    int m_waitingWeight = 0;
    std::uint64_t m_skipped = 0; ///< Number of entries that were dropped between m_entries and m_waiting.
    std::optional<ConsoleOutline>
        m_waitingOutline; ///< Of the text before m_waiting, where entries were dropped.
    int m_headLength = 0; ///< Characters before the first entry that is shown.
    int m_shownWeight = 0;
    std::uint64_t m_written = 0; ///< Number of entries written since the document was last empty.
    /// Number of entries after which their formats, which a document never gives up, are too many.
    std::uint64_t m_rebuildAfter = 20 * liveEntries;
    const ConsoleFolding* m_folding = nullptr;
    bool m_closed = false;
    QString m_closingReason;
    int m_closingLength = 0; ///< Characters of the line that says so.
};
