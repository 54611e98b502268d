#pragma once

#include "TSRStatsInterface.h"

#include <map>
#include <memory>
#include <string>

class Preferences;

/// Hands what is counted on to its back-ends. The program registers none, so nothing is kept and nothing
/// leaves the machine.
class TSRStats : public TSRStatsInterface {
public:
    /// Reads once whether the user lets usage be collected.
    TSRStats(std::string name, std::string version, const Preferences& preferences);

    /// Adds a back-end under a name, in whose order back-ends are called; a name's earlier one is replaced.
    void addBackEnd(const std::string& name, std::unique_ptr<TSRStatsInterface> backEnd);

    const std::string& name() const { return m_name; }
    const std::string& version() const { return m_version; }
    bool collects() const { return m_collects; }

    /// Stops at the first back-end that fails.
    bool initialise() override;
    bool finish() override;
    bool recordEvent(std::string_view event, std::int64_t value, std::int64_t extra) override;

private:
    std::string m_name;
    std::string m_version;
    bool m_collects;
    std::map<std::string, std::unique_ptr<TSRStatsInterface>> m_backEnds;
};
