#pragma once

#include "Context.h"
#include "Device.h"

#include <vector>

namespace layer {

/// What the device of a context says of a state; empty where the host is to answer or the device lacks it.
std::vector<device::Number> deviceState(const Context& context, GLenum name);
/// The same for one value of an indexed state.
std::vector<device::Number> deviceState(const Context& context, GLenum name, GLuint index);

/// What glGetString() returns in contexts of a version of a device.
class DeviceStrings {
public:
    DeviceStrings(const device::Table& table, const device::Api& api);

    /// Null for a string that is the host's.
    const char* find(GLenum name) const;

private:
    std::string m_vendor;
    std::string m_renderer;
    std::string m_version;
    std::string m_language;
    std::string m_extensions;
};

} // namespace layer
