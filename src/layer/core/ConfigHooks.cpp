// The functions of EGL by which a program learns what there is: a device answers for its configs and strings.
#include "Checks.h"
#include "ConfigChoice.h"
#include "Context.h"
#include "Device.h"
#include "DeviceConfigs.h"
#include "KeyTables.h"
#include "Records.h"
#include "ValueNames.h"

#include <algorithm>
#include <array>
#include <limits>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace layer::hooks {

namespace {

/// The configs of the device, where the display is one that the host takes; else the host raises the error.
DeviceConfigs* configsOf(EGLDisplay display)
{
    if (!emulatedDevice() || !isInitialized(display))
        return nullptr;
    Host& host = hostOf(display);
    EGLint count = 0;
    const bool isReady =
        host.function<decltype(&::eglGetConfigs)>(Fn::eglGetConfigs)(display, nullptr, 0, &count) == EGL_TRUE;
    host.function<EGLint (*)()>(Fn::eglGetError)();
    return isReady ? deviceConfigs(display) : nullptr;
}

/// Writes handles as EGL's functions do: the number of all where there is no place for them.
void put(const DeviceConfigs& configs, const std::vector<std::size_t>& chosen, EGLConfig* handles,
    EGLint size, EGLint* count)
{
    *count = static_cast<EGLint>(chosen.size());
    if (!handles)
        return;
    *count = std::clamp(size, 0, *count);
    for (std::size_t i = 0; i < static_cast<std::size_t>(*count); ++i)
        handles[i] = configs.handleAt(chosen[i]);
}

/// What a program asks for without a word.
constexpr std::array<std::pair<EGLint, EGLint>, 5> askedAnyway{
    {{EGL_RENDERABLE_TYPE, EGL_OPENGL_ES_BIT}, {EGL_SURFACE_TYPE, EGL_WINDOW_BIT}, {EGL_LEVEL, 0},
        {EGL_COLOR_BUFFER_TYPE, EGL_RGB_BUFFER}, {EGL_TRANSPARENT_TYPE, EGL_NONE}}};

/// Whether no config has an attribute as it is asked for, whatever else it has.
bool hasNone(const DeviceConfigs& configs, EGLint attribute, EGLint value)
{
    std::vector<EGLint> list;
    for (const auto& asked : askedAnyway)
        list.insert(list.end(), {asked.first, EGL_DONT_CARE});
    list.insert(list.end(), {attribute, value, EGL_NONE});
    const auto chosen = chooseConfigs(configs.attributes(), list.data());
    return chosen && chosen->empty();
}

/// Why no config fits: the first attribute that none of them has as it is asked for.
std::string whyNone(const DeviceConfigs& configs, const EGLint* attributes)
{
    std::vector<std::pair<EGLint, EGLint>> all;
    for (; attributes && attributes[0] != EGL_NONE; attributes += 2)
        all.emplace_back(attributes[0], attributes[1]);
    for (const auto& anyway : askedAnyway) {
        if (std::ranges::find(all, anyway.first, &std::pair<EGLint, EGLint>::first) == all.end())
            all.push_back(anyway);
    }
    for (const auto& [attribute, value] : all) {
        EGLAttribKey key;
        if (hasNone(configs, attribute, value) && findEGLAttribKey(attribute, &key))
            return "none has " + key.displayName.text + " " + value_names::eglValue(key, value);
    }
    return "none has all of it together";
}

/// Programs that find no config end, often without a word. Told once for each reason.
void tellNone(const DeviceConfigs& configs, const EGLint* attributes)
{
    constexpr std::size_t mostTold = 16;
    static std::mutex mutex;
    static std::set<std::string> told;
    const std::string reason = whyNone(configs, attributes);
    const std::lock_guard lock(mutex);
    if (told.size() < mostTold && told.insert(reason).second) {
        records::information("eglChooseConfig finds no config on " + emulatedDevice()->name
            + " for what the program asks for: " + reason + ".");
    }
}

/// What a program asks of a pbuffer.
struct PbufferRequest {
    EGLint width = 0;
    EGLint height = 0;
    bool takesLess = false;
};

PbufferRequest readPbufferRequest(const EGLint* attributes)
{
    PbufferRequest request;
    for (; attributes && *attributes != EGL_NONE; attributes += 2) {
        if (attributes[0] == EGL_WIDTH)
            request.width = attributes[1];
        else if (attributes[0] == EGL_HEIGHT)
            request.height = attributes[1];
        else if (attributes[0] == EGL_LARGEST_PBUFFER)
            request.takesLess = attributes[1] != EGL_FALSE;
    }
    return request;
}

/// The same, no larger than pbuffers of a config are. A limit of 0 is none.
PbufferRequest within(const device::Config& config, PbufferRequest request)
{
    const auto limitOf = [&](EGLint attribute) {
        const auto found = config.find(attribute);
        return found == config.end() || found->second <= 0 ? std::numeric_limits<EGLint>::max()
                                                           : found->second;
    };
    request.width = std::min(request.width, limitOf(EGL_MAX_PBUFFER_WIDTH));
    request.height = std::min(request.height, limitOf(EGL_MAX_PBUFFER_HEIGHT));
    if (request.width > 0)
        request.height = std::min(request.height, limitOf(EGL_MAX_PBUFFER_PIXELS) / request.width);
    return request;
}

std::vector<EGLint> withSize(const EGLint* attributes, const PbufferRequest& size)
{
    std::vector<EGLint> list;
    for (; *attributes != EGL_NONE; attributes += 2) {
        const EGLint value = attributes[0] == EGL_WIDTH ? size.width
            : attributes[0] == EGL_HEIGHT               ? size.height
                                                        : attributes[1];
        list.insert(list.end(), {attributes[0], value});
    }
    list.push_back(EGL_NONE);
    return list;
}

} // namespace

