#pragma once

#include "ConfigChoice.h"
#include "Host.h"

#include <memory>
#include <optional>
#include <vector>

namespace layer {

/// The EGL configs of the device on a display. Programs get handles of the layer's, each with a config of the
/// host that stands in for it.
class DeviceConfigs {
public:
    DeviceConfigs(Host& host, EGLDisplay display, const std::vector<device::Config>& configs);

    /// Looks for stand-ins anew, if setStale() was called: the host's handles are others after
    /// eglTerminate().
    void refresh();
    void setStale() { m_isStale = true; }

    std::size_t size() const { return m_entries.size(); }
    EGLConfig handleAt(std::size_t index) const { return const_cast<Entry*>(&m_entries[index]); }
    /// The place of one of these handles.
    std::optional<std::size_t> indexOf(EGLConfig handle) const;
    /// All attributes, where the device says nothing those of the stand-in.
    const std::vector<device::Config>& attributes() const { return m_attributes; }
    const device::Config& configAt(std::size_t index) const { return m_attributes[index]; }
    EGLConfig hostAt(std::size_t index) const { return m_entries[index].host; }
    /// The ids of those whose stand-ins have less.
    std::vector<EGLint> lessIds() const;

private:
    struct Entry {
        EGLConfig host = nullptr;
        bool isLess = false; ///< The stand-in.
    };

    Host& m_host;
    EGLDisplay m_display;
    const std::vector<device::Config>& m_told; ///< What the device says.
    std::vector<Entry> m_entries; ///< Never moved: their addresses are the handles.
    std::vector<device::Config> m_attributes;
    bool m_isStale = true;
};

/// The configs of the device on a display; null without a device, or for one that says nothing of configs.
DeviceConfigs* deviceConfigs(EGLDisplay display);
/// To be called when a display was initialised, and when it was terminated.
void refreshConfigs(EGLDisplay display);
void forgetConfigs(EGLDisplay display);

/// What the host gets in place of a config of a program.
EGLConfig hostConfig(EGLConfig config);
/// Remembers the config that a surface was made of.
void noteSurface(EGLDisplay display, EGLSurface surface, EGLConfig config);
void forgetSurface(EGLDisplay display, EGLSurface surface);
/// EGL_CONFIG_ID of the device's config of a surface; nothing for one of a host's config.
std::optional<EGLint> surfaceConfigId(EGLDisplay display, EGLSurface surface);

} // namespace layer
