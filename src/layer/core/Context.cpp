#include "Context.h"

#include "DebugState.h"
#include "DeviceGate.h"

#include <map>
#include <mutex>
#include <utility>

namespace layer {

namespace {

struct Registry {
    // A context that is destroyed leaves the map and lives on while threads use it.
    std::mutex mutex;
    std::map<std::pair<EGLDisplay, EGLContext>, Context*> contexts;
    std::int32_t count = 0;
};

void leave(Context& context)
{
    if (--context.users == 0 && context.destroyed)
        delete &context;
}

/// Nobody finds it any more.
void retire(Context& context)
{
    context.destroyed = true;
    if (context.users == 0)
        delete &context;
}

/// Never destroyed: threads of the program may still draw while it ends.
Registry& registry()
{
    static Registry* const registry = new Registry;
    return *registry;
}

} // namespace

namespace detail {

[[gnu::tls_model("initial-exec")]] constinit thread_local Context* current = nullptr;

Context& noContext()
{
    static Context* const none = new Context;
    return *none;
}

} // namespace detail

Context::Context()
    : functions(hostAt(0).functions())
    , host(&hostAt(0))
    , debug(std::make_unique<DebugState>())
{
}

Context::~Context() = default;

void* Context::resolve(Fn function) const
{
    void* address = gate ? gate->hostFunction(*host, function) : host->function<void*>(function);
    functions[static_cast<std::size_t>(function)].store(address, std::memory_order_relaxed);
    return address;
}

GLenum Context::takeHostError() const
{
    const auto getError = host->function<GLenum (*)()>(Fn::glGetError);
    const GLenum first = getError();
    // Some drivers have a flag for each code, and lost contexts one that never clears.
    for (int i = 0; first != gl::none && i < 8 && getError() != gl::none; ++i) { }
    return first;
}

void Context::keep(GLenum code)
{
    if (error == gl::none)
        error = code;
}

Unseen::Unseen(Context& context)
    : m_context(context)
{
    // What the program did before is its own.
    context.keep(context.takeHostError());
    context.quiet = true;
}

Unseen::~Unseen()
{
    m_context.takeHostError();
    m_context.quiet = false;
}

void setCurrentContext(Context* context)
{
    Context* before = detail::current;
    if (before == context)
        return;
    Registry& all = registry();
    const std::scoped_lock lock(all.mutex);
    if (context)
        ++context->users;
    detail::current = context;
    if (before)
        leave(*before);
}

namespace contexts {

Held::Held(Context* context)
    : m_context(context)
{
    if (context)
        ++context->users;
}

Held::~Held()
{
    if (!m_context)
        return;
    const std::scoped_lock lock(registry().mutex);
    leave(*m_context);
}

Context& add(EGLDisplay display, EGLContext handle)
{
    auto* context = new Context;
    context->display = display;
    context->handle = handle;
    context->host = &hostOf(display);
    context->functions = context->host->functions();
    Registry& all = registry();
    const std::scoped_lock lock(all.mutex);
    context->number = ++all.count;
    context->shareGroup = context->number;
    Context*& place = all.contexts[{display, handle}];
    if (place)
        retire(*place);
    place = context;
    return *context;
}

Held find(EGLDisplay display, EGLContext handle)
{
    Registry& all = registry();
    const std::scoped_lock lock(all.mutex);
    const auto found = all.contexts.find({display, handle});
    return Held(found == all.contexts.end() ? nullptr : found->second);
}

bool remove(const Held& context)
{
    Registry& all = registry();
    const std::scoped_lock lock(all.mutex);
    // The driver may have given the handle to a new context already.
    const auto found = all.contexts.find({context->display, context->handle});
    if (found != all.contexts.end() && found->second == context.get()) {
        all.contexts.erase(found);
        context->destroyed = true;
    }
    return context->users == 1;
}

void removeAll(EGLDisplay display)
{
    Registry& all = registry();
    const std::scoped_lock lock(all.mutex);
    std::erase_if(all.contexts, [=](const auto& entry) {
        const bool isOfDisplay = entry.first.first == display;
        if (isOfDisplay)
            retire(*entry.second);
        return isOfDisplay;
    });
}

} // namespace contexts

} // namespace layer