EGLBoolean eglGetConfigs(EGLDisplay display, EGLConfig* handles, EGLint size, EGLint* count)
{
    const DeviceConfigs* configs = count ? configsOf(display) : nullptr;
    if (!configs)
        return generated::eglGetConfigs(display, handles, size, count);
    std::vector<std::size_t> all(configs->size());
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = i;
    put(*configs, all, handles, size, count);
    setEglError(EGL_SUCCESS);
    return EGL_TRUE;
}

EGLBoolean eglChooseConfig(
    EGLDisplay display, const EGLint* attributes, EGLConfig* handles, EGLint size, EGLint* count)
{
    const DeviceConfigs* configs = count ? configsOf(display) : nullptr;
    if (!configs)
        return generated::eglChooseConfig(display, attributes, handles, size, count);
    const std::optional<std::vector<std::size_t>> chosen = chooseConfigs(configs->attributes(), attributes);
    if (!chosen) {
        refuseEgl(Fn::eglChooseConfig,
            {argument(display), argument(attributes), argument(handles), argument(size), argument(count)},
            EGL_BAD_ATTRIBUTE, "the list has an attribute that configs do not have");
        return EGL_FALSE;
    }
    if (chosen->empty())
        tellNone(*configs, attributes);
    put(*configs, *chosen, handles, size, count);
    setEglError(EGL_SUCCESS);
    return EGL_TRUE;
}

EGLBoolean eglGetConfigAttrib(EGLDisplay display, EGLConfig handle, EGLint attribute, EGLint* value)
{
    const DeviceConfigs* configs = value ? configsOf(display) : nullptr;
    const std::optional<std::size_t> index = configs ? configs->indexOf(handle) : std::nullopt;
    if (!index)
        return generated::eglGetConfigAttrib(display, handle, attribute, value);
    const device::Config& config = configs->configAt(*index);
    const auto found = config.find(attribute);
    if (found == config.end())
        return generated::eglGetConfigAttrib(display, handle, attribute, value);
    *value = found->second;
    setEglError(EGL_SUCCESS);
    return EGL_TRUE;
}

