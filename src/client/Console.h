#pragma once

#include "ConsoleDocument.h"
#include "ConsoleSpool.h"
#include "Message.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <memory>

class QAbstractButton;
class QTextEdit;

/// A client's console: what its records write is shown in a text view, and kept completely in a spool.
///
/// Records are shown at once as long as that costs little of the time. In a flood they are collected, and the
/// view follows a few times a second; what nobody could have seen never enters the document. When the flood
/// is over, the document is filled up to its usual size bit by bit.
class Console : public QObject {
    Q_OBJECT

public:
    /// Shows in a view, whose document must be empty, and follows the end as long as the button is checked.
    /// Both live at least as long.
    Console(QTextEdit* view, QAbstractButton* autoScroll, QObject* parent);
    ~Console() override;

    /// Shows a record of a type that writes to the console; ignores others. Backlog tells that
    /// there is no time to show it at once.
    void add(const ui::messages::Message& record, bool backlog);
    /// Ends the console with a line of the window's own.
    void addClosingLine(const QString& text);
    void clear();
    void setFont(const QFont& font);

    /// The entries after which the document is written anew, as it never forgets their formats.
    void setRebuildAfter(std::uint64_t entries) { m_document.setRebuildAfter(entries); }

    /// True while records come faster than they can be shown.
    bool isFlooded() const { return m_flooded; }
    /// True when all is shown that can be; nothing more happens then until the next record.
    bool isComplete() const { return !m_flooded && !m_refresh.isActive(); }
    ConsoleSpool& spool() { return *m_spool; }

Q_SIGNALS:
    /// Something that the user should know, for the status bar.
    void notice(const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class PlaceKeeper;

    void addEntry(std::string entry, bool backlog);
    void addAtOnce(std::string entry);
    void beginTurn();
    bool isAffordable();
    void refresh();
    bool showMore();
    bool hasMoreToShow() const;
    bool isFloodOver();
    int restartWeight() const;
    void trimIfOverfull();
    void recolour();
    void keepPlace();

    bool follows() const;
    void followEnd();
    void autoScrollToggled(bool on);
    void readerScrolled();
    void readerSelected();
    void readerPressedKey();
    void readerHolds(bool holds);
    int trimLimit() const;

    QTextEdit* m_view;
    QAbstractButton* m_autoScroll;
    ConsoleDocument m_document;
    ConsoleSpool* m_spool;
    QTimer m_refresh;
    std::unique_ptr<PlaceKeeper> m_place; ///< While the view lays its text out anew.
    bool m_held = false; ///< The reader holds the mouse button down in the text.
    bool m_flooded = false;
    bool m_backlog = false;
    bool m_turnRunning = false;
    bool m_turnIsAffordable = true;
    int m_atOnce = 0; ///< Records shown at once in this turn of the event loop.
    int m_sinceRefresh = 0;
    qint64 m_allowance; ///< Nanoseconds that may still go into showing records at once.
    QElapsedTimer m_sinceAllowance;
};
