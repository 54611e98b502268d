#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace layer::ring {
class Reader;
} // namespace layer::ring

namespace launcher {

/// A thread that waits for the doorbell of one ring, since a poll() cannot, and makes a descriptor readable
/// when it rings. It waits only while it is armed, so a program that writes all the time never calls the
/// system for us.
class Doorbell {
public:
    /// The reader outlives this; the descriptor is that of an eventfd.
    Doorbell(layer::ring::Reader& ring, int wakeUp);
    ~Doorbell();
    Doorbell(const Doorbell&) = delete;
    Doorbell& operator=(const Doorbell&) = delete;

    /// Waits for the next ring, once.
    void arm();
    bool isArmed() const { return m_armed.load(std::memory_order_acquire); }

private:
    void run();

    layer::ring::Reader& m_ring;
    int m_wakeUp;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::atomic<bool> m_armed = false; ///< Set under the mutex.
    std::atomic<bool> m_stopping = false; ///< Set under the mutex.
    std::atomic<bool> m_stopped = false;
    std::thread m_thread; ///< The last member: it uses the others.
};

} // namespace launcher
