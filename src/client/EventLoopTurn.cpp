#include "EventLoopTurn.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace eventLoopTurn {

namespace {

/// Longest time that all clients together read in a turn.
constexpr qint64 readingLimit = 10'000'000;

struct Turn {
    bool running = false;
    quint64 number = 1;
    int readers = 0;
    int formerReaders = 1;
    bool drawn = false;
};

Turn& current()
{
    static Turn turn;
    if (!turn.running && QCoreApplication::instance() != nullptr) {
        turn.running = true;
        // What is posted now is delivered when the next turn begins.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [] {
                turn = {false, turn.number + 1, 0, std::max(turn.readers, 1), false};
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
    return readingLimit / std::max(turn.readers, turn.formerReaders);
}

bool claimDrawing()
{
    return !std::exchange(current().drawn, true);
}

} // namespace eventLoopTurn
