#pragma once

#include "DeviceTable.h"
#include "GlTypes.h"

#include <optional>
#include <vector>

namespace layer {

/// The configs that a list of attributes asks for, as eglChooseConfig() chooses and sorts them: their places
/// among all. The list ends with EGL_NONE and may be null. Nothing for an attribute that there is not. Each
/// config has every attribute of EGL.
std::optional<std::vector<std::size_t>> chooseConfigs(
    const std::vector<device::Config>& configs, const EGLint* attributes);

/// How well a config of the host stands in for one of a device.
struct StandIn {
    int cost = 0; ///< 0 where it does so in everything that shows.
    bool isLess = false; ///< It lacks something.
};

/// What surfaces the host has at all is a mask of EGL_SURFACE_TYPE.
StandIn standIn(const device::Config& wanted, const device::Config& host, EGLint hostSurfaces);

} // namespace layer
