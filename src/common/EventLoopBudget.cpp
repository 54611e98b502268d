#include "EventLoopBudget.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace event_loop_budget {

namespace {

/// Nanoseconds that all clients together read in an iteration at most.
constexpr qint64 readingLimit = 10'000'000;

/// Nanoseconds that the first writer may write at once before the others have to wait.
constexpr qint64 writingLimit = 5'000'000;

struct Iteration {
    bool isCurrent = false;
    quint64 number = 1;
    int readers = 0;
    int formerReaders = 1; ///< In former iterations, of which the recent ones count more.
    const void* firstWriter = nullptr;
    qint64 writingTime = 0;
    bool hasRefreshed = false;
    bool hasStepped = false;
};

Iteration& current()
{
    static Iteration current;
    if (!current.isCurrent && QCoreApplication::instance()) {
        current.isCurrent = true;
        // What is posted now is delivered when the next iteration begins.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [] {
                Iteration next;
                next.number = current.number + 1;
                next.formerReaders = std::max({current.readers, current.formerReaders * 7 / 8, 1});
                current = next;
            },
            Qt::QueuedConnection);
    }
    return current;
}

} // namespace

quint64 iteration()
{
    return current().number;
}

qint64 readingTime(quint64& lastIteration)
{
    Iteration& now = current();
    if (std::exchange(lastIteration, now.number) != now.number)
        ++now.readers;
    // For those that read first, only former iterations tell how many will follow.
    const int readers = std::max(now.readers, now.formerReaders);
    // One of many may read twice in an iteration: what it has left behind, and what is new.
    return readingLimit / (readers > 1 ? 2 * readers : 1);
}

bool mayWriteAtOnce(const void* writer)
{
    const Iteration& now = current();
    return !now.firstWriter || now.firstWriter == writer || now.writingTime < writingLimit;
}

void addWritingTime(const void* writer, qint64 nanoseconds)
{
    Iteration& now = current();
    if (!now.firstWriter)
        now.firstWriter = writer;
    now.writingTime += nanoseconds;
}

bool claimRefresh()
{
    return !std::exchange(current().hasRefreshed, true);
}

bool claimStep()
{
    return !std::exchange(current().hasStepped, true);
}

} // namespace event_loop_budget
