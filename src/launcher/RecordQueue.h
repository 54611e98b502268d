#pragma once

#include "RingReader.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <vector>

namespace launcher {

using layer::ring::Record;

/// How many bytes of records may wait altogether.
struct QueueBudget {
    std::size_t limit;
    std::size_t used = 0;

    bool isSpent() const { return used >= limit; }
};

/// Records that wait for the window, without the unused bytes at their ends.
class RecordQueue {
public:
    /// The budget outlives the queue.
    explicit RecordQueue(QueueBudget& budget);
    ~RecordQueue();
    RecordQueue(const RecordQueue&) = delete;
    RecordQueue& operator=(const RecordQueue&) = delete;

    void push(const Record& record);
    bool empty() const { return m_chunks.empty(); }
    std::size_t bytes() const { return m_bytes; }

    /// The first records, as many as there are and fit; returns how many. They are valid until the queue is
    /// changed.
    std::size_t peek(std::span<Record> records) const;
    void pop();

    /// Removes some hundred kilobytes of the oldest records; returns how many they were.
    std::uint64_t dropOldest();
    void removeIf(const std::function<bool(const Record&)>& unwanted);

private:
    struct Chunk {
        std::vector<char> bytes;
        std::size_t start = 0; ///< Where the first record stands that has not been removed.
    };

    /// The record at a place of a chunk, which moves behind it.
    static Record at(const Chunk& chunk, std::size_t& place);
    void removeBytes(std::size_t count);

    QueueBudget& m_budget;
    std::deque<Chunk> m_chunks; ///< None of them is empty.
    std::size_t m_bytes = 0;
};

} // namespace launcher
