#include "CheckRun.h"

#include "Launcher.h"
#include "RecordSink.h"

#include <csignal>

namespace checks {

namespace {

/// Folds what comes.
class FindingsSink : public launcher::RecordSink {
public:
    explicit FindingsSink(RunResult& result)
        : m_result(result)
    {
    }
    void begin(pid_t, const std::string&) override { }
    void take(pid_t, const layer::ring::Record& record) override
    {
        m_result.add({record.type, record.frame, record.payload});
    }
    void end(pid_t, bool, const std::string&, bool) override { }

private:
    RunResult& m_result;
};

RunResult::End endOf(const launcher::RunOutcome& outcome)
{
    using Limit = launcher::RunLimit::Reached;
    if (outcome.isUnwatchable)
        return RunResult::End::Unwatchable;
    if (!outcome.end)
        return RunResult::End::NotRun;
    // A crash at the end is the program's own.
    const bool isKilled = outcome.end->kind == launcher::ProcessEnd::Kind::Killed;
    const bool isAsked = !isKilled || outcome.end->number == SIGTERM || outcome.end->number == SIGKILL;
    if (outcome.limit != Limit::None && isAsked)
        return outcome.limit == Limit::Time ? RunResult::End::TimeOver : RunResult::End::FramesDone;
    return isKilled ? RunResult::End::Killed : RunResult::End::Exited;
}

} // namespace

RunResult runOnce(const launcher::Options& options)
{
    RunResult result;
    FindingsSink sink(result);
    launcher::Options own = options;
    own.require = true;
    const launcher::RunOutcome outcome = launcher::Launcher(own, &sink).runProgram();
    result.end = endOf(outcome);
    result.number = outcome.end ? outcome.end->number : outcome.exitCode;
    result.failure = outcome.failure;
    result.device = outcome.device;
    result.program = outcome.program;
    result.isWatched = outcome.hasWatched;
    result.isHardEnd = outcome.isHardEnd;
    result.frames = outcome.frames;
    result.time = outcome.time;
    return result;
}

} // namespace checks
