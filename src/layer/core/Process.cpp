#include "Process.h"

#include <cstdlib>
#include <mutex>
#include <sstream>

#include <pthread.h>

namespace layer {

namespace {

std::atomic<ring::Writer*> currentWriter{nullptr};
std::atomic<bool> asked{false}; ///< Whether the launcher was greeted, with or without success.
std::atomic<Via> currentVia{Via::VendorLibrary};

std::mutex& mutex()
{
    static auto* const mutex = new std::mutex;
    return *mutex;
}

std::vector<std::atomic_flag*>& flagsOfProcess()
{
    static auto* const flags = new std::vector<std::atomic_flag*>;
    return *flags;
}

/// The parent goes on with the ring. Its child gets one of its own if it draws at all; the object is left
/// alone, since another thread may have been in the middle of it.
void startAnew()
{
    currentWriter = nullptr;
    asked = false;
    new (&mutex()) std::mutex;
    for (std::atomic_flag* flag : flagsOfProcess())
        flag->clear();
}

struct AtExit {
    AtExit() { pthread_atfork(nullptr, nullptr, &startAnew); }
    ~AtExit()
    {
        if (ring::Writer* writer = currentWriter)
            writer->end();
    }
};
AtExit atExit;

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

Options readOptions()
{
    Options options;
    options.socket = environment("CORVALE_LAYER_SOCKET");
    options.device = environment("CORVALE_LAYER_DEVICE");
    std::istringstream libraries(environment("CORVALE_LAYER_HOST"));
    for (std::string library; std::getline(libraries, library, ':');) {
        if (!library.empty())
            options.hostLibraries.push_back(library);
    }
    std::istringstream words(environment("CORVALE_LAYER_OPTIONS"));
    for (std::string word; words >> word;) {
        options.errors = options.errors && word != "no-errors";
        options.debugOutput = options.debugOutput && word != "get-error";
        options.strict = options.strict || word == "strict";
    }
    return options;
}

} // namespace

const Options& options()
{
    // Programs change their environment; what counts is what it was at first.
    static const auto* const options = new Options(readOptions());
    return *options;
}

ring::Writer* writer()
{
    if (asked.load(std::memory_order_acquire)) [[likely]]
        return currentWriter.load(std::memory_order_relaxed);
    const std::scoped_lock lock(mutex());
    if (!asked && !options().socket.empty())
        currentWriter =
            ring::Writer::connect(options().socket.c_str(), static_cast<std::uint32_t>(currentVia.load()))
                .release();
    asked.store(true, std::memory_order_release);
    return currentWriter;
}

void setVia(Via via)
{
    currentVia = via;
}

bool isFirst(std::atomic_flag& flag)
{
    if (flag.test_and_set())
        return false;
    const std::scoped_lock lock(mutex());
    std::erase(flagsOfProcess(), &flag);
    flagsOfProcess().push_back(&flag);
    return true;
}

} // namespace layer
