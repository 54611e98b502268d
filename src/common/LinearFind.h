#pragma once

#include "Findable.h"

#include <QTimer>

#include <cstddef>
#include <optional>

class QElapsedTimer;

/// A search that goes through its matter from the start to the end, in steps of the event loop, and numbers
/// the matches in that order.
class LinearFind : public Findable {
    Q_OBJECT

public:
    explicit LinearFind(QObject* parent);

    void start(const FindPattern& pattern) override;
    void stop() override;
    void go(Direction direction) override;
    State state() const override;

    /// Matches that are kept at most.
    static constexpr std::size_t mostMatches = 2'000'000;

protected:
    const FindPattern& pattern() const { return m_pattern; }
    /// Searches all again soon, without moving the reader.
    void restartSoon();
    /// Goes on with what has come behind what was searched.
    void continueSoon();

    /// Forgets all matches and begins anew from the start, with the pattern.
    virtual void begin() = 0;
    /// Searches for the time of a step. False when all has been searched.
    virtual bool search() = 0;
    virtual std::size_t matchCount() const = 0;
    /// The number of the first match that is not before the reader's place; none while that is not searched.
    virtual std::optional<std::size_t> firstAtReader() const = 0;
    /// Takes the place to which the reader has moved since begin(), show() or the last call for the reader's
    /// place; the matches that are there are behind or before it as the direction is. False where the reader
    /// has not moved.
    virtual bool followReader(Direction direction) = 0;
    /// True while there is more to search.
    bool isSearching() const { return m_isSearching; }
    /// Of all there is, between 0 and 1.
    virtual double searchedPart() const = 0;
    virtual void show(std::size_t match) = 0;
    /// Marks what the pattern matches; nothing with an empty one.
    virtual void mark() = 0;

    /// True when the time of a step is over.
    static bool isOver(const QElapsedTimer& time);

private:
    void step();
    void tryToGo();
    std::optional<std::size_t> wanted(Direction direction);

    FindPattern m_pattern;
    QTimer m_timer;
    QTimer m_restart;
    bool m_isSearching = false;
    std::optional<std::size_t> m_current;
    std::optional<Direction> m_wanted;
    Wrapped m_wrapped = Wrapped::No;
};
