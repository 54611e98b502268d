// Scribbles over a ring between reads: whatever stands there, the reader must come to an end, hand out
// nothing that is not in the ring, and stay broken once it is.

#include "RecordQueue.h"
#include "RingReader.h"
#include "WholeRecord.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include <fcntl.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace layer::ring;
using ui::messages::recordSize;

constexpr std::size_t size = headerSize + ringSize;
constexpr int readLimit = 2000; // records between two scribbles

void demand(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

/// The program's view of the ring, with the descriptor that its launcher would get.
struct Memory {
    int descriptor = memfd_create("ring", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    char* bytes = nullptr;

    Memory()
    {
        demand(ftruncate(descriptor, size) == 0, "memory");
        demand(Reader::open(descriptor) == nullptr, "memory without seals is refused");
        fcntl(descriptor, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW);
        bytes = static_cast<char*>(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0));
    }
    /// Forgets the pages, so that everything is zero again.
    void clear() const { madvise(bytes, size, MADV_REMOVE); }
};

/// Writes a few bytes where the next record is, or anywhere; and moves the head, sensibly or not.
void scribble(FuzzedDataProvider& input, Header& header, char* ring, std::uint64_t tail)
{
    const std::string text = input.ConsumeRandomLengthString(64);
    const std::uint64_t place =
        (input.ConsumeBool() ? tail : input.ConsumeIntegral<std::uint32_t>()) % ringSize;
    std::memcpy(ring + place, text.data(), std::min<std::size_t>(text.size(), ringSize - place));
    if (input.ConsumeBool())
        header.head = tail + input.ConsumeIntegralInRange<std::uint32_t>(0, ringSize / alignment) * alignment;
    else if (input.ConsumeBool())
        header.head = input.ConsumeIntegral<std::uint64_t>();
    if (input.ConsumeBool())
        header.tail = input.ConsumeIntegral<std::uint64_t>();
    header.dropped = input.ConsumeIntegral<std::uint8_t>();
}

void check(const Record& record, launcher::RecordQueue& queue)
{
    demand(
        record.payload.size() <= recordSize - ui::messages::offset::payload, "a payload fits into a record");
    const launcher::WholeRecord whole(record);
    ui::messages::Message message;
    demand(whole.copyTo(message) <= recordSize, "a whole record is no longer than a record");
    demand(message.rawType() == record.type, "a whole record has its type");
    queue.push(record);
    Record queued;
    demand(queue.peek({&queued, 1}) == 1 && queued.payload == record.payload, "the queue keeps the payload");
    queue.pop();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    static const Memory memory;
    FuzzedDataProvider input(bytes, count);
    memory.clear();
    auto* header = new (memory.bytes) Header;
    header->magic = magic;
    header->ringSize = ringSize;
    const std::unique_ptr<Reader> reader = Reader::open(memory.descriptor);
    demand(reader != nullptr, "a ring is taken");

    launcher::QueueBudget budget{1U << 20U};
    launcher::RecordQueue queue(budget);
    std::uint64_t tail = 0;
    bool isBroken = false;
    while (input.remaining_bytes() > 0) {
        scribble(input, *header, memory.bytes + headerSize, tail);
        for (int i = 0; i < readLimit; ++i) {
            Record record;
            const Reader::Next next = reader->next(record);
            demand(!isBroken || next == Reader::Next::Broken, "a broken ring stays broken");
            isBroken = next == Reader::Next::Broken;
            if (next != Reader::Next::Record)
                break;
            tail += spaceOf(record.payload.size());
            demand(header->tail == tail, "the tail moves by what was read");
            check(record, queue);
        }
    }
    return 0;
}
