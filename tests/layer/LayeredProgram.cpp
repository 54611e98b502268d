#include "LayeredProgram.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using layer::ring::Reader;

std::string makeFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "layer-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary folder");
    return name;
}

int listenAt(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0
        || listen(listener, 16) != 0)
        throw std::runtime_error("cannot listen at " + path);
    return listener;
}

/// The descriptor that came with a greeting; -1 without one.
int receiveDescriptor(int connection)
{
    layer::ring::Greeting greeting;
    iovec part{&greeting, sizeof greeting};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    int descriptor = -1;
    if (recvmsg(connection, &message, MSG_CMSG_CLOEXEC) == ssize_t{sizeof greeting}
        && CMSG_FIRSTHDR(&message))
        std::memcpy(&descriptor, CMSG_DATA(CMSG_FIRSTHDR(&message)), sizeof descriptor);
    return descriptor;
}

} // namespace

std::uint32_t SentRecord::number(std::size_t at) const
{
    std::uint32_t value = 0;
    if (at + sizeof value <= payload.size())
        std::memcpy(&value, payload.data() + at, sizeof value);
    return value;
}

std::string SentRecord::text(std::size_t at) const
{
    const std::string rest = payload.substr(std::min(at, payload.size()));
    return rest.substr(0, rest.find('\0'));
}

LayeredProgram::LayeredProgram(
    std::vector<std::string> command, Layer layer, std::map<std::string, std::string> environment)
    : m_folder(makeFolder())
    , m_listener(listenAt(m_folder + "/socket"))
{
    if (layer == Layer::Vendor) {
        std::ofstream(m_folder + "/vendor.json")
            << R"({"file_format_version": "1.0.0", "ICD": {"library_path": ")" CORVALE_VENDOR_LIBRARY
               R"("}})";
        environment["CORVALE_LAYER_HOST"] = "libEGL_mesa.so.0";
        environment["__EGL_VENDOR_LIBRARY_FILENAMES"] = m_folder + "/vendor.json";
    } else if (layer == Layer::Preload) {
        environment["LD_PRELOAD"] = CORVALE_PRELOAD_LIBRARY;
    }
    if (layer != Layer::None)
        environment["CORVALE_LAYER_SOCKET"] = m_folder + "/socket";
    // Drivers keep memory to the end, and a preloaded library comes before the sanitizer's.
    environment.emplace("ASAN_OPTIONS", "detect_leaks=0:verify_asan_link_order=0");
    int input[2], output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    m_pid = fork();
    if (m_pid == 0) {
        dup2(input[0], STDIN_FILENO);
        dup2(output[1], STDOUT_FILENO);
        for (const auto& [name, value] : environment)
            setenv(name.c_str(), value.c_str(), 1);
        std::vector<char*> arguments;
        for (std::string& argument : command)
            arguments.push_back(argument.data());
        arguments.push_back(nullptr);
        execvp(arguments.front(), arguments.data());
        _exit(127);
    }
    close(input[0]);
    close(output[1]);
    m_input = input[1];
    m_output = output[0];
}

LayeredProgram::~LayeredProgram()
{
    if (m_status == -1) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, &m_status, 0);
    }
    close(m_input);
    close(m_output);
    close(m_listener);
    std::filesystem::remove_all(m_folder);
}

void LayeredProgram::takeGreetings()
{
    for (int connection; (connection = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;
         close(connection)) {
        const int memory = receiveDescriptor(connection);
        std::unique_ptr<Reader> ring = memory < 0 ? nullptr : Reader::open(memory);
        close(memory);
        if (ring)
            m_rings.push_back(std::move(ring));
    }
}

void LayeredProgram::drain()
{
    takeGreetings();
    layer::ring::Record record;
    for (const auto& ring : m_rings) {
        while (ring->next(record) == Reader::Next::Record)
            m_records.push_back({record.type, record.frame, std::string(record.payload)});
    }
}

std::string LayeredProgram::ask(const std::string& line)
{
    drain();
    const std::string ended = line + '\n';
    std::string answer;
    char letter = '\0';
    if (write(m_input, ended.data(), ended.size()) == static_cast<ssize_t>(ended.size())) {
        while (read(m_output, &letter, 1) == 1 && letter != '\n')
            answer += letter;
    }
    drain();
    return answer;
}

void LayeredProgram::setWireframe(bool on)
{
    takeGreetings();
    for (const auto& ring : m_rings)
        ring->setWireframe(on);
}

std::string LayeredProgram::finish()
{
    close(m_input);
    m_input = -1;
    std::string printed;
    char bytes[4096];
    pollfd readable{m_output, POLLIN, 0};
    for (ssize_t size = 1; size != 0;) {
        size = poll(&readable, 1, 5) > 0 ? read(m_output, bytes, sizeof bytes) : -1;
        if (size > 0)
            printed.append(bytes, static_cast<std::size_t>(size));
        drain();
    }
    waitpid(m_pid, &m_status, 0);
    drain();
    return printed;
}

std::vector<SentRecord> LayeredProgram::recordsOf(std::uint32_t type) const
{
    std::vector<SentRecord> found;
    for (const SentRecord& record : m_records) {
        if (record.type == type)
            found.push_back(record);
    }
    return found;
}
