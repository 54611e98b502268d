#pragma once

#include "RingLayout.h"

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace layer::ring {

/// One record as the program wrote it. The payload is valid until the next one is read.
struct Record {
    std::uint32_t type = 0;
    std::uint32_t frame = 0;
    std::string_view payload; ///< Of the 8224-byte record, without what is unused at its end.
};

/// The launcher's end of a ring. It believes nothing that it reads: a ring that makes no sense is broken for
/// good.
class Reader {
public:
    enum class Next { Record, Empty, Broken };

    /// Maps the memory file of a descriptor, which stays the caller's. Null if it is not sealed, has another
    /// size or is no ring.
    static std::unique_ptr<Reader> open(int memory);

    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// The next record. Its room in the ring is free when this returns.
    Next next(Record& record);

    /// Bytes that wait in the ring; if the program has scribbled on it, any number.
    std::uint64_t filled() const
    {
        return m_header->head.load(std::memory_order_acquire) - m_tail.load(std::memory_order_relaxed);
    }

    /// Sleeps until there is something to read, someone wakes it, or the time is over. From any one thread.
    void wait(std::chrono::milliseconds atMost);
    /// Ends a wait.
    void wake();

    /// Records that the program dropped so far, and frames that it showed.
    std::uint64_t dropped() const { return m_header->dropped.load(std::memory_order_relaxed); }
    std::uint32_t frames() const { return m_header->frames.load(std::memory_order_relaxed); }
    /// Whether the program ran its exit handlers.
    bool hasEnded() const { return m_header->ended.load(std::memory_order_relaxed) != 0; }

    void setWireframe(bool on) { m_header->wireframe.store(on ? 1 : 0, std::memory_order_relaxed); }
    /// Tells the program that nobody reads any more.
    void stop() { m_header->stopped.store(1, std::memory_order_relaxed); }

private:
    explicit Reader(Header* header);

    void copy(std::uint64_t from, void* to, std::size_t size) const;

    Header* m_header;
    const char* m_data;
    std::atomic<std::uint64_t> m_tail{0}; ///< Ours; that of the header is for the program alone.
    bool m_broken = false;
    std::array<char, 8216> m_payload{};
};

} // namespace layer::ring
