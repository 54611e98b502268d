#include "DeviceGate.h"

#include "CallText.h"
#include "Checks.h"
#include "GlEnumerants.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <map>
#include <mutex>
#include <sstream>
#include <string_view>

namespace layer {

namespace {

constexpr LimitRow limitRows[] = {
#include "LayerLimits.inc"
};

std::uint64_t refuseCall()
{
    Context& context = currentContext();
    context.refusedCall = true;
    context.mustCheck = true;
    return 0;
}

std::vector<GLint> hostCompressedFormats(Host& host)
{
    const auto get = host.function<void (*)(GLenum, GLint*)>(Fn::glGetIntegerv);
    GLint count = 0;
    get(gl::numCompressedTextureFormats, &count);
    std::vector<GLint> formats(static_cast<std::size_t>(std::clamp(count, 0, 4096)));
    if (!formats.empty())
        get(gl::compressedTextureFormats, formats.data());
    return formats;
}

/// The name of an enumerant, or its number.
std::string enumerantText(GLenum enumerant)
{
    const char* name = ::gl::enumerantName(static_cast<std::int32_t>(enumerant));
    CallText text;
    if (*name)
        text << name;
    else
        text.hexadecimal(enumerant);
    return std::string(text.text());
}

std::vector<std::string> wordsOf(const std::string& text)
{
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), {}};
}

bool isListed(const device::Api& api, GLenum capability, GLenum value)
{
    const auto list = api.capabilities.find(capability);
    return list != api.capabilities.end()
        && std::ranges::any_of(list->second, [=](const device::Number& number) {
               return convert<std::int64_t>(number) == std::int64_t{value};
           });
}

/// Of the device's maker, of whose extensions the registry knows nothing.
bool isOfMaker(GLenum enumerant)
{
    return std::string_view(::gl::enumerantName(static_cast<std::int32_t>(enumerant))).ends_with("_BWD");
}

/// Hints, and names for tools: where a driver lacks them, a program misses nothing.
bool mayDoNothing(Fn function)
{
    switch (function) {
    case Fn::glDiscardFramebufferEXT:
    case Fn::glGetObjectLabelEXT:
    case Fn::glInsertEventMarkerEXT:
    case Fn::glLabelObjectEXT:
    case Fn::glPopGroupMarkerEXT:
    case Fn::glPushGroupMarkerEXT:
        return true;
    default:
        return false;
    }
}

} // namespace

const LimitRow& limitRow(std::size_t index)
{
    return limitRows[index];
}

DeviceGate::DeviceGate(Host& host, const HostEs& hostEs, const device::Table& table, const device::Api& api)
    : m_table(table)
    , m_api(api)
    , m_availability(offeredVersion(api), api.extensions)
    , m_hostAvailability(hostEs.version, wordsOf(hostEs.extensions))
    , m_strings(table, api)
{
    for (const LimitRow& row : limitRows)
        m_limits.push_back(
            row.check == LimitRow::Check::needs ? (hasNeeded(row) ? 1 : 0) : capability(api, row.limit));
    for (const GLint format : hostCompressedFormats(host))
        m_hostCompressed.insert(static_cast<GLenum>(format));
    blockFunctions();
    blockEnumerants();
}

bool DeviceGate::hasNeeded(const LimitRow& row) const
{
    return offeredVersion(m_api) >= 30
        || std::ranges::any_of(wordsOf(row.extensions), [this](const std::string& name) {
               return std::ranges::find(m_api.extensions, name) != m_api.extensions.end();
           });
}

void DeviceGate::blockFunctions()
{
    for (std::size_t i = 0; i < functionCount; ++i) {
        const auto function = static_cast<Fn>(i);
        const bool isEgl = std::string_view(rowOf(function).name).starts_with("egl");
        if (!isEgl && !m_availability.has(function))
            m_functions[i] = refusing();
    }
}

void DeviceGate::blockEnumerants()
{
    const bool hasMaker = std::ranges::any_of(
        m_api.extensions, [](const std::string& name) { return name.starts_with("GL_BWD_"); });
    for (const GLenum missing : m_availability.missingEnumerants()) {
        if (missing < enumerantLimit && !(hasMaker && isOfMaker(missing)))
            m_blocked[missing / 64] |= std::uint64_t{1} << (missing % 64);
    }
    // What the device tells of itself, it has.
    for (const auto& [name, values] : m_api.capabilities) {
        if (name >= enumerantLimit)
            continue;
        unblock(name);
        if (name != gl::compressedTextureFormats && name != gl::shaderBinaryFormats)
            continue;
        for (const device::Number& value : values)
            unblock(static_cast<GLenum>(std::clamp<std::int64_t>(convert<std::int64_t>(value), 0, 0xFFFF)));
    }
    for (const auto& [format, counts] : m_api.sampleCounts) {
        if (format < enumerantLimit)
            unblock(format);
    }
}

