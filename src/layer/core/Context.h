#pragma once

#include "Host.h"

#include <array>
#include <memory>

namespace layer {

class DebugState;

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

    /// The driver's function; see Host::function.
    template <typename Pointer> Pointer function(Fn function) const
    {
        void* address = functions[static_cast<std::size_t>(function)].load(std::memory_order_relaxed);
        if (!address) [[unlikely]]
            address = host->resolve(function);
        return reinterpret_cast<Pointer>(address);
    }

    /// The driver's error flag, which is clear afterwards.
    GLenum takeHostError() const;
    /// Lets the program's glGetError() find an error, unless it has an earlier one to find.
    void keep(GLenum code);

    // What each call looks at stands first.
    std::atomic<void*>* functions; ///< Of the host.
    bool mustCheck = false; ///< Whether checkGl() is to look after the call that has just returned.
    bool watched = false; ///< An OpenGL ES context whose errors are reported.
    bool usesDebugOutput = false; ///< The driver tells of errors by itself; else each call asks.
    GLenum error = gl::none; ///< What the program's next glGetError() gets.

    Host* host;
    EGLDisplay display = nullptr;
    std::int32_t number = 0; ///< Counts the program's contexts from 1.
    EGLint requestedVersion = 0; ///< Major times ten plus minor.
    bool isDebug = false; ///< Made with the debug flag, so debug output is on from the start.
    bool isEs = true;
    bool seenCurrent = false; ///< Was current once, so its functions could be asked.
    int esVersion = 0; ///< Of the context as made: 20 for 2.0. Known when it was current.
    GLuint lineIndices = 0; ///< Buffer for wireframes; 0 until the first.
    bool warnedOfWireframe = false;
    bool quiet = false; ///< The layer itself asks: nothing is reported.
    PendingErrors pending;
    std::unique_ptr<DebugState> debug;

    // Of the registry, under its lock.
    int users = 0; ///< Threads in which it is current.
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
Context& add(EGLDisplay display, EGLContext handle);
/// Null for a handle that is none of the program's.
Context* find(EGLDisplay display, EGLContext handle);
void remove(EGLDisplay display, EGLContext handle);
} // namespace contexts

} // namespace layer
