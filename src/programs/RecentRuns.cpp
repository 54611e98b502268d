#include "RecentRuns.h"

#include "Preferences.h"

QList<ProgramRun> RecentRuns::runs() const
{
    QList<ProgramRun> runs;
    for (const std::string& text : m_preferences.get(settings::recentRuns)) {
        // The file may have been written by hand.
        const auto run = ProgramRun::fromText(QString::fromStdString(text));
        if (run && runs.size() < mostRuns)
            runs.append(*run);
    }
    return runs;
}

void RecentRuns::add(const ProgramRun& run)
{
    QList<ProgramRun> all = runs();
    all.removeAll(run);
    all.prepend(run);
    property_list::List list;
    for (const ProgramRun& each : all.mid(0, mostRuns))
        list.push_back(each.toText().toStdString());
    m_preferences.set(settings::recentRuns, list);
}
