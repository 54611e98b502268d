#pragma once

#include "DeviceFacts.h"
#include "Findings.h"

#include <cstdint>
#include <string>

namespace sessions {

/// What a session, or the run of a program, amounts to, so that two can be compared. It takes bounded memory.
struct SessionSummary {
    std::string device; ///< The profile's name; empty for the machine itself.
    Findings findings;
    DeviceFacts facts;

    void add(const Record& record)
    {
        if (!findings.add(record))
            facts.add(record);
    }
};

} // namespace sessions
