#include "Host.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <mutex>

namespace layer {

namespace {

const FunctionRow rows[] = {
#include "LayerFunctionTable.inc"
};
static_assert(std::size(rows) == functionCount);

/// Stands in for a function that a driver lacks. Whoever calls it passes more arguments, which the callers of
/// all machines that we know remove themselves.
std::uint64_t doNothing()
{
    return 0;
}

constexpr std::size_t hostLimit = 4;
constinit std::array<Host, hostLimit> hosts;

struct DisplayOfHost {
    EGLDisplay display = nullptr;
    Host* host = nullptr;
};

/// Drivers make few displays and never let go of one, so the first free place is good for ever.
constinit std::array<std::atomic<DisplayOfHost*>, 64> displays;

struct Initialized {
    std::mutex mutex;
    std::map<EGLDisplay, int> counts;
};

/// Never destroyed: threads of the program may still draw while it ends.
Initialized& initialized()
{
    static auto* const initialized = new Initialized;
    return *initialized;
}

} // namespace

const FunctionRow& rowOf(Fn function)
{
    return rows[static_cast<std::size_t>(function)];
}

void* wrapperOf(std::string_view name)
{
    const auto* found = std::lower_bound(std::begin(rows), std::end(rows), name,
        [](const FunctionRow& row, std::string_view wanted) { return row.name < wanted; });
    return found != std::end(rows) && found->name == name ? found->wrapper : nullptr;
}

void* Host::nothing()
{
    return reinterpret_cast<void*>(&doNothing);
}

void* Host::resolve(Fn function)
{
    const Resolver resolver = m_resolver ? m_resolver : firstResolver();
    void* address = resolver ? resolver(rowOf(function).name) : nullptr;
    if (!address)
        address = nothing();
    m_functions[static_cast<std::size_t>(function)].store(address, std::memory_order_relaxed);
    return address;
}

bool Host::has(Fn function)
{
    return this->function<void*>(function) != nothing();
}

Host& hostAt(std::size_t index)
{
    return hosts[std::min(index, hostLimit - 1)];
}

Host* addHost(Host::Resolver resolver)
{
    const auto free = std::ranges::find_if_not(hosts, &Host::isLoaded);
    if (free == hosts.end())
        return nullptr;
    free->setResolver(resolver);
    return &*free;
}

Host& hostOf(EGLDisplay display)
{
    for (const auto& place : displays) {
        const DisplayOfHost* found = place.load(std::memory_order_acquire);
        if (!found)
            break;
        if (found->display == display)
            return *found->host;
    }
    return hosts.front();
}

void setHostOf(EGLDisplay display, Host& host)
{
    auto* added = new DisplayOfHost{display, &host};
    for (auto& place : displays) {
        DisplayOfHost* found = nullptr;
        if (place.compare_exchange_strong(found, added, std::memory_order_acq_rel))
            return;
        if (found->display == display)
            break;
    }
    delete added;
}

void noteInitialized(EGLDisplay display)
{
    Initialized& all = initialized();
    const std::scoped_lock lock(all.mutex);
    ++all.counts[display];
}

void noteTerminated(EGLDisplay display)
{
    Initialized& all = initialized();
    const std::scoped_lock lock(all.mutex);
    const auto found = all.counts.find(display);
    if (found != all.counts.end() && --found->second == 0)
        all.counts.erase(found);
}

bool isInitialized(EGLDisplay display)
{
    Initialized& all = initialized();
    const std::scoped_lock lock(all.mutex);
    return all.counts.contains(display);
}

} // namespace layer
