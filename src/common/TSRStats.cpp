#include "TSRStats.h"

#include "Preferences.h"

#include <algorithm>
#include <utility>

TSRStats::TSRStats(std::string name, std::string version, const Preferences& preferences)
    : m_name(std::move(name))
    , m_version(std::move(version))
    , m_collects(preferences.get(settings::collectUsage))
{
}

void TSRStats::addBackEnd(const std::string& name, std::unique_ptr<TSRStatsInterface> backEnd)
{
    m_backEnds[name] = std::move(backEnd);
}

bool TSRStats::initialise()
{
    return std::all_of(
        m_backEnds.begin(), m_backEnds.end(), [](const auto& entry) { return entry.second->initialise(); });
}

bool TSRStats::finish()
{
    bool succeeded = true;
    for (const auto& [name, backEnd] : m_backEnds)
        succeeded = backEnd->finish() && succeeded;
    return succeeded;
}

bool TSRStats::recordEvent(std::string_view event, std::int64_t value, std::int64_t extra)
{
    bool succeeded = true;
    for (const auto& [name, backEnd] : m_backEnds)
        succeeded = backEnd->recordEvent(event, value, extra) && succeeded;
    return succeeded;
}
