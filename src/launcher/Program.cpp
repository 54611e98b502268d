#include "Program.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>

namespace launcher {

namespace {

/// What is passed on to the program when someone sends it to the launcher.
constexpr std::array passedOn{SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGUSR1, SIGUSR2};
/// What must not touch the launcher: the program decides whether it stops, and the launcher follows.
constexpr std::array keptAway{SIGTSTP, SIGTTOU, SIGPIPE};

std::vector<std::string> changedEnvironment(const Changes& changes)
{
    std::vector<std::string> result;
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view variable(*entry);
        if (!changes.contains(std::string(variable.substr(0, variable.find('=')))))
            result.emplace_back(variable);
    }
    for (const auto& [name, value] : changes)
        result.emplace_back(name).append("=").append(value);
    return result;
}

/// As the functions of the exec family want it. It points into the texts.
std::vector<char*> pointersTo(const std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

Program::Program()
{
    sigset_t caught{};
    sigemptyset(&caught);
    sigaddset(&caught, SIGCHLD);
    for (const int number : passedOn)
        sigaddset(&caught, number);
    sigset_t blocked = caught;
    for (const int number : keptAway)
        sigaddset(&blocked, number);
    sigprocmask(SIG_BLOCK, &blocked, &m_maskBefore);
    // Whoever started us may ignore it; the system would then forget how the program ended.
    struct sigaction byDefault { };
    byDefault.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &byDefault, &m_childActionBefore);
    m_signals = Descriptor(signalfd(-1, &caught, SFD_CLOEXEC | SFD_NONBLOCK));
}

int Program::start(
    const std::vector<std::string>& arguments, const Changes& environment, const OutputEnds& output)
{
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return errno;
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    m_pid = fork();
    if (m_pid < 0)
        return errno;
    if (m_pid == 0)
        execute(arguments, environment, output, writing);
    writing.reset();
    int error = 0;
    ssize_t size = 0;
    do
        size = read(reading.number(), &error, sizeof error);
    while (size < 0 && errno == EINTR);
    if (size != ssize_t{sizeof error})
        return 0;
    waitpid(m_pid, nullptr, 0);
    return error;
}

void Program::execute(const std::vector<std::string>& arguments, const Changes& environment,
    const OutputEnds& output, const Descriptor& report)
{
    const std::vector<std::string> variables = changedEnvironment(environment);
    const std::vector<char*> variablePointers = pointersTo(variables);
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    for (std::size_t i = 0; i < output.size(); ++i) {
        if (output[i] >= 0)
            dup2(output[i], STDOUT_FILENO + static_cast<int>(i));
    }
    sigaction(SIGCHLD, &m_childActionBefore, nullptr);
    sigprocmask(SIG_SETMASK, &m_maskBefore, nullptr);
    execvpe(argumentPointers[0], argumentPointers.data(), variablePointers.data());
    const int error = errno;
    // Nothing can be done where even this fails: the launcher takes the code for the program's.
    [[maybe_unused]] const ssize_t size = write(report.number(), &error, sizeof error);
    _exit(127);
}

void Program::handleSignals()
{
    signalfd_siginfo signal{};
    while (read(m_signals.number(), &signal, sizeof signal) == ssize_t{sizeof signal}) {
        const int number = static_cast<int>(signal.ssi_signo);
        if (number != SIGCHLD)
            pass(number, signal.ssi_code == SI_KERNEL);
        else
            m_mayHaveEnded = true;
    }
}

void Program::pass(int number, bool fromTerminal)
{
    if (m_hasEnded) {
        m_isInterrupted = true;
        return;
    }
    // What the terminal sends, it has sent to the program as well.
    if (!fromTerminal && m_pid > 0)
        kill(m_pid, number);
}

std::optional<ProcessEnd> Program::collectEnd()
{
    m_mayHaveEnded = false;
    int status = 0;
    while (waitpid(m_pid, &status, WNOHANG | WUNTRACED) == m_pid) {
        m_hasEnded = !WIFSTOPPED(status);
        if (m_hasEnded)
            return ProcessEnd::fromStatus(status);
        // That one stops a job as a whole, or the program alone, and then it goes on alone.
        if (!m_hasEnded && WSTOPSIG(status) == SIGSTOP)
            continue;
        // The shell is to see that its job has stopped; when it lets us go on, the program does as well.
        raise(SIGSTOP);
        kill(m_pid, SIGCONT);
    }
    return std::nullopt;
}

void Program::endLike(const ProcessEnd& end, int exitCode)
{
    if (end.kind != ProcessEnd::Kind::Killed)
        exit(exitCode);
    // The program has left a core if there is to be one.
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    std::signal(end.number, SIG_DFL);
    sigset_t one{};
    sigemptyset(&one);
    sigaddset(&one, end.number);
    raise(end.number);
    sigprocmask(SIG_UNBLOCK, &one, nullptr);
    // Only a signal that does not kill comes so far.
    _exit(128 + end.number);
}

} // namespace launcher
