#pragma once

#include "RingLayout.h"

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <string_view>

namespace layer::ring {

/// The program's end of a ring. Threads may write at once. No call waits longer than a tenth of the time
/// since the ring was made, taken together; what then finds no room is counted and dropped.
class Writer {
public:
    /// Makes the memory file and greets the launcher on the control socket at a path. Null where there is
    /// none.
    static std::unique_ptr<Writer> connect(const char* socketPath, std::uint32_t via);

    ~Writer();
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    /// Writes one record; its payload is what the parts make together, cut to 8216 bytes. False if it was
    /// dropped.
    bool write(
        std::uint32_t type, std::uint32_t frame, std::initializer_list<std::string_view> payload) noexcept;

    /// Another frame was shown. Returns how many were, with this one.
    std::uint32_t countFrame() noexcept
    {
        return m_header->frames.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    std::uint32_t frames() const noexcept { return m_header->frames.load(std::memory_order_relaxed); }
    /// Whether triangles are to be drawn as lines.
    bool isWireframe() const noexcept { return m_header->wireframe.load(std::memory_order_relaxed) != 0; }
    /// Notes that the program ends by itself.
    void end() noexcept { m_header->ended.store(1, std::memory_order_relaxed); }
    /// Lets go of the memory without a word: for the child of a fork, whose parent goes on writing.
    void abandon() noexcept;

private:
    explicit Writer(Header* header);

    bool waitForRoom(std::uint64_t space) noexcept;
    void put(std::uint64_t& at, const void* bytes, std::size_t size) noexcept;
    void ring() noexcept;

    Header* m_header;
    char* m_data;
    std::mutex m_mutex;
    std::uint64_t m_head = 0;
    std::int64_t m_created; ///< Nanoseconds of the monotonic clock.
    std::int64_t m_waited = 0; ///< Nanoseconds.
};

} // namespace layer::ring
