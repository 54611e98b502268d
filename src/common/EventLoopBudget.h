#pragma once

#include <QtGlobal>

/// The time that clients have used of the current iteration of the event loop. They share it, so that a
/// window with many clients answers as fast as one with a few. For the window's thread only.
namespace event_loop_budget {

/// The number of the current iteration, from 1 on.
quint64 iteration();

/// Nanoseconds that a client may read for in one go: its share of about ten milliseconds. The client keeps
/// the number of the iteration in which it last asked, at first 0.
qint64 readingTime(quint64& lastIteration);

/// False when another writer has already written to its document at once for long in this iteration.
bool mayWriteAtOnce(const void* writer);
void addWritingTime(const void* writer, qint64 nanoseconds);

/// True for the first caller in each iteration, who may refresh a document.
bool claimRefresh();

/// True for the first caller in each iteration, who may take a step of some milliseconds of a longer task.
bool claimStep();

} // namespace event_loop_budget
