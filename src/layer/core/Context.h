#pragma once

#include "Host.h"

#include <array>
#include <memory>
#include <optional>

namespace layer {

class DebugState;
class DeviceGate;

namespace device {
struct Api;
}

/// What the driver said about the call that runs, gathered by its debug callback.
struct PendingErrors {
    std::array<char, 1024> text{}; ///< Of all messages, one a line.
    std::size_t size = 0; ///< Bytes of the text.
};

/// One rendering context of the program, or the stand-in of threads without one. A context is current in one
/// thread at most, so nothing here needs a lock.
class Context {
public:
    Context();
    ~Context();
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    /// The function as the program gets it: the driver's, or one that refuses where a device lacks it. What
    /// the layer itself asks goes to the host.
    template <typename Pointer> Pointer function(Fn function) const
    {
        void* address = functions[static_cast<std::size_t>(function)].load(std::memory_order_relaxed);
        if (!address) [[unlikely]]
            address = resolve(function);
        return reinterpret_cast<Pointer>(address);
    }

    /// The driver's error flag, which is clear afterwards.
    GLenum takeHostError() const;
    /// Lets the program's glGetError() find an error, unless it has an earlier one to find.
    void keep(GLenum code);

    // What each call looks at stands first.
    std::atomic<void*>* functions; ///< Of the host, or of the gate.
    const DeviceGate* gate = nullptr; ///< Of the device that the program sees; null for the host's own.
    bool mustCheck = false; ///< Whether checkGl() is to look after the call that has just returned.
    bool watched = false; ///< An OpenGL ES context whose errors are reported.
    bool usesDebugOutput = false; ///< The driver tells of errors by itself; else each call asks.
    GLenum error = gl::none; ///< What the program's next glGetError() gets.

    Host* host;
    EGLDisplay display = nullptr;
    EGLContext handle = nullptr;
    std::int32_t number = 0; ///< Counts the program's contexts from 1.
    std::int32_t shareGroup = 0; ///< The number of the first context whose objects it shares; often its own.
    EGLint requestedVersion = 0; ///< Major times ten plus minor.
    const device::Api* api = nullptr; ///< What the program sees; null for the host as it is.
    std::optional<EGLint> configId; ///< Of the device's config; nothing for a host's.
    bool refusedCall = false; ///< The function that is being called refused.
    bool isDebug = false; ///< Made with the debug flag, so debug output is on from the start.
    bool isEs = true;
    bool seenCurrent = false; ///< Was current once, so its functions could be asked.
    int esVersion = 0; ///< Of the host's context: 20 for 2.0. Known when it was current.
    GLuint lineIndices = 0; ///< Buffer for wireframes; 0 until the first.
    bool warnedOfWireframe = false;
    bool quiet = false; ///< The layer itself asks: nothing is reported.
    PendingErrors pending;
    std::unique_ptr<DebugState> debug;

    void* resolve(Fn function) const;

    // Of the registry, under its lock.
    int users = 0; ///< Threads in which it is current, and those that hold it.
    bool destroyed = false;
};

/// While this lives, what the layer asks of the driver for itself leaves no trace: no report, no error flag,
/// no message.
class Unseen {
public:
    explicit Unseen(Context& context);
    ~Unseen();
    /// The error of what was asked for meanwhile.
    GLenum error() const { return m_context.takeHostError(); }
    Unseen(const Unseen&) = delete;
    Unseen& operator=(const Unseen&) = delete;

private:
    Context& m_context;
};

namespace detail {
/// Without a context, calls go to the first driver and are not checked.
Context& noContext();
[[gnu::tls_model("initial-exec")]] extern constinit thread_local Context* current;
} // namespace detail

/// The context of this thread.
inline Context& currentContext()
{
    Context* context = detail::current;
    return context ? *context : detail::noContext();
}

/// Makes a context this thread's; null for none.
void setCurrentContext(Context* context);

/// The contexts of the program by their handles. A context that is destroyed while it is current lives until
/// no thread has it any more.
namespace contexts {

/// A context, or none, that stays while this lives, also where another thread of the program destroys it.
class Held {
public:
    /// To be called under the lock of the registry.
    explicit Held(Context* context);
    ~Held();
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    Context* get() const { return m_context; }
    Context* operator->() const { return m_context; }
    explicit operator bool() const { return m_context != nullptr; }

private:
    Context* m_context;
};

/// A handle that is known already belongs to a context whose display was terminated.
Context& add(EGLDisplay display, EGLContext handle);
/// None for a handle that is none of the program's.
Held find(EGLDisplay display, EGLContext handle);
/// A context that is destroyed. True if nobody else has it, nor will have.
bool remove(const Held& context);
/// Those of a display that has ended.
void removeAll(EGLDisplay display);

} // namespace contexts

} // namespace layer
