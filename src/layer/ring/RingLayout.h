#pragma once

#include <atomic>
#include <cstdint>

/// How a watched program hands its records to the launcher: one sealed memory file for each process, of a
/// header and a ring of bytes. The program alone moves `head`, the launcher alone moves `tail`. Nothing in it
/// is trusted by the launcher, since a program may write anywhere in its memory.
namespace layer::ring {

inline constexpr std::uint32_t magic = 0x31525643; ///< "CVR1" in the memory of a little-endian machine.
inline constexpr std::uint32_t headerSize = 4096; ///< Bytes before the ring.
inline constexpr std::uint32_t ringSize = 4U << 20U; ///< Bytes of the ring, a power of two.
inline constexpr std::uint32_t alignment = 16; ///< Records start at multiples of this many bytes.

/// Both ends see this header; each field is written by one end only.
// The padding keeps the lines of the cache apart. NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct Header {
    std::uint32_t magic = 0;
    std::uint32_t ringSize = 0;

    // The program's line of the cache.
    alignas(64) std::atomic<std::uint64_t> head{0}; ///< Bytes ever written, whole records only.
    std::atomic<std::uint64_t> dropped{0}; ///< Records ever dropped for want of room.
    std::atomic<std::uint32_t> frames{0}; ///< Frames ever shown.
    std::atomic<std::uint32_t> ended{0}; ///< 1 once the program ran its exit handlers.
    std::atomic<std::uint32_t> doorbell{0}; ///< Futex: changes when a sleeping launcher is to wake up.

    // The launcher's.
    alignas(64) std::atomic<std::uint64_t> tail{0}; ///< Bytes ever read.
    std::atomic<std::uint32_t> sleeping{0}; ///< 1 while the launcher waits for the doorbell.
    std::atomic<std::uint32_t> wireframe{0}; ///< 1 while triangles are to be drawn as lines.
    std::atomic<std::uint32_t> stopped{0}; ///< 1 once nobody reads any more: write nothing.
};
static_assert(sizeof(Header) <= headerSize);
static_assert(
    std::atomic<std::uint64_t>::is_always_lock_free && std::atomic<std::uint32_t>::is_always_lock_free);

/// What stands before the payload of each record. The payload is that of the 8224-byte record (see Message.h)
/// without what is unused at its end; the next record starts at the next multiple of `alignment`.
struct RecordHead {
    std::uint32_t size = 0; ///< Bytes of the payload, 8216 at most.
    std::uint32_t type = 0;
    std::uint32_t frame = 0;
    std::uint32_t reserved = 0;
};
static_assert(sizeof(RecordHead) == alignment);

/// The greeting of a process to the launcher: one packet on the control socket, which carries the descriptor
/// of the memory file. The socket is closed behind it.
struct Greeting {
    std::uint32_t magic = ring::magic;
    std::uint32_t via = 0; ///< 0: EGL vendor library; 1: preload.
    std::uint32_t argumentsSize = 0; ///< Bytes of `arguments` in use: those of /proc/self/cmdline, cut.
    char arguments[2036] = {};
};
static_assert(sizeof(Greeting) == 2048);

/// Bytes that a record of this payload takes in the ring.
constexpr std::uint64_t spaceOf(std::uint64_t payloadSize)
{
    return (sizeof(RecordHead) + payloadSize + alignment - 1) / alignment * alignment;
}

} // namespace layer::ring
