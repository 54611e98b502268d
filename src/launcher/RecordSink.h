#pragma once

#include "RingReader.h"

#include <string>
#include <vector>

#include <sys/types.h>

namespace launcher {

/// Gets what the watched processes report, in order.
class RecordSink {
public:
    virtual ~RecordSink() = default;

    /// A process begins to be watched, or the program that it has become.
    virtual void begin(pid_t pid, const std::string& name) = 0;
    virtual void take(pid_t pid, const layer::ring::Record& record) = 0;
    /// `how` is for the user; it has been the last record already if `isTold`.
    virtual void end(pid_t pid, bool isClean, const std::string& how, bool isTold) = 0;
};

/// Several sinks as one. They outlive it.
class RecordSinks : public RecordSink {
public:
    void add(RecordSink& sink) { m_sinks.push_back(&sink); }

    void begin(pid_t pid, const std::string& name) override
    {
        for (RecordSink* sink : m_sinks)
            sink->begin(pid, name);
    }
    void take(pid_t pid, const layer::ring::Record& record) override
    {
        for (RecordSink* sink : m_sinks)
            sink->take(pid, record);
    }
    void end(pid_t pid, bool isClean, const std::string& how, bool isTold) override
    {
        for (RecordSink* sink : m_sinks)
            sink->end(pid, isClean, how, isTold);
    }

private:
    std::vector<RecordSink*> m_sinks;
};

} // namespace launcher
