#pragma once

#include "Device.h"
#include "Host.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace layer {

/// What the device says to a context that a program asks for.
struct DeviceContext {
    const device::Api* api = nullptr; ///< What it is going to see; null without a device.
    std::optional<EGLint> configId; ///< Of the device's config.
    EGLint error = EGL_SUCCESS; ///< For a context that the device does not have.
    std::string why;
};

/// The version is major times ten plus minor.
DeviceContext deviceContext(EGLDisplay display, EGLConfig config, bool isEs, int version);

/// Makes a context of the host for a version of the device, with the attributes that the program gave: of
/// that version, else of the highest one that the host has.
EGLContext createForDevice(Host& host, const device::Api& api, const std::vector<EGLint>& attributes,
    const std::function<EGLContext(const EGLint*)>& create);

} // namespace layer
