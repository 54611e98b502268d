#include "RunLimit.h"

#include "GuardedFile.h"

#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace launcher {

namespace {

/// How long a program may take to end after it was asked to.
constexpr auto graceTime = 3s;
/// How long the system may take to end what it was told to end.
constexpr auto killTime = 1s;
/// How exactly frames are counted: nothing tells of each of them.
constexpr int framePause = 5; // milliseconds
constexpr int limitPause = 50; // milliseconds

/// The parent of a process; 0 if it is gone.
pid_t parentOf(pid_t pid)
{
    constexpr std::size_t sizeLimit = 4096;
    const std::string line = platform::readFile("/proc/" + std::to_string(pid) + "/stat", sizeLimit).bytes;
    // Behind the name, which may hold anything: a blank, the state, a blank.
    const std::size_t nameEnd = line.rfind(')');
    constexpr std::size_t stateSize = 4;
    if (nameEnd == std::string::npos || nameEnd + stateSize >= line.size())
        return 0;
    return std::atoi(line.c_str() + nameEnd + stateSize);
}

/// Some processes and all that descend from them.
std::vector<pid_t> treesOf(const std::vector<pid_t>& roots)
{
    std::map<pid_t, std::vector<pid_t>> children;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc", error)) {
        const std::string name = entry.path().filename().string();
        if (std::isdigit(static_cast<unsigned char>(name.front())) == 0)
            continue;
        const pid_t pid = std::atoi(name.c_str());
        children[parentOf(pid)].push_back(pid);
    }
    std::set<pid_t> found(roots.begin(), roots.end());
    std::vector<pid_t> trees(found.begin(), found.end());
    for (std::size_t i = 0; i < trees.size(); ++i) {
        for (const pid_t child : children[trees[i]]) {
            if (found.insert(child).second)
                trees.push_back(child);
        }
    }
    return trees;
}

} // namespace

int RunLimit::enforce(pid_t program, std::uint32_t frames)
{
    const auto now = Clock::now();
    if (m_reached == Reached::None) {
        const bool isLate = m_time > 0ms && now >= m_start + m_time;
        const bool isDone = m_frames > 0 && frames >= m_frames;
        if (!isLate && !isDone) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_start + m_time - now).count();
            const int pause = m_time > 0ms ? static_cast<int>(std::min<std::int64_t>(left, 60'000)) : -1;
            if (m_frames == 0)
                return pause;
            return pause < 0 ? framePause : std::min(pause, framePause);
        }
        m_reached = isDone ? Reached::Frames : Reached::Time;
        m_polite = now;
        add({program});
        signalAll(SIGTERM);
        // One that is stopped would not hear it.
        signalAll(SIGCONT);
    } else if (!m_isHard && now >= m_polite + graceTime) {
        killAll({program});
    }
    return limitPause;
}

bool RunLimit::finish(bool isUrgent)
{
    if (m_reached == Reached::None || living().empty())
        return true;
    const auto now = Clock::now();
    if (!m_isHard && (isUrgent || now >= m_polite + graceTime))
        killAll({});
    return m_isHard && now >= m_killed + killTime;
}

void RunLimit::add(const std::vector<pid_t>& roots)
{
    for (const pid_t pid : treesOf(roots))
        m_processes.push_back({pid, Descriptor(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)))});
}

std::vector<pid_t> RunLimit::living() const
{
    std::vector<pid_t> living;
    for (const Process& process : m_processes) {
        pollfd end{process.descriptor.number(), POLLIN, 0};
        if (process.descriptor && poll(&end, 1, 0) == 0)
            living.push_back(process.pid);
    }
    return living;
}

void RunLimit::killAll(std::vector<pid_t> roots)
{
    m_isHard = true;
    m_killed = Clock::now();
    // Also what was started after they were asked to end.
    const std::vector<pid_t> asked = living();
    roots.insert(roots.end(), asked.begin(), asked.end());
    add(roots);
    signalAll(SIGKILL);
}

void RunLimit::signalAll(int signal) const
{
    for (const Process& process : m_processes) {
        if (process.descriptor)
            syscall(SYS_pidfd_send_signal, process.descriptor.number(), signal, nullptr, 0);
    }
}

} // namespace launcher
