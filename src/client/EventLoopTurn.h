#pragma once

#include <QtGlobal>

/// What the clients have taken from the current turn of the event loop. They share it, so that a window with
/// many of them answers as fast as one with a few. For the window's thread only.
namespace event_loop_turn {

/// Nanoseconds that a client may read for in one go: its share of about ten milliseconds. The client keeps
/// the number of the turn in which it last asked, at first 0.
qint64 readingTime(quint64& lastTurn);

/// False when another client has already taken much time in this turn for writing to its document at once.
bool mayDrawAtOnce(const void* client);
void addDrawing(const void* client, qint64 nanoseconds);

/// True once in a turn, for whoever is the first to ask: it may write to its document for a while.
bool claimDrawing();

} // namespace event_loop_turn
