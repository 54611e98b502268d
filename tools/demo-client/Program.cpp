#include "Program.h"

#include "Connection.h"
#include "Interruption.h"
#include "Scenarios.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include <poll.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

using ui::messages::Message;
using ui::messages::Type;

namespace demo {

namespace {

constexpr int pollTime = 20; ///< Milliseconds between two looks at the children.

std::string clientName(const Options& options, std::uint32_t number)
{
    std::string name = options.name;
    if (name.empty()) {
        switch (options.scenario) {
        case Scenario::Tour:
            name = "Brass Heron";
            break;
        case Scenario::Flood:
            name = "Flood";
            break;
        case Scenario::Crash:
            name = "Brass Heron (crash)";
            break;
        case Scenario::Hostile:
            name = "Hostile client";
            break;
        }
    }
    return number == 1 ? name : name + ' ' + std::to_string(number);
}

std::string describe(const Message& control)
{
    switch (control.type()) {
    case Type::NotifyServerStop:
        return "stop notice";
    case Type::WireframeOn:
        return "wireframe on";
    case Type::WireframeOff:
        return "wireframe off";
    default:
        return "unknown record of type " + std::to_string(control.rawType());
    }
}

/// Several clients print at once, so that a line goes out whole or not at all.
void printLine(std::ostream& stream, const std::string& line)
{
    stream << line + '\n' << std::flush;
}

/// Killed like a process that crashed: nothing is cleaned up, no destructor runs.
[[noreturn]] void die()
{
    std::raise(SIGKILL);
    std::abort();
}

void printFlood(const std::string& name, const FloodProgress& progress)
{
    const std::chrono::duration<double> time = progress.lastSent - progress.start;
    std::ostringstream line;
    line << name << ": sent " << progress.sent << " messages in " << std::fixed << std::setprecision(3)
         << time.count() << " s";
    if (time.count() > 0)
        line << " (" << std::setprecision(0) << static_cast<double>(progress.sent) / time.count()
             << " per second)";
    printLine(std::cout, line.str());
}

void playFloodAndTell(Session& session, const Options& options, const std::string& name)
{
    FloodProgress progress;
    try {
        playFlood(session, options.count, options.rate, progress);
    } catch (const SessionOver&) {
        printFlood(name, progress);
        throw;
    }
    printFlood(name, progress);
}

void play(Session& session, const Options& options, const std::string& name)
{
    session.introduce(name);
    switch (options.scenario) {
    case Scenario::Tour:
        playTour(session);
        break;
    case Scenario::Flood:
        playFloodAndTell(session, options, name);
        break;
    case Scenario::Crash:
        playCrash(session);
        die();
    case Scenario::Hostile:
        playHostile(session, name);
        break;
    }
    if (!options.stay)
        return;
    printLine(std::cout, name + ": staying until a stop notice, SIGINT or SIGTERM");
    for (;;)
        session.output().pause(std::chrono::hours(1));
}

int runClient(const Options& options, std::uint32_t number)
{
    const std::string name = clientName(options, number);
    try {
        const int descriptor = connectTo(socketPath(options.socket));
        Connection connection(descriptor, [&name](const Message& control) {
            printLine(std::cout, name + ": received " + describe(control));
        });
        Session session(
            connection, options.scenario == Scenario::Flood ? Clock::duration::zero() : options.pace);
        try {
            play(session, options, name);
        } catch (const SessionOver& over) {
            if (over.reason() == SessionOver::Reason::Closed)
                throw;
            printLine(std::cout, name + ": ending, " + over.what());
        }
        const Message behind = recordBehindGoodbye();
        session.sayGoodbye(options.scenario == Scenario::Hostile ? bytesOf(behind) : std::string_view());
        return EXIT_SUCCESS;
    } catch (const std::runtime_error& problem) {
        printLine(std::cerr, "demo-client: " + name + ": " + problem.what());
        return EXIT_FAILURE;
    }
}

bool endedWell(int status, const Options& options)
{
    if (WIFEXITED(status))
        return WEXITSTATUS(status) == EXIT_SUCCESS;
    return options.scenario == Scenario::Crash && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

/// Waits for all children, hands an interruption on to them, and tells whether all ended as they should.
bool waitForAll(std::vector<pid_t> children, const Options& options)
{
    bool isWell = true;
    bool isHandedOn = false;
    while (!children.empty()) {
        if (interruption::isRequested() && !isHandedOn) {
            isHandedOn = true;
            for (const pid_t child : children)
                kill(child, SIGTERM);
        }
        std::erase_if(children, [&](pid_t child) {
            int status = 0;
            if (waitpid(child, &status, WNOHANG) != child)
                return false;
            isWell = endedWell(status, options) && isWell;
            return true;
        });
        poll(nullptr, 0, pollTime);
    }
    return isWell;
}

int runClients(const Options& options)
{
    std::vector<pid_t> children;
    bool allStarted = true;
    for (std::uint32_t number = 1; number <= options.clients && allStarted; ++number) {
        const pid_t child = fork();
        if (child == 0)
            return runClient(options, number);
        if (child > 0)
            children.push_back(child);
        else {
            allStarted = false;
            printLine(std::cerr,
                "demo-client: Cannot start client " + std::to_string(number) + ": "
                    + std::generic_category().message(errno) + '.');
        }
    }
    return waitForAll(std::move(children), options) && allStarted ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int run(const Options& options)
{
    interruption::watch();
    return options.clients == 1 ? runClient(options, 1) : runClients(options);
}

} // namespace demo
