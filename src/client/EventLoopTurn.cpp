#include "EventLoopTurn.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace event_loop_turn {

namespace {

/// Longest time that all clients together read in a turn.
constexpr qint64 readingLimit = 10'000'000;

/// Time that clients take for writing at once before others have to wait.
constexpr qint64 drawingLimit = 5'000'000;

struct Turn {
    bool running = false;
    quint64 number = 1;
    int readers = 0;
    int formerReaders = 1; ///< Of the last turns, of which the more recent count more.
    const void* drawer = nullptr; ///< The first that wrote at once.
    qint64 drawing = 0;
    bool drawn = false;
};

Turn& current()
{
    static Turn turn;
    if (!turn.running && QCoreApplication::instance()) {
        turn.running = true;
        // What is posted now is delivered when the next turn begins.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [] {
                turn = {false, turn.number + 1, 0, std::max({turn.readers, turn.formerReaders * 7 / 8, 1}),
                    nullptr, 0, false};
            },
            Qt::QueuedConnection);
    }
    return turn;
}

} // namespace

qint64 readingTime(quint64& lastTurn)
{
    Turn& turn = current();
    if (std::exchange(lastTurn, turn.number) != turn.number)
        ++turn.readers;
    // Those that read first know only from the last turn how many will follow.
    const int readers = std::max(turn.readers, turn.formerReaders);
    // One of many may come twice in a turn: for what it has left behind, and for what is new.
    return readingLimit / (readers > 1 ? 2 * readers : 1);
}

bool mayDrawAtOnce(const void* client)
{
    const Turn& turn = current();
    return !turn.drawer || turn.drawer == client || turn.drawing < drawingLimit;
}

void addDrawing(const void* client, qint64 nanoseconds)
{
    Turn& turn = current();
    if (!turn.drawer)
        turn.drawer = client;
    turn.drawing += nanoseconds;
}

bool claimDrawing()
{
    return !std::exchange(current().drawn, true);
}

} // namespace event_loop_turn
