#pragma once

#include "ConsoleDocument.h"
#include "ConsoleFollower.h"
#include "ConsolePace.h"
#include "ConsoleSpool.h"
#include "Message.h"

#include <QObject>

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

    /// Shows a record of a type that writes to the console; ignores others.
    void add(const ui::messages::Message& record, ConsolePace::Reading reading);
    /// Ends the console with a line of the window's own.
    void addClosingLine(const QString& text);
    void clear();
    void setFont(const QFont& font);

    /// The number of entries after which the document is written anew, as it never gives up their formats.
    void setRebuildAfter(std::uint64_t entries) { m_document.setRebuildAfter(entries); }

    /// True while records come faster than they can be shown.
    bool isFlooded() const { return m_pace.isFlooded(); }
    /// True when all is shown that can be; nothing more happens then until the next record.
    bool isComplete() const { return !m_pace.isFlooded() && !m_pace.isRefreshPending(); }
    ConsoleSpool& spool() { return *m_spool; }

Q_SIGNALS:
    /// A text that the status bar is to show.
    void statusMessage(const QString& text);
    /// The reader wants a font that is larger by some points, or smaller.
    void zoomWanted(int points);

private:
    void addEntry(std::string entry, ConsolePace::Reading reading);
    void writeAtOnce(std::string entry);
    void refresh();
    bool showMore();
    void showWaiting();
    bool hasMoreToShow() const;
    int restartWeight() const;
    void trimIfOverfull();
    void closeDocument();
    void restart();
    void recolour();
    void showEnd();
    void showEndIfFollowing();

    QTextEdit* m_view;
    ConsoleFollower m_follower;
    ConsoleDocument m_document;
    ConsolePace m_pace;
    ConsoleSpool* m_spool;
};
