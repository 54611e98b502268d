#include "DeviceConfigs.h"

#include "Device.h"

#include <algorithm>
#include <limits>
#include <map>
#include <mutex>
#include <utility>

namespace layer {

namespace {

/// All attributes of EGL, so that a config of the host can be told without asking again.
constexpr EGLint attributesOfEgl[] = {EGL_BUFFER_SIZE, EGL_RED_SIZE, EGL_GREEN_SIZE, EGL_BLUE_SIZE,
    EGL_LUMINANCE_SIZE, EGL_ALPHA_SIZE, EGL_ALPHA_MASK_SIZE, EGL_BIND_TO_TEXTURE_RGB,
    EGL_BIND_TO_TEXTURE_RGBA, EGL_COLOR_BUFFER_TYPE, EGL_CONFIG_CAVEAT, EGL_CONFIG_ID, EGL_CONFORMANT,
    EGL_DEPTH_SIZE, EGL_LEVEL, EGL_MAX_PBUFFER_WIDTH, EGL_MAX_PBUFFER_HEIGHT, EGL_MAX_PBUFFER_PIXELS,
    EGL_MAX_SWAP_INTERVAL, EGL_MIN_SWAP_INTERVAL, EGL_NATIVE_RENDERABLE, EGL_NATIVE_VISUAL_ID,
    EGL_NATIVE_VISUAL_TYPE, EGL_RENDERABLE_TYPE, EGL_SAMPLE_BUFFERS, EGL_SAMPLES, EGL_STENCIL_SIZE,
    EGL_SURFACE_TYPE, EGL_TRANSPARENT_TYPE, EGL_TRANSPARENT_RED_VALUE, EGL_TRANSPARENT_GREEN_VALUE,
    EGL_TRANSPARENT_BLUE_VALUE};

struct HostConfig {
    EGLConfig handle = nullptr;
    device::Config attributes;
};

std::vector<HostConfig> configsOf(Host& host, EGLDisplay display)
{
    const auto get = host.function<decltype(&::eglGetConfigs)>(Fn::eglGetConfigs);
    const auto getAttribute = host.function<decltype(&::eglGetConfigAttrib)>(Fn::eglGetConfigAttrib);
    EGLint count = 0;
    get(display, nullptr, 0, &count);
    std::vector<EGLConfig> handles(static_cast<std::size_t>(std::clamp(count, 0, 65536)));
    get(display, handles.data(), static_cast<EGLint>(handles.size()), &count);
    std::vector<HostConfig> configs;
    for (EGLConfig handle : handles) {
        HostConfig& config = configs.emplace_back();
        config.handle = handle;
        for (const EGLint attribute : attributesOfEgl) {
            EGLint value = 0;
            if (getAttribute(display, handle, attribute, &value))
                config.attributes[attribute] = value;
        }
    }
    host.function<EGLint (*)()>(Fn::eglGetError)();
    return configs;
}

/// What the device says, with what follows from it; the stand-in answers for the rest.
device::Config completed(const device::Config& told, const device::Config& host)
{
    device::Config config = told;
    const auto sizeOf = [&](EGLint attribute) {
        const auto found = config.find(attribute);
        return found == config.end() ? 0 : found->second;
    };
    if (config.contains(EGL_RENDERABLE_TYPE))
        config.emplace(EGL_CONFORMANT, config[EGL_RENDERABLE_TYPE]);
    if (config.contains(EGL_RED_SIZE) && config.contains(EGL_GREEN_SIZE) && config.contains(EGL_BLUE_SIZE))
        config.emplace(EGL_BUFFER_SIZE,
            sizeOf(EGL_RED_SIZE) + sizeOf(EGL_GREEN_SIZE) + sizeOf(EGL_BLUE_SIZE) + sizeOf(EGL_ALPHA_SIZE));
    config.insert(host.begin(), host.end());
    return config;
}

struct Displays {
    std::mutex mutex;
    std::map<EGLDisplay, std::unique_ptr<DeviceConfigs>> configs;
    std::map<std::pair<EGLDisplay, EGLSurface>, EGLint> surfaces; ///< EGL_CONFIG_ID of each.
};

/// Never destroyed: threads of the program may still draw while it ends.
Displays& displays()
{
    static auto* const displays = new Displays;
    return *displays;
}

} // namespace

DeviceConfigs::DeviceConfigs(Host& host, EGLDisplay display, const std::vector<device::Config>& configs)
    : m_host(host)
    , m_display(display)
    , m_told(configs)
    , m_entries(configs.size())
    , m_attributes(configs)
{
    refresh();
}

std::vector<EGLint> DeviceConfigs::lessIds() const
{
    std::vector<EGLint> ids;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        if (m_entries[i].isLess)
            ids.push_back(m_attributes[i].at(EGL_CONFIG_ID));
    }
    return ids;
}

