#include "HeadlessDisplay.h"

#include "Descriptor.h"
#include "ProgramFile.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace checks {

namespace {

constexpr int startTime = 10'000; // milliseconds
constexpr int endTime = 2'000; // milliseconds
constexpr int pause = 10; // milliseconds

/// Starts a program with no streams. It ends with this process.
pid_t startServer(std::vector<std::string> arguments)
{
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid != 0)
        return pid;
    // What the terminal sends is for the program.
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent)
        _exit(1);
    const int null = open("/dev/null", O_RDWR);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(null, stream);
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execvp(pointers[0], pointers.data());
    _exit(127);
}

bool isInstalled(const char* program)
{
    return !launcher::findProgram(program).empty();
}

} // namespace

HeadlessDisplay::~HeadlessDisplay()
{
    if (m_server <= 0)
        return;
    kill(m_server, SIGTERM);
    for (int waited = 0; waitpid(m_server, nullptr, WNOHANG) == 0; waited += pause) {
        if (waited >= endTime)
            kill(m_server, SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
    }
}

bool HeadlessDisplay::start(const std::string& kind)
{
    const bool hasX11 = isInstalled("Xvfb");
    const bool hasWayland = isInstalled("weston");
    if (kind != "wayland" && hasX11)
        return startX11();
    if (kind != "x11" && hasWayland)
        return startWayland();
    m_reason = kind == "x11" ? "Xvfb is not installed (Debian package xvfb)"
        : kind == "wayland"  ? "weston is not installed (Debian package weston)"
                             : "neither Xvfb nor weston is installed (Debian packages xvfb, weston)";
    return false;
}

bool HeadlessDisplay::startX11()
{
    std::array<int, 2> ends{-1, -1};
    if (pipe(ends.data()) != 0) {
        m_reason = "there is no pipe";
        return false;
    }
    const launcher::Descriptor reading(ends[0]);
    launcher::Descriptor writing(ends[1]);
    fcntl(reading.number(), F_SETFD, FD_CLOEXEC);
    m_server = startServer({"Xvfb", "-displayfd", std::to_string(writing.number()), "-screen", "0",
        "1280x1024x24", "-nolisten", "tcp"});
    writing.reset();
    std::string number;
    pollfd waitFor{reading.number(), POLLIN, 0};
    while (!number.ends_with('\n') && poll(&waitFor, 1, startTime) > 0) {
        char digit = 0;
        if (read(reading.number(), &digit, 1) != 1)
            break;
        number += digit;
    }
    if (!number.ends_with('\n')) {
        m_reason = "Xvfb does not start";
        return false;
    }
    number.pop_back();
    setenv("DISPLAY", (":" + number).c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    m_description = "Xvfb :" + number;
    return true;
}

bool HeadlessDisplay::startWayland()
{
    if (const char* folder = std::getenv("XDG_RUNTIME_DIR"); !folder || *folder == '\0') {
        m_folder = std::make_unique<launcher::PrivateFolder>();
        setenv("XDG_RUNTIME_DIR", m_folder->path().c_str(), 1);
    }
    const std::string name = "corvale-" + std::to_string(getpid());
    const std::string path = std::getenv("XDG_RUNTIME_DIR") + ("/" + name);
    m_server = startServer({"weston", "--backend=headless-backend.so", "--socket=" + name, "--idle-time=0",
        "--no-config", "--width=1280", "--height=1024"});
    struct stat status { };
    for (int waited = 0; stat(path.c_str(), &status) != 0; waited += pause) {
        const bool isGone = waitpid(m_server, nullptr, WNOHANG) != 0;
        if (isGone)
            m_server = 0;
        if (isGone || waited >= startTime) {
            m_reason = "weston does not start";
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
    }
    setenv("WAYLAND_DISPLAY", name.c_str(), 1);
    unsetenv("DISPLAY");
    m_description = "weston " + name;
    return true;
}

} // namespace checks
