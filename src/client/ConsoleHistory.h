#pragma once

#include "ConsoleDocument.h"
#include "FindPattern.h"

#include <QObject>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class ConsoleFollower;
class ConsoleSpool;
class QKeyEvent;
class QMouseEvent;
class QTextCursor;
class QTextEdit;

/// Brings entries of the spool back to a reader of the console, wherever they are: when the reader scrolls
/// beyond what is shown, clicks on the line that counts the earlier entries, or asks for an entry.
///
/// It shows a window of a few hundred entries around the reader's place, and writes that anew when the reader
/// comes to its end. Where the window would reach the newest entries, the live document shows them instead.
class ConsoleHistory : public QObject {
    Q_OBJECT

public:
    /// All of these live at least as long.
    ConsoleHistory(
        QTextEdit* view, ConsoleSpool& spool, ConsoleFollower& follower, ConsoleDocument& liveDocument);

    /// True while a window of earlier entries is shown, so that the live document cannot be written.
    bool isShown() const { return m_isShown; }
    /// Another writes into the text document from now on.
    void leave() { m_isShown = false; }
    void rewrite(const QPalette& palette);
    /// How entries are folded; lives at least as long.
    void setFolding(const ConsoleFolding* folding) { m_folding = folding; }
    /// Has the live document take its entries anew from the spool.
    void reloadLive();
    /// Takes all entries anew from the spool, and keeps the reader's place.
    void reload();

    /// Shows an entry, and selects its text. False when the console has none of this serial number (any
    /// more).
    bool showEntry(std::uint64_t serial);
    /// Puts the cursor at the start of an entry that is in the document, and makes it visible.
    void putCursorAt(std::uint64_t serial);
    /// The text of an entry in the view's document, where it is there.
    std::optional<ConsoleDocument::Range> rangeOf(std::uint64_t serial) const;
    /// A position in the text of an entry.
    struct Place {
        std::uint64_t serial = 0;
        int offset = 0;

        bool operator==(const Place& other) const = default;
    };
    std::optional<Place> placeOf(int position) const;
    /// The entry at the top of the view, and of the line at a position in its document.
    std::optional<std::uint64_t> topEntry() const;
    std::optional<std::uint64_t> entryAt(int position) const;
    /// The entry that opens the outermost group around that line.
    std::optional<std::uint64_t> groupAt(int position) const;
    /// Calls a function with each entry that is in the document, as long as it returns true.
    void forEachShown(const std::function<bool(const ConsoleDocument::Shown&)>& function) const;
    /// Calls a function with each entry whose text is in the view, and where that begins in the viewport.
    void forEachInView(const std::function<void(const ConsoleDocument::Shown&, int)>& function) const;
    /// What a pattern matches in the text of an entry, as far as it is in the document.
    std::vector<ConsoleDocument::Range> matchesIn(std::uint64_t serial, const FindPattern& pattern) const;
    /// Shows an entry, and selects one of these matches.
    void showMatch(std::uint64_t serial, std::size_t number, const FindPattern& pattern);

Q_SIGNALS:
    /// The live document has been written anew, and can be filled up.
    void liveShown();
    /// The reader asks for the end of the console.
    void endWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Selection {
        std::optional<Place> anchor;
        std::optional<Place> position;
    };

    const ConsoleDocument& document() const { return m_isShown ? m_window : m_live; }
    bool bringEntry(std::uint64_t serial);
    void extend();
    bool isNearEnd() const;
    enum class Live { AsItIs, Reloaded };
    void showAround(std::uint64_t serial, int y, Live live = Live::AsItIs);
    std::uint64_t earlierThan(const ConsoleItem& item) const;
    std::vector<ConsoleItem> itemsAround(std::uint64_t serial, int weight, bool& reachesEnd) const;
    std::vector<ConsoleItem> itemsFrom(
        std::uint64_t first, std::uint64_t serial, int weight, bool& reachesEnd) const;
    int halfWeight() const;
    std::optional<int> positionOf(const std::optional<Place>& place) const;
    int lineStart(int position) const;
    int textStart(const ConsoleDocument::Range& range) const;
    void selectEntry(std::uint64_t serial);
    void select(int start, int end);
    bool keyPressed(const QKeyEvent& event);
    void followLink(const QMouseEvent& event);

    QTextEdit* m_view;
    ConsoleSpool& m_spool;
    ConsoleFollower& m_follower;
    ConsoleDocument& m_live;
    ConsoleDocument m_window;
    const ConsoleFolding* m_folding = nullptr;
    bool m_isShown = false;
};
