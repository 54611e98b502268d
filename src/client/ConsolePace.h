#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Decides when a console writes to its document.
///
/// Entries are written at once as long as that takes little of the time. When it takes more, or when more
/// records have arrived than could be read, the console is flooded: its entries wait, and refreshes write a
/// few times a second. When the flood is over, further refreshes fill the document up.
class ConsolePace : public QObject {
    Q_OBJECT

public:
    /// How far the connection that an entry came from has been read.
    enum class Reading {
        NoConnection, ///< The entry is the window's own.
        CaughtUp,
        Behind, ///< More has arrived than could be read in the time for it.
    };

    ConsolePace();

    /// Takes an entry that has arrived into account. True when it may be written at once; otherwise it has to
    /// wait for a refresh, which comes by itself unless the document is closed.
    bool mayWriteAtOnce(Reading reading, bool isDocumentClosed);
    /// The time that it took to write an entry at once.
    void addWritingTime(qint64 nanoseconds);

    /// Asks for a refresh as soon as possible, or in the pace of filling up.
    void refreshNow();
    void fillUp();
    /// To be called when a refresh is due. False when it has to be put off, since others refresh in this
    /// iteration of the event loop, or nobody would see it.
    bool beginRefresh(bool isVisible);
    /// Ends a refresh that has begun. Entries may still wait, and the document may still be filled up.
    void endRefresh(bool areEntriesWaiting, bool isFillable);

    /// True while records come faster than they can be shown.
    bool isFlooded() const { return m_flooded; }
    bool isRefreshPending() const { return m_refresh.isActive(); }

Q_SIGNALS:
    void refreshDue();

private:
    void beginIteration();
    bool isAffordable();
    bool isFloodEnding();

    QTimer m_refresh;
    bool m_flooded = false;
    bool m_hurried = false; ///< The last entry since a refresh had to make room for reading or for others.
    quint64 m_iteration = 0; ///< Of the event loop, in which an entry arrived last.
    bool m_isIterationAffordable = true;
    int m_atOnce = 0; ///< Number of entries written at once in that iteration.
    qint64 m_writingTime = 0; ///< Nanoseconds that it took.
    qint64 m_writingInRow = 0; ///< The same in those before, since it took less than half of the time.
    int m_sinceRefresh = 0; ///< Number of entries that have arrived to wait.
    qint64 m_allowance; ///< Nanoseconds that may still go into writing at once.
    QElapsedTimer m_sinceAllowance;
    bool m_refreshIsVisible = false;
    bool m_floodEnds = false; ///< With the refresh that has begun.
    QElapsedTimer m_refreshTime;
};
