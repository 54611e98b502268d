#include "RecordQueue.h"

#include <cstring>
#include <utility>

namespace launcher {

namespace {

constexpr std::size_t chunkSize = 256U << 10U; // bytes

struct Head {
    std::uint32_t size;
    std::uint32_t type;
    std::uint32_t frame;
};

} // namespace

RecordQueue::RecordQueue(QueueBudget& budget)
    : m_budget(budget)
{
}

RecordQueue::~RecordQueue()
{
    m_budget.used -= m_bytes;
}

void RecordQueue::push(const Record& record)
{
    const std::size_t size = sizeof(Head) + record.payload.size();
    if (m_chunks.empty() || m_chunks.back().bytes.size() + size > chunkSize) {
        const bool isLongQueue = !m_chunks.empty();
        m_chunks.emplace_back();
        if (isLongQueue)
            m_chunks.back().bytes.reserve(chunkSize);
    }
    std::vector<char>& bytes = m_chunks.back().bytes;
    const Head head{static_cast<std::uint32_t>(record.payload.size()), record.type, record.frame};
    const auto* raw = reinterpret_cast<const char*>(&head);
    bytes.insert(bytes.end(), raw, raw + sizeof head);
    bytes.insert(bytes.end(), record.payload.begin(), record.payload.end());
    m_bytes += size;
    m_budget.used += size;
}

Record RecordQueue::at(const Chunk& chunk, std::size_t& place)
{
    Head head{};
    std::memcpy(&head, chunk.bytes.data() + place, sizeof head);
    const std::string_view payload(chunk.bytes.data() + place + sizeof head, head.size);
    place += sizeof head + head.size;
    return {head.type, head.frame, payload};
}

std::size_t RecordQueue::peek(std::span<Record> records) const
{
    std::size_t count = 0;
    for (const Chunk& chunk : m_chunks) {
        for (std::size_t place = chunk.start; place < chunk.bytes.size();) {
            if (count == records.size())
                return count;
            records[count++] = at(chunk, place);
        }
    }
    return count;
}

void RecordQueue::pop()
{
    Chunk& chunk = m_chunks.front();
    const std::size_t before = chunk.start;
    at(chunk, chunk.start);
    removeBytes(chunk.start - before);
    if (chunk.start == chunk.bytes.size())
        m_chunks.pop_front();
}

std::uint64_t RecordQueue::dropOldest()
{
    if (m_chunks.empty())
        return 0;
    const Chunk& chunk = m_chunks.front();
    std::uint64_t count = 0;
    for (std::size_t place = chunk.start; place < chunk.bytes.size(); ++count)
        at(chunk, place);
    removeBytes(chunk.bytes.size() - chunk.start);
    m_chunks.pop_front();
    return count;
}

void RecordQueue::removeIf(const std::function<bool(const Record&)>& unwanted)
{
    const std::deque<Chunk> before = std::exchange(m_chunks, {});
    removeBytes(m_bytes);
    for (const Chunk& chunk : before) {
        for (std::size_t place = chunk.start; place < chunk.bytes.size();) {
            const Record record = at(chunk, place);
            if (!unwanted(record))
                push(record);
        }
    }
}

void RecordQueue::removeBytes(std::size_t count)
{
    m_bytes -= count;
    m_budget.used -= count;
}

} // namespace launcher
