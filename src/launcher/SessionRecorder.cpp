#include "SessionRecorder.h"

#include <algorithm>
#include <cstdio>

using namespace std::chrono_literals;

namespace launcher {

namespace {

/// What a launcher that is killed may lose.
constexpr auto longestWait = 1000ms;

} // namespace

bool SessionRecorder::claim(const std::string& path)
{
    m_path = path;
    return m_writer.claim(path);
}

void SessionRecorder::start(const std::string& device)
{
    m_device = device;
    if (!m_path.empty())
        m_writer.begin();
}

void SessionRecorder::begin(pid_t pid, const std::string& name)
{
    if (m_writer.ok())
        m_clients[pid] =
            m_writer.beginClient(static_cast<std::uint32_t>(pid), name, m_device, m_writer.now());
}

void SessionRecorder::take(pid_t pid, const layer::ring::Record& record)
{
    if (!m_writer.ok())
        return;
    m_writer.add(m_clients[pid], {record.type, record.frame, record.payload}, m_writer.now());
    if (!m_isWaiting)
        m_firstWaiting = std::chrono::steady_clock::now();
    m_isWaiting = true;
}

void SessionRecorder::end(pid_t pid, bool isClean, const std::string& how, bool)
{
    using sessions::ClientEnd;
    if (m_writer.ok())
        m_writer.endClient(m_clients[pid], isClean ? ClientEnd::Clean : ClientEnd::Lost, how, m_writer.now());
}

int SessionRecorder::flushOld()
{
    tellFailure();
    if (!m_isWaiting || !m_writer.ok())
        return -1;
    const auto left = m_firstWaiting + longestWait - std::chrono::steady_clock::now();
    if (left > 0ms)
        return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count());
    m_writer.flush();
    m_isWaiting = false;
    return -1;
}

void SessionRecorder::close()
{
    m_writer.close();
    if (!m_path.empty())
        tellFailure();
}

void SessionRecorder::tellFailure()
{
    if (m_isFailureTold || m_writer.reason().empty())
        return;
    m_isFailureTold = true;
    std::fprintf(stderr, "corvale-run: The session in %s ends too early: %s.\n", m_path.c_str(),
        m_writer.reason().c_str());
}

} // namespace launcher
