#include "RunLimit.h"

#include "GuardedFile.h"

#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

#include <sys/syscall.h>
#include <unistd.h>

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace launcher {

namespace {

/// How long a program may take to end after it was asked to.
constexpr auto graceTime = 3s;
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

/// A process and all that descend from it.
std::vector<pid_t> treeOf(pid_t root)
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
    std::vector<pid_t> tree{root};
    for (std::size_t i = 0; i < tree.size(); ++i) {
        const std::vector<pid_t> own = children[tree[i]];
        tree.insert(tree.end(), own.begin(), own.end());
    }
    return tree;
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
        for (const pid_t pid : treeOf(program))
            m_processes.emplace_back(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
        signalAll(SIGTERM);
        // One that is stopped would not hear it.
        signalAll(SIGCONT);
    } else if (!m_isHard && now >= m_polite + graceTime) {
        m_isHard = true;
        for (const pid_t pid : treeOf(program))
            m_processes.emplace_back(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
        signalAll(SIGKILL);
    }
    return limitPause;
}

void RunLimit::finish()
{
    if (m_reached != Reached::None)
        signalAll(SIGKILL);
}

void RunLimit::signalAll(int signal) const
{
    for (const Descriptor& process : m_processes) {
        if (process)
            syscall(SYS_pidfd_send_signal, process.number(), signal, nullptr, 0);
    }
}

} // namespace launcher
