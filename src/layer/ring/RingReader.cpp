#include "RingReader.h"

#include "Message.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <limits>

#include <fcntl.h>
#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace layer::ring {

namespace {

static_assert(
    std::tuple_size_v<std::array<char, 8216>> == ui::messages::recordSize - ui::messages::offset::payload);

} // namespace

std::unique_ptr<Reader> Reader::open(int memory)
{
    constexpr std::size_t size = headerSize + ringSize;
    // Without the seals the program could cut the file, and reading behind its end would kill the launcher.
    constexpr int wanted = F_SEAL_SHRINK | F_SEAL_GROW;
    struct stat status { };
    const int seals = fcntl(memory, F_GET_SEALS);
    if (seals < 0 || (seals & wanted) != wanted || fstat(memory, &status) != 0
        || status.st_size != off_t{size})
        return nullptr;
    void* mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0);
    if (mapped == MAP_FAILED)
        return nullptr;
    auto* header = static_cast<Header*>(mapped);
    if (header->magic != magic || header->ringSize != ringSize) {
        munmap(mapped, size);
        return nullptr;
    }
    return std::unique_ptr<Reader>(new Reader(header));
}

Reader::Reader(Header* header)
    : m_header(header)
    , m_data(reinterpret_cast<const char*>(header) + headerSize)
{
}

Reader::~Reader()
{
    munmap(m_header, headerSize + ringSize);
}

Reader::Next Reader::next(Record& record)
{
    if (m_broken)
        return Next::Broken;
    const std::uint64_t tail = m_tail.load(std::memory_order_relaxed);
    const std::uint64_t filled = this->filled();
    if (filled == 0)
        return Next::Empty;
    RecordHead head;
    if (filled <= ringSize && filled % alignment == 0)
        copy(tail, &head, sizeof head);
    else
        m_broken = true;
    if (m_broken || head.size > m_payload.size() || spaceOf(head.size) > filled) {
        m_broken = true;
        return Next::Broken;
    }
    copy(tail + sizeof head, m_payload.data(), head.size);
    m_tail.store(tail + spaceOf(head.size), std::memory_order_relaxed);
    m_header->tail.store(tail + spaceOf(head.size), std::memory_order_release);
    record = {head.type, head.frame, std::string_view(m_payload.data(), head.size)};
    return Next::Record;
}

void Reader::copy(std::uint64_t from, void* to, std::size_t size) const
{
    const std::size_t place = from % ringSize;
    const std::size_t first = std::min<std::size_t>(size, ringSize - place);
    std::memcpy(to, m_data + place, first);
    std::memcpy(static_cast<char*>(to) + first, m_data, size - first);
}

void Reader::wait(std::chrono::milliseconds atMost)
{
    const std::uint32_t seen = m_header->doorbell.load(std::memory_order_relaxed);
    m_header->sleeping.store(1, std::memory_order_seq_cst);
    if (m_header->head.load(std::memory_order_seq_cst) == m_tail.load(std::memory_order_relaxed)) {
        const timespec time{atMost.count() / 1000, atMost.count() % 1000 * 1'000'000};
        syscall(SYS_futex, &m_header->doorbell, FUTEX_WAIT, seen, &time, nullptr, 0);
    }
    m_header->sleeping.store(0, std::memory_order_relaxed);
}

void Reader::wake()
{
    m_header->doorbell.fetch_add(1, std::memory_order_relaxed);
    syscall(SYS_futex, &m_header->doorbell, FUTEX_WAKE, std::numeric_limits<int>::max(), nullptr, nullptr, 0);
}

} // namespace layer::ring
