#include "Matrix.h"

#include "CheckRun.h"
#include "Descriptor.h"
#include "JsonReport.h"
#include "ProfileChoice.h"
#include "Wording.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <map>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace checks {

namespace {

volatile std::sig_atomic_t interruption = 0;

constexpr std::array interruptions{SIGINT, SIGTERM, SIGHUP};

/// Sees to it that an interruption ends the runs and not their summary.
class InterruptionGuard {
public:
    InterruptionGuard()
    {
        interruption = 0;
        struct sigaction noted { };
        noted.sa_handler = [](int signal) {
            interruption = signal;
        };
        for (std::size_t i = 0; i < interruptions.size(); ++i)
            sigaction(interruptions.at(i), &noted, &m_before.at(i));
    }
    ~InterruptionGuard() { restore(); }
    InterruptionGuard(const InterruptionGuard&) = delete;
    InterruptionGuard& operator=(const InterruptionGuard&) = delete;

    void restore() const
    {
        for (std::size_t i = 0; i < interruptions.size(); ++i)
            sigaction(interruptions.at(i), &m_before.at(i), nullptr);
    }

private:
    std::array<struct sigaction, interruptions.size()> m_before{};
};

bool isPattern(const std::string& name)
{
    std::error_code error;
    return name.find_first_of("*?[") != std::string::npos && !std::filesystem::exists(name, error);
}

/// A path with the profile's name before its ending.
std::string pathFor(const std::string& path, const std::string& profile)
{
    if (path.empty())
        return path;
    std::string name;
    const std::filesystem::path file = std::filesystem::path(profile).filename();
    for (const char c : (file.extension() == ".xml" ? file.stem() : file).string()) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0)
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        else if (!name.empty() && name.back() != '-')
            name += '-';
    }
    std::filesystem::path result(path);
    const std::string ending = result.extension().string();
    result.replace_extension();
    return result.string() + "-" + name + ending;
}

/// One run in a process of its own. What comes of it stands in a file without a name.
struct Job {
    std::size_t number = 0;
    launcher::Descriptor file;
};

[[noreturn]] void runAlone(const launcher::Options& options, const std::string& profile, const Job& job)
{
    launcher::Options own = options;
    own.profile = profile;
    own.log = pathFor(options.log, profile);
    own.session = pathFor(options.session, profile);
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
    std::vector<RunResult> results(profiles.size());
    std::map<pid_t, Job> running;
    std::size_t started = 0;
    const auto mayStart = [&] {
        return started < profiles.size() && interruption == 0
            && running.size() < static_cast<std::size_t>(options.check.jobs);
    };
    const InterruptionGuard guard;
    while (mayStart() || !running.empty()) {
        while (mayStart()) {
            Job job{started, launcher::Descriptor(memfd_create("run", MFD_CLOEXEC))};
            std::fflush(nullptr);
            const pid_t pid = fork();
            if (pid == 0) {
                guard.restore();
                runAlone(options, profiles[started], job);
            }
            if (pid < 0)
                results[started] = resultOf(job, profiles[started]);
            else
                running[pid] = std::move(job);
            ++started;
        }
        const pid_t ended = waitpid(-1, nullptr, 0);
        if (ended < 0 && errno == EINTR && interruption != 0) {
            for (const auto& entry : running)
                kill(entry.first, interruption);
        }
        const auto job = running.find(ended);
        if (job == running.end())
            continue;
        const std::size_t number = job->second.number;
        results[number] = resultOf(job->second, profiles[number]);
        running.erase(job);
        if (!options.quiet)
            tellProgress(started - running.size(), results, results[number]);
    }
    for (std::size_t i = started; i < profiles.size(); ++i) {
        results[i].device = profiles[i];
        results[i].failure = "It was interrupted before.";
        results[i].number = 128 + interruption;
    }
    return results;
}

} // namespace checks
