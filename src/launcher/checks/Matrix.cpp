#include "Matrix.h"

#include "CheckRun.h"
#include "Descriptor.h"
#include "JsonReport.h"
#include "ProfileChoice.h"
#include "RunOutput.h"
#include "Wording.h"

#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <map>
#include <set>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace checks {

namespace {

/// Keeps back the signals that a matrix waits for, so that none of them comes unnoticed: ends of runs, and
/// interruptions, which end the runs and not their summary.
class RunSignals {
public:
    RunSignals()
    {
        sigemptyset(&m_awaited);
        sigaddset(&m_awaited, SIGCHLD);
        for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
            struct sigaction action { };
            sigaction(number, nullptr, &action);
            // Such as what nohup keeps away.
            if (action.sa_handler != SIG_IGN)
                sigaddset(&m_awaited, number);
        }
        sigprocmask(SIG_BLOCK, &m_awaited, &m_maskBefore);
        // Whoever started us may ignore it; the system would then forget the runs that have ended.
        struct sigaction byDefault { };
        byDefault.sa_handler = SIG_DFL;
        sigaction(SIGCHLD, &byDefault, &m_childActionBefore);
    }
    ~RunSignals()
    {
        // One that comes when all runs have ended is too late.
        const timespec noTime{};
        while (sigtimedwait(&m_awaited, nullptr, &noTime) > 0)
            continue;
        restore();
    }
    RunSignals(const RunSignals&) = delete;
    RunSignals& operator=(const RunSignals&) = delete;

    /// The next one.
    int wait() const
    {
        int number = -1;
        while (number < 0)
            number = sigwaitinfo(&m_awaited, nullptr);
        return number;
    }
    /// Whether someone wants the runs to end; wait() will tell who.
    static bool isInterrupted()
    {
        sigset_t pending{};
        sigpending(&pending);
        return sigismember(&pending, SIGINT) == 1 || sigismember(&pending, SIGTERM) == 1
            || sigismember(&pending, SIGHUP) == 1;
    }
    /// As they were found, for a process that has been forked.
    void restore() const
    {
        sigaction(SIGCHLD, &m_childActionBefore, nullptr);
        sigprocmask(SIG_SETMASK, &m_maskBefore, nullptr);
    }

private:
    sigset_t m_awaited{};
    sigset_t m_maskBefore{};
    struct sigaction m_childActionBefore { };
};

bool isPattern(const std::string& name)
{
    std::error_code error;
    return name.find_first_of("*?[") != std::string::npos && !std::filesystem::exists(name, error);
}

/// The files that a run writes itself; empty for none.
struct RunFiles {
    std::string log;
    std::string session;
};

/// What tells the files of a profile from those of others: its name, without what is awkward in file names.
std::string fileNameOf(const std::string& profile)
{
    std::string name;
    const std::filesystem::path file = std::filesystem::path(profile).filename();
    for (const char c : (file.extension() == ".xml" ? file.stem() : file).string()) {
        const auto byte = static_cast<unsigned char>(c);
        constexpr unsigned char lastOfAscii = 0x7F;
        if (byte > lastOfAscii || std::isalnum(byte) != 0)
            name += static_cast<char>(byte > lastOfAscii ? byte : std::tolower(byte));
        else if (!name.empty() && name.back() != '-')
            name += '-';
    }
    return name.empty() ? "profile" : name;
}

/// A path with a name before its ending.
std::string pathWith(const std::string& path, const std::string& name)
{
    if (path.empty())
        return path;
    std::filesystem::path result(path);
    const std::string ending = result.extension().string();
    result.replace_extension();
    return result.string() + "-" + name + ending;
}

/// The files of each profile. Where two have the same name, a number tells them apart.
std::vector<RunFiles> filesOfRuns(const launcher::Options& options, const std::vector<std::string>& profiles)
{
    std::set<std::string> taken{options.check.baseline, options.check.newBaseline};
    for (const launcher::ReportRequest& request : options.check.reports)
        taken.insert(request.path);
    const auto isFree = [&](const std::string& path) {
        return path.empty() || !taken.contains(path);
    };
    std::vector<RunFiles> all;
    for (const std::string& profile : profiles) {
        const std::string name = fileNameOf(profile);
        RunFiles files{pathWith(options.log, name), pathWith(options.session, name)};
        for (int number = 2; !isFree(files.log) || !isFree(files.session); ++number) {
            const std::string next = name + "-" + std::to_string(number);
            files = {pathWith(options.log, next), pathWith(options.session, next)};
        }
        taken.insert({files.log, files.session});
        all.push_back(std::move(files));
    }
    return all;
}

/// One run in a process of its own. What comes of it stands in a file without a name.
struct Job {
    std::size_t number = 0;
    launcher::Descriptor file;
    std::optional<RunOutput> output; ///< Held back while other runs go on.
};

[[noreturn]] void runAlone(
    const launcher::Options& options, const std::string& profile, const RunFiles& files, const Job& job)
{
    launcher::Options own = options;
    own.profile = profile;
    own.log = files.log;
    own.session = files.session;
    if (job.output)
        job.output->redirect();
    const launcher::Descriptor nothing(open("/dev/null", O_RDONLY));
    dup2(nothing.number(), STDIN_FILENO);
    const Check check{options.program, {runOnce(own)}, Verdict(launcher::FailOn::Never, {})};
    const std::string report = jsonReport(check);
    for (std::size_t done = 0; done < report.size();) {
        const ssize_t size = write(job.file.number(), report.data() + done, report.size() - done);
        if (size <= 0)
            break;
        done += static_cast<std::size_t>(size);
    }
    std::fflush(nullptr);
    _exit(0);
}

