#pragma once

#include "DeviceTable.h"
#include "GlTypes.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace layer {

/// What the program is to see in place of the machine; null for the machine as it is. It is read once in a
/// process, and a file that cannot be read is told as an error.
const device::Table* emulatedDevice();

/// What contexts of a version, 20 for 2.0, see: the section of that version or the next later one that is
/// compatible with it. Null where the device has none.
const device::Api* findApi(const device::Table& table, int version);

/// The version that contexts of a section offer. Drivers may give a later one than they were asked for, and
/// say so in GL_VERSION.
int offeredVersion(const device::Api& api);

/// "OpenGL ES 2.0" for 20.
std::string apiName(int version);
/// "OpenGL ES 1.1, 2.0 and 3.0".
std::string apiNames(const device::Table& table);
/// What people are told of a device, so that nobody takes it for the machine.
std::string deviceNotice(const device::Table& table);

/// A number as queries of that type return it: integers are rounded and kept within the type.
template <typename Value> Value convert(const device::Number& number)
{
    if constexpr (std::is_floating_point_v<Value>) {
        return std::visit([](auto value) { return static_cast<Value>(value); }, number);
    } else {
        using Limits = std::numeric_limits<Value>;
        if (const auto* real = std::get_if<double>(&number)) {
            const double rounded = std::round(*real);
            if (rounded >= static_cast<double>(Limits::max()))
                return Limits::max();
            return rounded <= static_cast<double>(Limits::min()) ? Limits::min()
                                                                 : static_cast<Value>(rounded);
        }
        const std::int64_t value = std::get<std::int64_t>(number);
        if (value >= static_cast<std::int64_t>(Limits::max()))
            return Limits::max();
        return value <= static_cast<std::int64_t>(Limits::min()) ? Limits::min() : static_cast<Value>(value);
    }
}

/// The whole number of a capability; a fallback for one that the device does not tell.
std::int64_t capability(
    const device::Api& api, GLenum name, std::int64_t fallback = std::numeric_limits<std::int64_t>::max());

} // namespace layer
