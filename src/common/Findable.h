#pragma once

#include "FindPattern.h"

#include <QObject>

#include <cstdint>

class QWidget;

/// Something in which a user can look for text. It works in steps of the event loop, and marks what it finds.
class Findable : public QObject {
    Q_OBJECT

public:
    enum class Direction { Forward, Backward };
    /// Whether the last step has gone on at the other end.
    enum class Wrapped { No, ToStart, ToEnd };

    struct State {
        std::uint64_t current = 0; ///< From 1 on; 0 while it is not known.
        std::uint64_t total = 0; ///< Found so far.
        int percent = 100; ///< Searched so far.
        bool isLimited = false; ///< There are more than can be kept.
        bool hasGivenUp = false; ///< Lines were too hard for the expression.
        Wrapped wrapped = Wrapped::No;
    };

    using QObject::QObject;

    /// Looks for a pattern from the reader's place on, and goes to the first match. What was looked for
    /// before is forgotten.
    virtual void start(const FindPattern& pattern) = 0;
    /// Takes all marks away.
    virtual void stop() = 0;
    /// Goes to the next match, as soon as it is found: behind the last one, or behind the place to which the
    /// reader has moved since.
    virtual void go(Direction direction) = 0;

    virtual State state() const = 0;
    /// What the reader has selected; empty for more than a line.
    virtual QString selectedText() const = 0;
    /// The widget that has the focus while the reader reads.
    virtual QWidget* view() const = 0;

Q_SIGNALS:
    void stateChanged();
};