EGLBoolean eglQueryContext(EGLDisplay display, EGLContext handle, EGLint attribute, EGLint* value)
{
    const EGLBoolean done = generated::eglQueryContext(display, handle, attribute, value);
    const contexts::Held context = contexts::find(display, handle);
    if (!done || !context || !context->api)
        return done;
    if (attribute == EGL_CONFIG_ID && context->configId)
        *value = *context->configId;
    else if (attribute == EGL_CONTEXT_CLIENT_VERSION)
        *value = context->api->version / 10;
    else if (attribute == EGL_CONTEXT_MINOR_VERSION)
        *value = context->api->version % 10;
    return done;
}

EGLBoolean eglQuerySurface(EGLDisplay display, EGLSurface surface, EGLint attribute, EGLint* value)
{
    const EGLBoolean done = generated::eglQuerySurface(display, surface, attribute, value);
    if (done && attribute == EGL_CONFIG_ID && emulatedDevice())
        *value = surfaceConfigId(display, surface).value_or(*value);
    return done;
}

EGLSurface eglCreatePbufferSurface(EGLDisplay display, EGLConfig handle, const EGLint* attributes)
{
    const DeviceConfigs* configs = configsOf(display);
    const std::optional<std::size_t> index = configs ? configs->indexOf(handle) : std::nullopt;
    const PbufferRequest asked = readPbufferRequest(attributes);
    const PbufferRequest taken = index ? within(configs->configAt(*index), asked) : asked;
    if (taken.width == asked.width && taken.height == asked.height)
        return generated::eglCreatePbufferSurface(display, handle, attributes);
    if (asked.takesLess)
        return generated::eglCreatePbufferSurface(display, handle, withSize(attributes, taken).data());
    const auto textOf = [](const PbufferRequest& size) {
        return std::to_string(size.width) + " x " + std::to_string(size.height);
    };
    refuseEgl(Fn::eglCreatePbufferSurface, {argument(display), argument(handle), argument(attributes)},
        EGL_BAD_ALLOC,
        "a pbuffer of " + textOf(asked) + " is too large for this config of " + emulatedDevice()->name
            + "; one of " + textOf(taken) + " is not");
    return EGL_NO_SURFACE;
}

EGLBoolean eglDestroySurface(EGLDisplay display, EGLSurface surface)
{
    const EGLBoolean destroyed = generated::eglDestroySurface(display, surface);
    if (destroyed && emulatedDevice())
        forgetSurface(display, surface);
    return destroyed;
}

EGLBoolean eglTerminate(EGLDisplay display)
{
    const EGLBoolean terminated = generated::eglTerminate(display);
    if (terminated && emulatedDevice())
        forgetConfigs(display);
    if (terminated)
        noteTerminated(display);
    // Others that have initialized it as well may keep it from ending.
    if (terminated && !isInitialized(display))
        contexts::removeAll(display);
    return terminated;
}

const char* eglQueryString(EGLDisplay display, EGLint name)
{
    const char* text = generated::eglQueryString(display, name);
    const device::Table* table = text && display != EGL_NO_DISPLAY ? emulatedDevice() : nullptr;
    if (!table)
        return text;
    const auto found = table->eglTexts.find(name);
    if (found != table->eglTexts.end())
        return found->second.c_str();
    return name == EGL_CLIENT_APIS ? "OpenGL_ES" : text;
}

EGLBoolean eglBindAPI(EGLenum api)
{
    if (api == EGL_OPENGL_ES_API || !emulatedDevice())
        return generated::eglBindAPI(api);
    refuseEgl(Fn::eglBindAPI, {argument(api)}, EGL_BAD_PARAMETER,
        emulatedDevice()->name + " has OpenGL ES and no other API");
    return EGL_FALSE;
}

} // namespace layer::hooks