/// In one line that changes on a terminal, since the table comes behind it.
void tellProgress(std::size_t done, const std::vector<RunResult>& all, const RunResult& last)
{
    const bool isTerminal = isatty(STDERR_FILENO) != 0;
    const bool isLast = done == all.size();
    std::fprintf(stderr, "%scorvale-run: %zu of %zu done: %s%s", isTerminal ? "\r\x1B[K" : "", done,
        all.size(), oneLine(last.deviceName()).c_str(), isTerminal && !isLast ? "" : "\n");
}

/// What a run has written, below a line that says which. Once there has been an interruption, nobody waits
/// for a reader that does not read.
void passOutput(const Job& job, const RunResult& result, bool isQuiet, bool wasInterrupted)
{
    if (!job.output || job.output->isEmpty())
        return;
    if (!isQuiet)
        std::fprintf(stderr, "%scorvale-run: Output on %s:\n", isatty(STDERR_FILENO) != 0 ? "\r\x1B[K" : "",
            oneLine(result.deviceName()).c_str());
    job.output->pass([wasInterrupted](bool isStalled) {
        return !RunSignals::isInterrupted() && !(wasInterrupted && isStalled);
    });
}

std::string contentOf(const launcher::Descriptor& file)
{
    std::string content(
        static_cast<std::size_t>(std::max<off_t>(lseek(file.number(), 0, SEEK_END), 0)), '\0');
    const ssize_t size = pread(file.number(), content.data(), content.size(), 0);
    content.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return content;
}

RunResult resultOf(const Job& job, const std::string& profile)
{
    std::string reason;
    auto runs = readJsonReport(contentOf(job.file), reason);
    if (runs && runs->size() == 1)
        return std::move(runs->front());
    RunResult lost;
    lost.device = profile;
    lost.failure = "The run itself broke off.";
    lost.number = launcher::exit_code::notRun;
    return lost;
}

} // namespace

std::optional<std::vector<std::string>> chosenProfiles(const launcher::CheckOptions& options)
{
    std::vector<std::string> chosen;
    const auto add = [&chosen](const std::string& name) {
        if (std::find(chosen.begin(), chosen.end(), name) == chosen.end())
            chosen.push_back(name);
    };
    std::vector<std::string> wanted = options.profiles;
    if (options.allProfiles)
        wanted.emplace_back("*");
    for (const std::string& name : wanted) {
        const std::vector<std::string> fitting =
            isPattern(name) ? launcher::profilesLike(name) : std::vector{name};
        if (fitting.empty()) {
            std::fprintf(stderr, "corvale-run: No profile fits %s. There are:\n%s", oneLine(name).c_str(),
                launcher::profileList().c_str());
            return std::nullopt;
        }
        std::for_each(fitting.begin(), fitting.end(), add);
    }
    for (const std::string& name : chosen) {
        const std::string refusal = launcher::chooseProfile(name).refusal;
        std::fputs(refusal.c_str(), stderr);
        if (!refusal.empty())
            return std::nullopt;
    }
    return chosen;
}

std::vector<RunResult> runMatrix(const launcher::Options& options, const std::vector<std::string>& profiles)
{
    const std::vector<RunFiles> files = filesOfRuns(options, profiles);
    std::vector<RunResult> results(profiles.size());
    int interruption = 0;
    std::map<pid_t, Job> running;
    std::size_t started = 0;
    const auto mayStart = [&] {
        return started < profiles.size() && interruption == 0
            && running.size() < static_cast<std::size_t>(options.check.jobs);
    };
    const RunSignals signals;
    while (mayStart() || !running.empty()) {
        while (mayStart()) {
            Job job{started, launcher::Descriptor(memfd_create("run", MFD_CLOEXEC)), {}};
            if (options.check.jobs > 1)
                job.output.emplace();
            std::fflush(nullptr);
            const pid_t pid = fork();
            if (pid == 0) {
                signals.restore();
                runAlone(options, profiles[started], files[started], job);
            }
            if (pid < 0)
                results[started] = resultOf(job, profiles[started]);
            else
                running[pid] = std::move(job);
            ++started;
        }
        if (running.empty())
            continue;
        if (const int signal = signals.wait(); signal != SIGCHLD) {
            interruption = signal;
            for (const auto& entry : running)
                kill(entry.first, signal);
        }
        // One signal may tell of several ends. No other child than the runs concerns us.
        for (auto job = running.begin(); job != running.end();) {
            if (waitpid(job->first, nullptr, WNOHANG) == 0) {
                ++job;
                continue;
            }
            const std::size_t number = job->second.number;
            results[number] = resultOf(job->second, profiles[number]);
            passOutput(job->second, results[number], options.quiet, interruption != 0);
            job = running.erase(job);
            if (!options.quiet)
                tellProgress(started - running.size(), results, results[number]);
        }
    }
    for (std::size_t i = started; i < profiles.size(); ++i) {
        results[i].device = profiles[i];
        results[i].failure = "It was interrupted before.";
        results[i].number = 128 + interruption;
    }
    return results;
}

} // namespace checks
