#include "Doorbell.h"

#include "RingReader.h"

#include <cstdint>

#include <unistd.h>

using namespace std::chrono_literals;

namespace launcher {

namespace {

/// A program may scribble on its doorbell; then nobody waits longer than this.
constexpr auto longestWait = 2000ms;
/// Records that come within this time after the last ring are read together.
constexpr auto shortestInterval = 1ms;

} // namespace

Doorbell::Doorbell(layer::ring::Reader& ring, int wakeUp)
    : m_ring(ring)
    , m_wakeUp(wakeUp)
    , m_thread([this] { run(); })
{
}

Doorbell::~Doorbell()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_one();
    // It may be about to wait, where one call would come too early.
    while (!m_stopped) {
        m_ring.wake();
        std::this_thread::sleep_for(50us);
    }
    m_thread.join();
}

void Doorbell::arm()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_armed = true;
    }
    m_changed.notify_one();
}

void Doorbell::run()
{
    auto lastRing = std::chrono::steady_clock::now() - shortestInterval;
    for (;;) {
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_armed || m_stopping; });
        }
        if (m_stopping)
            break;
        m_ring.wait(longestWait);
        std::this_thread::sleep_until(lastRing + shortestInterval);
        lastRing = std::chrono::steady_clock::now();
        m_armed.store(false, std::memory_order_release);
        const std::uint64_t one = 1;
        // The counter cannot overflow, so there is nothing to wait for and nothing to lose.
        [[maybe_unused]] const ssize_t size = write(m_wakeUp, &one, sizeof one);
    }
    m_stopped = true;
}

} // namespace launcher
