// Reads session files that nobody wrote: whatever stands there, the reader must come to an end and hand out
// only records that the wire could have. Half of the inputs are blocks with right checksums, so that what is
// behind these is reached as well. Lists of known kinds are read on the way.

#include "Findings.h"
#include "Hash.h"
#include "KnownKinds.h"
#include "PackedPayload.h"
#include "SessionReader.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <fuzzer/FuzzedDataProvider.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

void demand(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

std::string sessionOf(FuzzedDataProvider& input)
{
    namespace format = sessions::format;
    std::string bytes(format::magic);
    format::putNumber(bytes, format::version, 4);
    format::putNumber(bytes, 0, 4);
    format::putNumber(bytes, 0, 8);
    constexpr std::array kinds{format::clientBlock, format::deviceBlock, format::recordsBlock,
        format::endBlock, format::blockKind("LATE")};
    while (input.remaining_bytes() > 0) {
        const std::string content = input.ConsumeRandomLengthString(600);
        format::BlockHead head;
        head.kind = input.PickValueInArray(kinds);
        head.storedSize = static_cast<std::uint32_t>(content.size());
        head.size = input.ConsumeBool() ? head.storedSize : input.ConsumeIntegral<std::uint16_t>();
        head.count = input.ConsumeIntegral<std::uint8_t>();
        head.checksum = platform::fnv1(content);
        bytes += head.bytes() + content;
    }
    return bytes;
}

void readSession(const std::string& bytes)
{
    const int file = memfd_create("session", MFD_CLOEXEC);
    demand(write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "memory");
    sessions::SessionReader reader;
    sessions::Findings findings;
    if (reader.open("/proc/self/fd/" + std::to_string(file))) {
        std::uint64_t count = 0;
        for (std::size_t block = 0; block < reader.blockCount(); ++block) {
            reader.read(block, [&](const sessions::SessionRecord& record) {
                demand(record.client < reader.clients().size(), "a record has a client");
                demand(record.record.payload.size() <= sessions::payloadLimit, "a payload has an end");
                findings.add(record.record);
                ++count;
            });
        }
        demand(count <= reader.recordCount(), "no more records than announced");
    }
    close(file);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const auto mode = input.ConsumeIntegralInRange<int>(0, 2);
    if (mode == 0) {
        readSession(input.ConsumeRemainingBytesAsString());
    } else if (mode == 1) {
        readSession(sessionOf(input));
    } else {
        sessions::KnownKinds kinds;
        if (kinds.parse("corvale-findings 1\n" + input.ConsumeRemainingBytesAsString())) {
            sessions::KnownKinds again;
            demand(again.parse(kinds.toText()), "what is written can be read");
            demand(again.all() == kinds.all(), "what is read is what was written");
        }
    }
    return 0;
}