void DeviceConfigs::refresh()
{
    const std::vector<HostConfig> hosts =
        m_isStale ? configsOf(m_host, m_display) : std::vector<HostConfig>();
    m_isStale = m_isStale && hosts.empty();
    EGLint surfaces = 0;
    for (const HostConfig& host : hosts)
        surfaces |= host.attributes.contains(EGL_SURFACE_TYPE) ? host.attributes.at(EGL_SURFACE_TYPE) : 0;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        int least = std::numeric_limits<int>::max();
        for (const HostConfig& host : hosts) {
            const StandIn result = standIn(m_told[i], host.attributes, surfaces);
            if (result.cost >= least)
                continue;
            least = result.cost;
            m_entries[i] = {host.handle, result.isLess};
            m_attributes[i] = completed(m_told[i], host.attributes);
        }
    }
}

std::optional<std::size_t> DeviceConfigs::indexOf(EGLConfig handle) const
{
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        if (handleAt(i) == handle)
            return i;
    }
    return std::nullopt;
}

DeviceConfigs* deviceConfigs(EGLDisplay display)
{
    const device::Table* table = emulatedDevice();
    if (!table || table->configs.empty())
        return nullptr;
    Displays& all = displays();
    const std::scoped_lock lock(all.mutex);
    std::unique_ptr<DeviceConfigs>& configs = all.configs[display];
    if (!configs)
        configs = std::make_unique<DeviceConfigs>(hostOf(display), display, table->configs);
    return configs.get();
}

void refreshConfigs(EGLDisplay display)
{
    DeviceConfigs* configs = deviceConfigs(display);
    const std::scoped_lock lock(displays().mutex);
    if (configs)
        configs->refresh();
}

void forgetConfigs(EGLDisplay display)
{
    DeviceConfigs* configs = deviceConfigs(display);
    Displays& all = displays();
    const std::scoped_lock lock(all.mutex);
    if (configs)
        configs->setStale();
    std::erase_if(all.surfaces, [=](const auto& surface) { return surface.first.first == display; });
}

void forgetSurface(EGLDisplay display, EGLSurface surface)
{
    Displays& all = displays();
    const std::scoped_lock lock(all.mutex);
    all.surfaces.erase({display, surface});
}

EGLConfig hostConfig(EGLConfig config)
{
    if (!emulatedDevice())
        return config;
    Displays& all = displays();
    const std::scoped_lock lock(all.mutex);
    for (const auto& [display, configs] : all.configs) {
        if (const std::optional<std::size_t> index = configs->indexOf(config))
            return configs->hostAt(*index);
    }
    return config;
}

void noteSurface(EGLDisplay display, EGLSurface surface, EGLConfig config)
{
    DeviceConfigs* configs = surface == EGL_NO_SURFACE ? nullptr : deviceConfigs(display);
    const std::optional<std::size_t> index = configs ? configs->indexOf(config) : std::nullopt;
    if (!index)
        return;
    Displays& all = displays();
    const std::scoped_lock lock(all.mutex);
    all.surfaces[{display, surface}] = configs->configAt(*index).at(EGL_CONFIG_ID);
}

std::optional<EGLint> surfaceConfigId(EGLDisplay display, EGLSurface surface)
{
    Displays& all = displays();
    const std::scoped_lock lock(all.mutex);
    const auto found = all.surfaces.find({display, surface});
    return found == all.surfaces.end() ? std::nullopt : std::optional(found->second);
}

} // namespace layer
