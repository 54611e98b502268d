#pragma once

#include <cstdint>
#include <string_view>

/// Counts how the program is used. Every operation tells whether it succeeded.
class TSRStatsInterface {
public:
    TSRStatsInterface() = default;
    virtual ~TSRStatsInterface() = default;
    TSRStatsInterface(const TSRStatsInterface&) = delete;
    TSRStatsInterface& operator=(const TSRStatsInterface&) = delete;

    /// Makes all back-ends ready.
    virtual bool initialise() = 0;
    /// Ends all back-ends.
    virtual bool finish() = 0;
    /// Notes an event with two values of its own.
    virtual bool recordEvent(std::string_view event, std::int64_t value, std::int64_t extra) = 0;
};