void* DeviceGate::hostFunction(Host& host, Fn function) const
{
    if (!m_hostAvailability.has(function) && mayDoNothing(function))
        return Host::nothing();
    // A driver that lacks what the device has would say nothing.
    return host.has(function) ? host.function<void*>(function) : refusing();
}

void* DeviceGate::refusing()
{
    return reinterpret_cast<void*>(&refuseCall);
}

bool DeviceGate::blocks(Fn function) const
{
    return m_functions[static_cast<std::size_t>(function)].load(std::memory_order_relaxed) == refusing();
}

bool DeviceGate::hasCompressed(GLenum format) const
{
    // OpenGL ES 3.0 has these ten without saying so.
    const bool isCore = offeredVersion(m_api) >= 30 && format >= 0x9270 && format <= 0x9279;
    return isCore || !m_api.capabilities.contains(gl::compressedTextureFormats)
        || isListed(m_api, gl::compressedTextureFormats, format);
}

bool DeviceGate::isCompressed(GLenum format) const
{
    return hostHasCompressed(format) || isListed(m_api, gl::compressedTextureFormats, format);
}

std::string DeviceGate::missingOnHost(Fn function, std::initializer_list<Argument> arguments) const
{
    const std::string but = ", but this machine has not: it ";
    if (!m_hostAvailability.has(function))
        return m_table.name + " has this function" + but + m_hostAvailability.needOf(function);
    for (unsigned rest = rowOf(function).enumerants; rest != 0; rest &= rest - 1) {
        const auto enumerant =
            static_cast<GLenum>(arguments.begin()[static_cast<std::size_t>(std::countr_zero(rest))].bits);
        if (!m_hostAvailability.has(enumerant))
            return m_table.name + " has " + enumerantText(enumerant) + but
                + m_hostAvailability.needOf(enumerant);
    }
    return {};
}

DeviceGate& gateOf(Host& host, const HostEs& hostEs, const device::Table& table, const device::Api& api)
{
    static auto* const mutex = new std::mutex;
    static auto* const gates =
        new std::map<std::pair<Host*, const device::Api*>, std::unique_ptr<DeviceGate>>;
    const std::scoped_lock lock(*mutex);
    std::unique_ptr<DeviceGate>& gate = (*gates)[{&host, &api}];
    if (!gate)
        gate = std::make_unique<DeviceGate>(host, hostEs, table, api);
    return *gate;
}

namespace {

/// Whether an enumerant stands in a parameter that is a signed number, as in glTexImage2D().
bool isSignedParameter(const FunctionRow& row, std::size_t place)
{
    std::string_view rest = row.parameters;
    for (; place > 0; --place)
        rest.remove_prefix(rest.find(' ') + 1);
    return rest.starts_with('n');
}

void refuseEnumerant(
    Context& context, Fn function, std::initializer_list<Argument> arguments, GLenum enumerant, bool isSigned)
{
    const DeviceGate& gate = *context.gate;
    CallText why;
    why << enumerantText(enumerant);
    why << " is not available on " << gate.table().name << ": " << gate.availability().needOf(enumerant);
    refuseGl(context, function, arguments, isSigned ? gl::invalidValue : gl::invalidEnum, why.text());
}

} // namespace

bool refuses(Context& context, Fn function, std::initializer_list<Argument> arguments)
{
    const FunctionRow& row = rowOf(function);
    const DeviceGate& gate = *context.gate;
    const Argument* values = arguments.begin();
    for (unsigned rest = row.enumerants; rest != 0; rest &= rest - 1) {
        const auto place = static_cast<std::size_t>(std::countr_zero(rest));
        const auto enumerant = static_cast<GLenum>(values[place].bits);
        if (!gate.blocks(enumerant)) [[likely]]
            continue;
        if (gate.blocks(function))
            return false;
        refuseEnumerant(context, function, arguments, enumerant, isSignedParameter(row, place));
        return true;
    }
    for (std::size_t i = row.firstLimit; i < std::size_t{row.firstLimit} + row.limitCount; ++i) {
        const Refusal refusal = checkLimit(gate, i, arguments);
        if (refusal.code == gl::none) [[likely]]
            continue;
        if (gate.blocks(function))
            return false;
        refuseGl(context, function, arguments, refusal.code, refusal.why);
        return true;
    }
    return false;
}

bool isBeyondLimits(const Context& context, Fn function, std::initializer_list<Argument> arguments)
{
    const FunctionRow& row = rowOf(function);
    for (std::size_t i = row.firstLimit; context.gate && i < std::size_t{row.firstLimit} + row.limitCount;
         ++i) {
        if (checkLimit(*context.gate, i, arguments).code != gl::none)
            return true;
    }
    return false;
}

} // namespace layer
