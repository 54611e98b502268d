#pragma once

#include "ConsoleDocument.h"
#include "ConsoleFollower.h"
#include "ConsoleHistory.h"
#include "ConsolePace.h"
#include "ConsoleSpool.h"
#include "Message.h"

#include <QObject>

#include <chrono>
#include <cstdint>
#include <optional>

class QAbstractButton;
class QTextEdit;

/// A client's console: its records are shown in a text view, and kept completely in a spool.
///
/// Three others do the work: ConsolePace decides when to write, ConsoleDocument writes, and ConsoleFollower
/// takes care of the reader. Each time something is to be written, the console chooses the step that comes
/// next.
class Console : public QObject {
    Q_OBJECT

public:
    /// Shows in a view, whose document must be empty, and follows the end as long as the button is checked.
    /// Both live at least as long.
    Console(QTextEdit* view, QAbstractButton* autoScroll, QObject* parent);

    /// When an entry arrived, in milliseconds since the epoch; now where nothing is said.
    using Time = std::optional<std::int64_t>;
    std::int64_t timeAt(std::chrono::steady_clock::time_point time) const;

    /// Shows a record of a type that writes to the console; ignores others.
    void add(const ui::messages::Message& record, ConsolePace::Reading reading, Time time = {});
    /// Ends the console with a line of the window's own.
    void addClosingLine(const QString& text, Time time = {});
    void clear();
    void setFont(const QFont& font);
    /// Whether equal entries that follow each other are shown as one, and groups as their first lines. All of
    /// them are kept.
    void setFoldsRepeats(bool folds);
    void setFoldsGroups(bool folds);
    /// Folds or unfolds the group that an entry opens.
    void toggleGroup(std::uint64_t serial);
    /// Folds or unfolds the group that the cursor is in or at, and puts the cursor at its start. False where
    /// there is none.
    bool toggleGroupAtCursor();

    /// The number of entries after which the document is written anew, as it never gives up their formats.
    void setRebuildAfter(std::uint64_t entries) { m_document.setRebuildAfter(entries); }

    /// True while records come faster than they can be shown.
    bool isFlooded() const { return m_pace.isFlooded(); }
    /// True when all is shown that can be; nothing more happens then until the next record.
    bool isComplete() const { return !m_pace.isFlooded() && !m_pace.isRefreshPending(); }
    ConsoleSpool& spool() { return *m_spool; }

    ConsoleHistory& history() { return m_history; }

    /// The number of entries that the console ever had, which is the serial number of the next one.
    std::uint64_t entryCount() const { return m_spool->endSerial(); }
    /// Goes to an entry, wherever it is, and selects it. False when "Clear" has removed it, or there was none
    /// of this serial number.
    bool showEntry(std::uint64_t serial) { return m_history.showEntry(serial); }
    /// The entry at the cursor, if there is one.
    std::optional<std::uint64_t> currentEntry() const;

Q_SIGNALS:
    /// A text that the status bar is to show.
    void statusMessage(const QString& text);
    /// Whether there may be groups of which only the first line is shown.
    void groupFoldingChanged(bool mayBeFolded);
    /// The reader wants a font that is larger by some points, or smaller.
    void zoomWanted(int points);

private:
    void addEntry(std::string entry, std::uint32_t frame, ConsolePace::Reading reading, Time time);
    void writeAtOnce(ConsoleItem item);
    void refresh();
    bool showMore();
    void showWaiting();
    bool hasMoreToShow() const;
    int restartWeight() const;
    void trimIfOverfull();
    void closeDocument();
    void foldAnew();
    void groupsChanged();
    void restart();
    void recolour();
    void showEnd();
    void showEndIfFollowing();

    QTextEdit* m_view;
    ConsoleFollower m_follower;
    ConsoleDocument m_document;
    ConsolePace m_pace;
    ConsoleSpool* m_spool;
    ConsoleHistory m_history;
    std::chrono::steady_clock::time_point m_start;
    qint64 m_startTime; ///< The same in milliseconds since the epoch.
    ConsoleFolding m_folding;
};
