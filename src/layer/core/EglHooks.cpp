// The functions of EGL that make, use and end contexts.
#include "Checks.h"
#include "Context.h"
#include "ContextStart.h"
#include "DeviceConfigs.h"
#include "DeviceContexts.h"
#include "Probe.h"
#include "Process.h"
#include "WrapperParts.h"

#include <algorithm>
#include <vector>

namespace layer::hooks {

namespace {

constexpr EGLint noErrorAttribute = 0x31B3; ///< EGL_CONTEXT_OPENGL_NO_ERROR_KHR
constexpr EGLint debugFlag = 1; ///< EGL_CONTEXT_OPENGL_DEBUG_BIT_KHR

/// What a program asks of a context.
struct Request {
    EGLint major = 1;
    EGLint minor = 0;
    bool isDebug = false;
    std::vector<EGLint> attributes; ///< Without what would keep its errors from us; ends with EGL_NONE.

    /// 32 for 3.2. Programs may ask for anything.
    EGLint version() const { return std::clamp(major, -1, 99) * 10 + std::clamp(minor, 0, 9); }
};

Request readRequest(const EGLint* attributes, bool isWatched)
{
    Request request;
    for (; attributes && *attributes != EGL_NONE; attributes += 2) {
        const EGLint value = attributes[1];
        switch (*attributes) {
        case EGL_CONTEXT_MAJOR_VERSION:
            request.major = value;
            break;
        case EGL_CONTEXT_MINOR_VERSION:
            request.minor = value;
            break;
        case EGL_CONTEXT_FLAGS_KHR:
            request.isDebug = request.isDebug || (value & debugFlag) != 0;
            break;
        case EGL_CONTEXT_OPENGL_DEBUG:
            request.isDebug = request.isDebug || value == EGL_TRUE;
            break;
        case noErrorAttribute:
            if (isWatched)
                continue;
            break;
        default:
            break;
        }
        request.attributes.insert(request.attributes.end(), {attributes[0], value});
    }
    request.attributes.push_back(EGL_NONE);
    return request;
}

void countFrame(EGLBoolean shown)
{
    ring::Writer* to = shown ? writer() : nullptr;
    if (to)
        to->countFrame();
}

void beforeFrame()
{
    Context& context = currentContext();
    if (context.watched)
        checkStrayErrors(context);
}

} // namespace

EGLBoolean eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor)
{
    const EGLBoolean initialized = generated::eglInitialize(display, major, minor);
    if (initialized) {
        noteInitialized(display);
        refreshConfigs(display);
        sendReport(hostOf(display), display);
    }
    return initialized;
}

EGLContext eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share, const EGLint* attributes)
{
    Host& host = hostOf(display);
    const bool isEs = host.function<EGLenum (*)()>(Fn::eglQueryAPI)() == EGL_OPENGL_ES_API;
    Request request = readRequest(attributes, isEs && options().errors && writer());
    const DeviceContext wanted = deviceContext(display, config, isEs, request.version());
    if (wanted.error != EGL_SUCCESS) {
        refuseEgl(Fn::eglCreateContext,
            {argument(display), argument(config), argument(share), argument(attributes)}, wanted.error,
            wanted.why);
        return EGL_NO_CONTEXT;
    }
    const auto create = host.function<decltype(&::eglCreateContext)>(Fn::eglCreateContext);
    EGLContext made = EGL_NO_CONTEXT;
    if (wanted.api)
        made = createForDevice(host, *wanted.api, request.attributes,
            [&](const EGLint* list) { return create(display, hostConfig(config), share, list); });
    else
        made = create(display, hostConfig(config), share, attributes ? request.attributes.data() : nullptr);
    checkEgl(host, Fn::eglCreateContext,
        {argument(display), argument(config), argument(share), argument(attributes)});
    if (made == EGL_NO_CONTEXT)
        return made;
    Context& context = contexts::add(display, made);
    context.isEs = isEs;
    context.isDebug = request.isDebug;
    context.requestedVersion = wanted.api ? wanted.api->version : request.version();
    context.api = wanted.api;
    context.configId = wanted.configId;
    if (const contexts::Held shared = contexts::find(display, share))
        context.shareGroup = shared->shareGroup;
    return made;
}

EGLBoolean eglDestroyContext(EGLDisplay display, EGLContext handle)
{
    const contexts::Held context = contexts::find(display, handle);
    const EGLBoolean destroyed = generated::eglDestroyContext(display, handle);
    // Whoever is making it current tells of it.
    if (destroyed && context && contexts::remove(context))
        tellUnused(*context.get());
    return destroyed;
}

EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext handle)
{
    // Another thread may destroy it as soon as the driver has it.
    const contexts::Held context = contexts::find(display, handle);
    const EGLBoolean done = generated::eglMakeCurrent(display, draw, read, handle);
    if (!done)
        return done;
    setCurrentContext(context.get());
    if (context && !context->seenCurrent)
        startContext(*context.get());
    return done;
}

EGLBoolean eglReleaseThread()
{
    const EGLBoolean done = generated::eglReleaseThread();
    setCurrentContext(nullptr);
    return done;
}

EGLBoolean eglSwapBuffers(EGLDisplay display, EGLSurface surface)
{
    beforeFrame();
    const EGLBoolean shown = generated::eglSwapBuffers(display, surface);
    countFrame(shown);
    return shown;
}

EGLBoolean eglSwapBuffersWithDamageEXT(
    EGLDisplay display, EGLSurface surface, const EGLint* rectangles, EGLint count)
{
    beforeFrame();
    const EGLBoolean shown = generated::eglSwapBuffersWithDamageEXT(display, surface, rectangles, count);
    countFrame(shown);
    return shown;
}

EGLBoolean eglSwapBuffersWithDamageKHR(
    EGLDisplay display, EGLSurface surface, const EGLint* rectangles, EGLint count)
{
    beforeFrame();
    const EGLBoolean shown = generated::eglSwapBuffersWithDamageKHR(display, surface, rectangles, count);
    countFrame(shown);
    return shown;
}

__eglMustCastToProperFunctionPointerType eglGetProcAddress(const char* name)
{
    const auto address = generated::eglGetProcAddress(name);
    void* wrapper = address ? wrapperOf(name) : nullptr;
    return wrapper ? reinterpret_cast<__eglMustCastToProperFunctionPointerType>(wrapper) : address;
}

} // namespace layer::hooks
