#pragma once

#include "ConsoleHistory.h"
#include "ConsoleSpool.h"
#include "Findable.h"
#include "FoundEntries.h"

#include <QTimer>

#include <memory>
#include <optional>

class Console;
class QTextEdit;
class ScrollBarMarks;
class TextFindMarks;

/// Finds text in a whole console, also in what is no longer live, and in what arrives meanwhile.
///
/// It reads the spool in steps of the event loop, from the reader's place to the end and then from the start
/// to that place, so that the next match is found first wherever it is.
class ConsoleFind : public Findable {
    Q_OBJECT

public:
    /// Both live at least as long.
    ConsoleFind(Console* console, QTextEdit* view);
    ~ConsoleFind() override;

    void start(const FindPattern& pattern) override;
    void stop() override;
    void go(Direction direction) override;
    State state() const override;
    QString selectedText() const override;
    QWidget* view() const override;

private:
    using Place = FoundEntries::Place;
    enum class Part { Behind, Before, Arriving };

    void step();
    bool search();
    void beginNextPart();
    void searchEntry(std::string_view entry);
    bool isFull() const;
    std::optional<Place> next();
    std::optional<Place> previous();
    std::optional<Place> placeAtReader() const;
    void followReader(Direction direction);
    void tryToGo();
    void markScrollBar();

    Console* m_console;
    QTextEdit* m_view;
    TextFindMarks* m_marks;
    ScrollBarMarks* m_barMarks;
    QTimer m_timer;
    QTimer m_barTimer;
    FindPattern m_pattern;
    std::string m_lines;

    Part m_part = Part::Behind;
    std::uint64_t m_firstSerial = 0; ///< Of the console when the search began.
    std::uint64_t m_origin = 0; ///< The entry at the reader's place when the search began.
    int m_originPosition = 0; ///< In the document.
    std::uint64_t m_searchedUpTo = 0; ///< Serial number behind the last entry of what is behind the origin.
    std::unique_ptr<ConsoleSpool::Reader> m_reader;
    FoundEntries m_behind; ///< From the origin on.
    FoundEntries m_before;
    std::optional<Place> m_current;
    std::optional<Place> m_from; ///< Where it goes on: the current match, or where the reader is since.
    std::optional<ConsoleHistory::Place> m_seenCursor; ///< Of the view, when m_current was shown.
    std::optional<Direction> m_wanted; ///< Where to go as soon as something is found there.
    Wrapped m_wrapped = Wrapped::No;
    bool m_isLimited = false;
};
