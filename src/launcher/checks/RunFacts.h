#pragma once

#include "Record.h"

#include <cstddef>
#include <map>
#include <string>

namespace checks {

/// What a program's run tells of its device: the contexts that it made and the system report, as names and
/// values in English, such as "context 1: OpenGL ES" and "3.1". Values are cut, and names beyond a limit are
/// only counted.
class RunFacts {
public:
    /// False if the record tells nothing of that kind.
    bool add(const sessions::Record& record);
    void add(const std::string& name, const std::string& value);

    const std::map<std::string, std::string>& all() const { return m_facts; }
    /// How many more there were.
    std::size_t others() const { return m_others; }

private:
    void addContext(const sessions::Record& record);

    std::map<std::string, std::string> m_facts;
    std::size_t m_others = 0;
};

} // namespace checks
