#include "DeviceContexts.h"

#include "BeyondHost.h"
#include "DeviceConfigs.h"
#include "ProbeContext.h"
#include "Process.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace layer {

namespace {

DeviceContext refusal(EGLint error, std::string why)
{
    DeviceContext refused;
    refused.error = error;
    refused.why = std::move(why);
    return refused;
}

EGLint renderableBit(int version)
{
    return version < 20 ? EGL_OPENGL_ES_BIT : version < 30 ? EGL_OPENGL_ES2_BIT : EGL_OPENGL_ES3_BIT;
}

/// The list with another version in place of the one that it asks for.
std::vector<EGLint> withVersion(const std::vector<EGLint>& attributes, int version)
{
    std::vector<EGLint> list{EGL_CONTEXT_MAJOR_VERSION, version / 10};
    // Old hosts know no minor version.
    if (version > 30)
        list.insert(list.end(), {EGL_CONTEXT_MINOR_VERSION, version % 10});
    for (std::size_t i = 0; i + 1 < attributes.size(); i += 2) {
        if (attributes[i] != EGL_CONTEXT_MAJOR_VERSION && attributes[i] != EGL_CONTEXT_MINOR_VERSION)
            list.insert(list.end(), {attributes[i], attributes[i + 1]});
    }
    list.push_back(EGL_NONE);
    return list;
}

/// Versions of the host that can stand in for one of a device, the best one first.
std::vector<int> hostVersions(int version)
{
    std::vector<int> versions{version};
    for (const int lower : {32, 31, 30, 20}) {
        if (lower < version)
            versions.push_back(lower);
    }
    return versions;
}

BeyondHost probeBeyond(Host& host, EGLDisplay display, const device::Api& api)
{
    for (const int version : hostVersions(api.version)) {
        const std::vector<EGLint> attributes = withVersion({EGL_NONE}, version);
        const ProbeContext probe(host, display, EGL_OPENGL_ES_API, renderableBit(version), attributes.data());
        if (probe.isCurrent())
            return beyondHost(host, versionIn(probe.string(gl::version)), probe.string(gl::extensions), api);
    }
    BeyondHost nothing;
    nothing.limits.push_back("there is no " + apiName(api.version) + " here");
    return nothing;
}

/// Why strict mode refuses a version of the device; empty where the host has all of it. Asked once.
std::string strictRefusal(EGLDisplay display, const device::Table& table, const device::Api& api)
{
    static auto* const mutex = new std::mutex;
    static auto* const known = new std::map<const device::Api*, std::string>;
    const std::scoped_lock lock(*mutex);
    const auto found = known->find(&api);
    if (found != known->end())
        return found->second;
    const BeyondHost beyond = probeBeyond(hostOf(display), display, api);
    std::string text;
    if (!beyond.limits.empty())
        text = "in strict context mode this machine is too little for " + apiName(api.version) + " of "
            + table.name;
    for (const std::string& limit : beyond.limits)
        text += '\n' + limit;
    return (*known)[&api] = text;
}

} // namespace

DeviceContext deviceContext(EGLDisplay display, EGLConfig config, bool isEs, int version)
{
    const device::Table* table = emulatedDevice();
    // What is wrong with the display comes first, and is for the host to say.
    if (!table || !isInitialized(display))
        return {};
    if (!isEs)
        return refusal(EGL_BAD_MATCH, table->name + " has OpenGL ES and no other API");
    DeviceContext answer;
    answer.api = findApi(*table, version);
    if (!answer.api)
        return refusal(EGL_BAD_MATCH,
            apiName(version) + " is not available on " + table->name + ", which has " + apiNames(*table));
    const DeviceConfigs* configs = deviceConfigs(display);
    const std::optional<std::size_t> index = configs ? configs->indexOf(config) : std::nullopt;
    if (index) {
        const device::Config& attributes = configs->configAt(*index);
        answer.configId = attributes.at(EGL_CONFIG_ID);
        const EGLint bit = renderableBit(version);
        const auto isRenderable = [=](const device::Config& told) {
            const auto found = told.find(EGL_RENDERABLE_TYPE);
            return found == told.end() || (found->second & bit) != 0;
        };
        // Profiles of old EGL know no bit for the versions from 3.0 on.
        if (!isRenderable(attributes) && std::ranges::any_of(configs->attributes(), isRenderable))
            return refusal(EGL_BAD_CONFIG,
                "config " + std::to_string(*answer.configId) + " of " + table->name + " is not one of "
                    + apiName(version));
    }
    if (table->strict || options().strict) {
        std::string why = strictRefusal(display, *table, *answer.api);
        if (!why.empty())
            return refusal(EGL_BAD_ALLOC, std::move(why));
    }
    return answer;
}

EGLContext createForDevice(Host& host, const device::Api& api, const std::vector<EGLint>& attributes,
    const std::function<EGLContext(const EGLint*)>& create)
{
    EGLContext made = EGL_NO_CONTEXT;
    for (const int version : hostVersions(api.version)) {
        made = create(withVersion(attributes, version).data());
        if (made != EGL_NO_CONTEXT)
            break;
        // Another version would not help against anything else.
        const EGLint error = host.function<EGLint (*)()>(Fn::eglGetError)();
        if (error != EGL_BAD_MATCH && error != EGL_BAD_CONFIG && error != EGL_BAD_ATTRIBUTE)
            return create(withVersion(attributes, version).data());
    }
    return made != EGL_NO_CONTEXT ? made : create(withVersion(attributes, api.version).data());
}

} // namespace layer
