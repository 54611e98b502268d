#pragma once

#include "ProgramRun.h"

#include <QList>

class Preferences;

/// The programs that were run last, the most recent first, as the preferences keep them.
class RecentRuns {
public:
    static constexpr qsizetype mostRuns = 10;

    /// The store must live longer.
    explicit RecentRuns(Preferences& preferences)
        : m_preferences(preferences)
    {
    }

    QList<ProgramRun> runs() const;
    /// Puts a run in front.
    void add(const ProgramRun& run);

private:
    Preferences& m_preferences;
};
