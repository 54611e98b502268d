// Stands in for a watched program: writes into a ring as the layer does, and ends in every way there is. Its
// arguments are steps that it takes one after the other.

#include "Message.h"
#include "RingWriter.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <pthread.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using layer::ring::Writer;
using ui::messages::Type;

std::unique_ptr<Writer> writer;
std::uint32_t written = 0;
volatile std::sig_atomic_t interruptions = 0;

void greet()
{
    const char* socket = std::getenv("CORVALE_LAYER_SOCKET");
    writer = socket ? Writer::connect(socket, 0) : nullptr;
    if (!writer) {
        std::puts("unwatched");
        std::exit(90);
    }
}

void write(std::uint32_t type, std::string_view payload)
{
    writer->write(type, ++written, {payload});
}

void writeErrors(int count, std::size_t size)
{
    std::string payload(4 + 64, '\0');
    payload.replace(0, 2, "\x02\x05");
    payload.replace(4, 12, "glDrawArrays");
    payload.append(size, 'x');
    for (int i = 0; i < count; ++i) {
        write(static_cast<std::uint32_t>(Type::GlError), payload);
        // No launcher can follow one who writes large records and nothing else.
        if (size > 1000 && i % 50 == 0)
            usleep(1000);
    }
}

/// Overwrites the whole ring, wherever it is mapped.
void scribble()
{
    std::FILE* maps = std::fopen("/proc/self/maps", "r");
    char line[512];
    while (std::fgets(line, sizeof line, maps)) {
        void* from = nullptr;
        void* to = nullptr;
        if (std::strstr(line, "corvale-ring") && std::sscanf(line, "%p-%p", &from, &to) == 2)
            std::memset(
                from, 0x5A, static_cast<std::size_t>(static_cast<char*>(to) - static_cast<char*>(from)));
    }
    std::fclose(maps);
}

void takeTime(const std::vector<std::string>& arguments, std::size_t& at)
{
    const auto start = std::chrono::steady_clock::now();
    const int count = std::stoi(arguments[++at]);
    writeErrors(count, static_cast<std::size_t>(std::stoi(arguments[++at])));
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    std::printf("%.3f\n", time.count());
    std::fflush(stdout);
}

/// Stops a process for a while.
void stop(pid_t process)
{
    if (fork() == 0) {
        usleep(300'000);
        kill(process, SIGCONT);
        _exit(0);
    }
    kill(process, SIGSTOP);
}

/// Returns when the ring takes nothing any more. A function of its own, since the address sanitizer loses
/// track of the variables in a frame that a cancellation unwinds.
[[gnu::noinline]] void fillRing()
{
    while (writer->write(static_cast<std::uint32_t>(Type::Warning), 0, {std::string(8000, 'x')}))
        continue;
}

/// Cancels a thread that waits for room, since nobody reads.
void cancel()
{
    stop(getppid());
    std::thread thread([] {
        fillRing();
        for (;;)
            pthread_testcancel();
    });
    pthread_cancel(thread.native_handle());
    thread.join();
}

/// Ends the process in the way of a step; returns for all other steps.
void endBy(const std::string& step, const std::vector<std::string>& arguments, std::size_t at)
{
    if (step == "exit") {
        writer->end();
        std::exit(std::stoi(arguments[at + 1]));
    }
    if (step == "_exit")
        _exit(std::stoi(arguments[at + 1]));
    if (step == "signal") {
        // The sanitizers catch some.
        std::signal(std::stoi(arguments[at + 1]), SIG_DFL);
        raise(std::stoi(arguments[at + 1]));
    }
    if (step != "exec")
        return;
    std::vector<char*> rest;
    for (std::size_t i = at + 1; i < arguments.size(); ++i)
        rest.push_back(const_cast<char*>(arguments[i].c_str()));
    rest.push_back(nullptr);
    execvp(rest[0], rest.data());
}

void takeStep(const std::vector<std::string>& arguments, std::size_t& at)
{
    const std::string& step = arguments[at];
    endBy(step, arguments, at);
    if (step == "errors") {
        writeErrors(std::stoi(arguments[++at]), 20);
    } else if (step == "time") {
        takeTime(arguments, at);
    } else if (step == "type") {
        write(static_cast<std::uint32_t>(std::stoi(arguments[++at])), "text");
    } else if (step == "frames") {
        for (int count = std::stoi(arguments[++at]); count > 0; --count)
            writer->countFrame();
    } else if (step == "cancel") {
        cancel();
    } else if (step == "stop") {
        stop(getpid());
    } else if (step == "scribble") {
        scribble();
    } else if (step == "close") {
        closefrom(0);
    } else if (step == "fork") {
        if (fork() == 0) {
            writer->abandon();
            greet();
        } else {
            wait(nullptr);
        }
    } else if (step == "leave") {
        if (fork() != 0)
            _exit(0);
    } else if (step == "catch") {
        std::signal(std::stoi(arguments[++at]), [](int) { interruptions = interruptions + 1; });
    } else if (step == "read") {
        std::puts("ready");
        std::fflush(stdout);
        char byte = 0;
        while (::read(0, &byte, 1) < 0)
            continue;
        std::printf("%d interruptions\n", static_cast<int>(interruptions));
        std::fflush(stdout);
    } else if (step == "wireframe") {
        while (!writer->isWireframe())
            usleep(1000);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty() || arguments.front() != "unwatched")
        greet();
    for (std::size_t at = 0; at < arguments.size(); ++at)
        takeStep(arguments, at);
    if (writer)
        writer->end();
    return 0;
}
