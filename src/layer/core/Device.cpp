#include "Device.h"

#include "BeyondHost.h"
#include "Notices.h"
#include "Process.h"
#include "Records.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <vector>

namespace layer {

namespace {

/// Profiles are of 8 MiB at most, and their tables are smaller.
constexpr std::size_t tableSizeLimit = std::size_t{16} << 20U;

std::unique_ptr<device::Table> load(const std::string& path)
{
    std::string why = "it cannot be read";
    std::ifstream in(path, std::ios::binary);
    std::string text(tableSizeLimit + 1, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
    if (text.size() > tableSizeLimit)
        why = "it is too large";
    else if (!text.empty()) {
        if (std::optional<device::Table> table = device::fromText(text, &why))
            return std::make_unique<device::Table>(std::move(*table));
    }
    records::error(
        "The program sees this machine and not the profile that was asked for: " + path + ": " + why + ".");
    return nullptr;
}

std::string number(int version)
{
    return std::to_string(version / 10) + '.' + std::to_string(version % 10);
}

} // namespace

const device::Table* emulatedDevice()
{
    static const device::Table* const table =
        options().device.empty() ? nullptr : load(options().device).release();
    return table;
}

const device::Api* findApi(const device::Table& table, int version)
{
    // The two families are not compatible with each other.
    const int last = version < 20 ? 19 : 99;
    const auto found = std::ranges::find_if(
        table.apis, [=](const device::Api& api) { return api.version >= version && api.version <= last; });
    const bool isVersion =
        version == 10 || version == 11 || version == 20 || (version >= 30 && version <= 32);
    return isVersion && found != table.apis.end() ? &*found : nullptr;
}

int offeredVersion(const device::Api& api)
{
    const auto text = api.texts.find(gl::version);
    if (text == api.texts.end() || api.version < 20)
        return api.version;
    return std::clamp(versionIn(text->second), api.version, 32);
}

std::string apiName(int version)
{
    return "OpenGL ES " + number(version);
}

std::string apiNames(const device::Table& table)
{
    if (table.apis.empty())
        return "no OpenGL ES";
    std::string names = apiName(table.apis.front().version);
    for (std::size_t i = 1; i < table.apis.size(); ++i)
        names += (i + 1 == table.apis.size() ? " and " : ", ") + number(table.apis[i].version);
    return names;
}

std::string deviceNotice(const device::Table& table)
{
    return notices::device(table.name, apiNames(table));
}

std::int64_t capability(const device::Api& api, GLenum name, std::int64_t fallback)
{
    const auto found = api.capabilities.find(name);
    return found == api.capabilities.end() || found->second.empty()
        ? fallback
        : convert<std::int64_t>(found->second.front());
}

} // namespace layer
