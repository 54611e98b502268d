#include "RingWriter.h"

#include "Message.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <linux/futex.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

namespace layer::ring {

namespace {

constexpr std::size_t payloadLimit = ui::messages::recordSize - ui::messages::offset::payload;
constexpr std::int64_t millisecond = 1'000'000;
/// What may be waited at once, before a tenth of the time adds up to anything.
constexpr std::int64_t firstAllowance = 100 * millisecond;

/// True while this thread writes: a signal handler that draws must not wait for the lock that it interrupted.
thread_local bool writing = false;

/// While this lives, a thread of the program is not cancelled, since where it waits here it would not alone.
class Uncancelled {
public:
    Uncancelled() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_before); }
    ~Uncancelled() { pthread_setcancelstate(m_before, nullptr); }
    Uncancelled(const Uncancelled&) = delete;
    Uncancelled& operator=(const Uncancelled&) = delete;

private:
    int m_before = PTHREAD_CANCEL_ENABLE;
};

std::int64_t now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{time.tv_sec} * 1000 * millisecond + time.tv_nsec;
}

void fillArguments(Greeting& greeting)
{
    const int file = open("/proc/self/cmdline", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return;
    const ssize_t size = read(file, greeting.arguments, sizeof greeting.arguments - 1);
    close(file);
    greeting.argumentsSize = size > 0 ? static_cast<std::uint32_t>(size) : 0;
}

bool greet(const char* socketPath, std::uint32_t via, int memory)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::size_t length = std::strlen(socketPath);
    if (length >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, socketPath, length);

    const int socket = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket < 0)
        return false;
    Greeting greeting;
    greeting.via = via;
    fillArguments(greeting);
    iovec part{&greeting, sizeof greeting};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr* carried = CMSG_FIRSTHDR(&message);
    carried->cmsg_level = SOL_SOCKET;
    carried->cmsg_type = SCM_RIGHTS;
    carried->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(carried), &memory, sizeof memory);

    // A launcher that is busy with many others at once has a full queue for a moment.
    int connected = -1;
    for (int attempt = 0; attempt < 20 && connected != 0; ++attempt) {
        connected = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        if (connected != 0 && errno != EAGAIN)
            break;
        if (connected != 0)
            usleep(1000);
    }
    const bool greeted =
        connected == 0 && sendmsg(socket, &message, MSG_NOSIGNAL) == ssize_t{sizeof greeting};
    close(socket);
    return greeted;
}

} // namespace

std::unique_ptr<Writer> Writer::connect(const char* socketPath, std::uint32_t via)
{
    const Uncancelled uncancelled;
    const int memory = memfd_create("corvale-ring", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (memory < 0)
        return nullptr;
    constexpr std::size_t size = headerSize + ringSize;
    void* mapped = MAP_FAILED;
    if (ftruncate(memory, size) == 0
        && fcntl(memory, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) == 0)
        mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0);
    std::unique_ptr<Writer> writer;
    if (mapped != MAP_FAILED) {
        writer.reset(new Writer(new (mapped) Header));
        if (!greet(socketPath, via, memory))
            writer.reset();
    }
    close(memory);
    return writer;
}

Writer::Writer(Header* header)
    : m_header(header)
    , m_data(reinterpret_cast<char*>(header) + headerSize)
    , m_created(now())
{
    header->magic = magic;
    header->ringSize = ringSize;
}

Writer::~Writer()
{
    if (m_header)
        munmap(m_header, headerSize + ringSize);
}

void Writer::abandon() noexcept
{
    m_header = nullptr;
}

bool Writer::write(
    std::uint32_t type, std::uint32_t frame, std::initializer_list<std::string_view> payload) noexcept
{
    if (writing || m_header->stopped.load(std::memory_order_relaxed) != 0) {
        m_header->dropped.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    writing = true;
    std::size_t size = 0;
    for (const std::string_view part : payload)
        size += part.size();
    size = std::min(size, payloadLimit);

    const std::scoped_lock lock(m_mutex);
    const bool fits = waitForRoom(spaceOf(size));
    if (fits) {
        std::uint64_t at = m_head;
        const RecordHead head{static_cast<std::uint32_t>(size), type, frame, 0};
        put(at, &head, sizeof head);
        for (const std::string_view part : payload) {
            const std::size_t length = std::min(part.size(), size);
            put(at, part.data(), length);
            size -= length;
        }
        m_head += spaceOf(at - m_head - sizeof head);
        m_header->head.store(m_head, std::memory_order_release);
        ring();
    } else {
        m_header->dropped.fetch_add(1, std::memory_order_relaxed);
    }
    writing = false;
    return fits;
}

void Writer::put(std::uint64_t& at, const void* bytes, std::size_t size) noexcept
{
    const std::size_t place = at % ringSize;
    const std::size_t first = std::min<std::size_t>(size, ringSize - place);
    std::memcpy(m_data + place, bytes, first);
    std::memcpy(m_data, static_cast<const char*>(bytes) + first, size - first);
    at += size;
}

bool Writer::waitForRoom(std::uint64_t space) noexcept
{
    const auto fits = [&] {
        return m_head + space - m_header->tail.load(std::memory_order_acquire) <= ringSize;
    };
    if (fits())
        return true;
    const Uncancelled uncancelled;
    const std::int64_t started = now();
    const std::int64_t allowed = firstAllowance + (started - m_created) / 10 - m_waited;
    std::int64_t waited = 0;
    while (waited < allowed && m_header->stopped.load(std::memory_order_relaxed) == 0) {
        const timespec pause{0, 100'000};
        nanosleep(&pause, nullptr);
        waited = now() - started;
        if (fits())
            break;
    }
    m_waited += waited;
    return fits();
}

void Writer::ring() noexcept
{
    std::atomic_thread_fence(std::memory_order_seq_cst);
    if (m_header->sleeping.load(std::memory_order_relaxed) == 0)
        return;
    m_header->doorbell.fetch_add(1, std::memory_order_relaxed);
    syscall(SYS_futex, &m_header->doorbell, FUTEX_WAKE, 1, nullptr, nullptr, 0);
}

} // namespace layer::ring
