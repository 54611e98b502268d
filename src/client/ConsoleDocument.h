#pragma once

#include "ConsoleEntry.h"
#include "ConsoleWriter.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

class QTextDocument;

/// The newest entries of a console, and a text document that shows them.
///
/// A document cannot take a flood: an entry costs time for every frame that there is. So it holds a bounded
/// number of entries, and what comes too fast for it waits here, of which again only the newest are kept. A
/// first line says how many entries stand before those that are shown. Whoever calls decides when to write,
/// how much at once, and takes care of what the reader sees.
class ConsoleDocument {
public:
    /// Entries that the document holds. Measured: with 2,000, appending one takes 2 to 5 ms, and 50 at once
    /// take 15 ms; both grow with this number.
    static constexpr std::size_t liveEntries = 2000;
    /// Entries beyond these that it holds before the oldest are trimmed.
    static constexpr std::size_t trimStep = 250;

    /// Writes into an empty document, which must live longer.
    explicit ConsoleDocument(QTextDocument* document);

    /// The colours of what is written from now on.
    void setPalette(const QPalette& palette);

    /// Writes an entry at the end. Only while none waits.
    void append(std::string entry);
    /// Keeps an entry for later.
    void keep(std::string entry);
    std::size_t waiting() const { return m_waiting.size(); }
    /// True when entries between what is shown and what waits are gone, so that only restart() goes on.
    bool hasGap() const { return m_skipped > 0; }
    /// Writes the oldest entries that wait at the end, of a given weight at most, but at least one.
    void appendWaiting(int weight);

    /// Writes anew the newest entries of all, of a given weight at most, but at least one.
    void restart(int weight);
    /// Writes anew what is shown, and the line that ended it.
    void rewrite();
    /// True when there are older entries that fill() could add.
    bool isFillable() const;
    /// Adds older entries, of a given weight or a little more, before what is shown.
    void fill(int weight);
    /// True when there are older entries that only deepen() could add, as what is shown begins inside of a
    /// frame or right behind a large one.
    bool isDeepenable() const;
    /// Writes anew what is shown with some older entries. Those before them are shown no more.
    void deepen();

    /// True when the document is so large that it has to be trimmed.
    bool isOverfull() const;
    /// Takes the oldest entries out, but none from a position of the document on. False when that was not
    /// enough.
    bool trim(int position);
    /// True after so many entries that what they left behind in the document is worth a restart.
    bool isWorn() const { return m_written > m_wornAfter; }
    void setWornAfter(std::uint64_t entries) { m_wornAfter = entries; }

    /// Ends the document with a line that says why nothing is added any more; only restart() goes on.
    void close(const QString& reason);
    bool isClosed() const { return m_closed; }

    void clear();
    /// The place where the next entry goes.
    const QTextCursor& end() const { return m_writer.cursor(); }

private:
    struct Entry {
        std::string bytes;
        int weight = 1;
        int length = 0; ///< Characters in the document.
    };
    using Entries = std::deque<Entry>;

    void write(Entry& entry, ConsoleWriter& writer);
    void skipOldest();
    void takeFromWaiting();
    void takeAllWaiting();
    void forgetOldest();
    void writeFrom(std::size_t first);
    void showFrom(std::size_t first);
    void addHead();
    void removeHead();
    void removeUpTo(int position);
    void joinWithNextBlock(QTextCursor cursor);
    console_entry::Outline outlineAt(std::size_t entry) const;
    std::size_t firstOfNewest(int weight) const;
    std::size_t fillPlace(int weight) const;
    bool hasRoomForOlder() const;
    bool isInStep() const;
    int shownLength() const;

    QTextDocument* m_document;
    ConsoleWriter m_writer;
    Entries m_entries; ///< In order without a gap; those from m_first on are in the document.
    std::size_t m_first = 0;
    console_entry::Outline m_outline; ///< Where the first of m_entries begins.
    std::uint64_t m_forgotten = 0; ///< Entries before the first of m_entries.
    Entries m_waiting;
    int m_waitingWeight = 0;
    std::uint64_t m_skipped = 0; ///< Entries between m_entries and m_waiting.
    std::optional<console_entry::Outline>
        m_waitingOutline; ///< Where the first that waits begins, after a gap.
    int m_headLength = 0;
    int m_shownWeight = 0;
    std::uint64_t m_written = 0; ///< Entries written since the document was last empty.
    /// Entries that a document takes before their formats, which it never forgets, are too many.
    std::uint64_t m_wornAfter = 20 * liveEntries;
    bool m_closed = false;
    QString m_closingReason;
};
