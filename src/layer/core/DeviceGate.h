#pragma once

#include "Argument.h"
#include "Availability.h"
#include "Context.h"
#include "Device.h"
#include "DeviceQueries.h"

#include <array>
#include <initializer_list>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace layer {

/// A limit of an argument, from limited_functions.txt.
struct LimitRow {
    enum class Check : std::uint8_t {
        below,
        atMost,
        unit,
        attachment,
        image,
        compressed,
        samples,
        groups,
        binding,
        parameter,
        parameterFloat,
        parameterInts,
        parameterFloats,
        needs
    };
    /// The parameter that is limited, and others where the function has them.
    struct Places {
        std::int8_t value, target, level, internalFormat, width, height, depth, offset, name;
    };

    GLenum limit;
    GLenum base;
    Check check;
    Places places;
    const char* extensions; ///< Any of which will do, with blanks between them.
};

/// What the host has in contexts of its own.
struct HostEs {
    int version = 0; ///< 32 for 3.2.
    std::string extensions; ///< With blanks between them.
};

/// What stands between a program and the host in contexts of one version of a device: which functions and
/// enumerants it lacks, and its limits. Made once for each version and host.
class DeviceGate {
public:
    /// The context of the host that it is made for must be current.
    DeviceGate(Host& host, const HostEs& hostEs, const device::Table& table, const device::Api& api);
    DeviceGate(const DeviceGate&) = delete;
    DeviceGate& operator=(const DeviceGate&) = delete;

    const device::Table& table() const { return m_table; }
    const device::Api& api() const { return m_api; }
    const Availability& availability() const { return m_availability; }
    const DeviceStrings& strings() const { return m_strings; }

    /// The host's functions as the program gets them; those that the device lacks refuse.
    std::atomic<void*>* functions() { return m_functions.data(); }
    bool blocks(Fn function) const;
    /// What a function of the device is on a host, which may lack it.
    void* hostFunction(Host& host, Fn function) const;
    bool blocks(GLenum enumerant) const
    {
        return enumerant < enumerantLimit && ((m_blocked[enumerant / 64] >> (enumerant % 64)) & 1U) != 0;
    }

    /// The limit of a row of LayerLimits.inc, by its number.
    std::int64_t limitOf(std::size_t row) const { return m_limits[row]; }

    /// What the device has of a call and the host lacks, as a sentence; empty where the host has all of it.
    std::string missingOnHost(Fn function, std::initializer_list<Argument> arguments) const;

    /// True once: for whoever tells what the device has beyond the host.
    bool isFirstToTell() const { return !m_told.test_and_set(); }

    bool hasCompressed(GLenum format) const;
    /// Whether a format is one of the compressed ones at all.
    bool isCompressed(GLenum format) const;
    bool hostHasCompressed(GLenum format) const { return m_hostCompressed.contains(format); }

private:
    /// Whether the device has what a row needs.
    bool hasNeeded(const LimitRow& row) const;

    static constexpr GLenum enumerantLimit = 0x10000;

    /// What stands in for functions that are refused; the wrapper that called it asks checkGl() then.
    static void* refusing();
    void blockFunctions();
    void blockEnumerants();
    void unblock(GLenum enumerant) { m_blocked[enumerant / 64] &= ~(std::uint64_t{1} << (enumerant % 64)); }

    const device::Table& m_table;
    const device::Api& m_api;
    Availability m_availability;
    Availability m_hostAvailability;
    DeviceStrings m_strings;
    std::array<std::uint64_t, enumerantLimit / 64> m_blocked{};
    std::vector<std::int64_t> m_limits;
    std::set<GLenum> m_hostCompressed;
    mutable std::atomic_flag m_told = ATOMIC_FLAG_INIT;
    std::array<std::atomic<void*>, functionCount> m_functions{};
};

/// The rows of LayerLimits.inc; a function's stand together, see FunctionRow.
const LimitRow& limitRow(std::size_t index);

/// The gate of a version of the device, made when it is first asked for.
DeviceGate& gateOf(Host& host, const HostEs& hostEs, const device::Table& table, const device::Api& api);

/// Whether the device refuses a call, which is reported and must not reach the host.
bool refuses(Context& context, Fn function, std::initializer_list<Argument> arguments);

/// Whether the device would refuse a call because of a limit; nothing is reported.
bool isBeyondLimits(const Context& context, Fn function, std::initializer_list<Argument> arguments);

/// Why a call is refused; gl::none for one that is not.
struct Refusal {
    GLenum code = gl::none;
    std::string why;
};
Refusal checkLimit(const DeviceGate& gate, std::size_t row, std::initializer_list<Argument> arguments);

} // namespace layer
