#pragma once

#include "LayerFunctions.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <string_view>

namespace layer {

/// What a function that the layer stands in front of is called, where the layer's own is, and what it takes.
struct FunctionRow {
    const char* name;
    void* wrapper;
    const char* parameters; ///< For each a letter for its kind, its name and a blank; see make-layer.
    std::uint32_t enumerants; ///< A bit for each parameter that is one.
    std::uint16_t firstLimit; ///< Its rows in limited_functions.txt.
    std::uint16_t limitCount;
};

/// The row of a function; rows are in the order of Fn, that is of their names.
const FunctionRow& rowOf(Fn function);
/// The wrapper of a function by its name; null for one that the registry does not have.
void* wrapperOf(std::string_view name);

/// One EGL driver of the machine. Its functions are asked for when they are first called, since drivers'
/// tables are small, and for most functions no program ever asks.
class Host {
public:
    using Resolver = void* (*)(const char* name);

    Host() = default;
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    void setResolver(Resolver resolver) { m_resolver = resolver; }
    bool isLoaded() const { return m_resolver != nullptr; }

    /// The driver's function; one that does nothing and returns 0 where the driver has none.
    template <typename Pointer> Pointer function(Fn function)
    {
        void* address = m_functions[static_cast<std::size_t>(function)].load(std::memory_order_relaxed);
        if (!address) [[unlikely]]
            address = resolve(function);
        return reinterpret_cast<Pointer>(address);
    }
    /// What stands in for functions that a driver lacks: it does nothing and returns 0.
    static void* nothing();
    /// Whether the driver answers for a function. It may still do nothing.
    bool has(Fn function);

    /// The driver's functions in the order of Fn; null where they were not asked for.
    std::atomic<void*>* functions() { return m_functions.data(); }
    void* resolve(Fn function);

private:
    Resolver m_resolver = nullptr;
    std::array<std::atomic<void*>, functionCount> m_functions{};
};

/// How functions are found before any driver was added. The library that the layer is built into defines it;
/// null where drivers are added before anything is called.
Host::Resolver firstResolver();

/// The drivers; the first is the one that a program gets unless it asks for another's display.
Host& hostAt(std::size_t index);
/// Takes a driver in whose functions are asked for in this way. Null where there are too many.
Host* addHost(Host::Resolver resolver);

/// The driver that made a display; the first one for displays that none has made.
Host& hostOf(EGLDisplay display);
void setHostOf(EGLDisplay display, Host& host);

/// Initializations and ends of a display are counted, since a driver that is asked tells the program's debug
/// callback of an error. Only displays that track references take as many ends; others end with the first.
void noteInitialized(EGLDisplay display);
void noteTerminated(EGLDisplay display);
/// Where this says no, the display has ended.
bool isInitialized(EGLDisplay display);

} // namespace layer
