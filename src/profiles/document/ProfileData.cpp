#include "ProfileData.h"

#include "GuardedFile.h"
#include "Limits.h"
#include "ProfileFile.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <algorithm>
#include <filesystem>
#include <tuple>

namespace {

bool isNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':'
        || static_cast<unsigned char>(c) >= 0x80;
}

bool isElementName(std::string_view name)
{
    return !name.empty() && isNameStart(name[0]) && std::all_of(name.begin(), name.end(), [](char c) {
        return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
}

std::string whyNotSavableText(const std::string& text)
{
    return text.find('\0') == std::string::npos ? "" : "a text holds a NUL character";
}

std::string whyNotSavableNodes(const std::vector<ProfileNode>& nodes)
{
    std::string reason;
    for (const ProfileNode& node : nodes) {
        if (!isElementName(node.name))
            return "'" + node.name + "' is no name of an XML element";
        reason = whyNotSavableText(node.value);
        if (reason.empty())
            reason = whyNotSavableNodes(node.children);
        if (!reason.empty())
            break;
    }
    return reason;
}

} // namespace

ProfileError::ProfileError(const std::string& what, const std::string& reason)
    : std::runtime_error(reason.empty() ? what : what + " (" + reason + ')')
    , m_reason(reason)
{
}

ProfileData ProfileData::fromFile(const std::string& path)
{
    ProfileData profile;
    profile.m_fileName = std::filesystem::path(path).filename().string();
    const platform::FileBytes file = platform::readFile(path, platform::limits::fileSize);
    const std::string reason = file.ok ? ProfileReader(profile).read(file.bytes) : file.reason;
    if (!file.ok || !reason.empty())
        throw ProfileError("Failed to load profile data from file: '" + path + "'", reason);
    return profile;
}

ProfileData ProfileData::fromText(std::string_view xml)
{
    ProfileData profile;
    const std::string reason = ProfileReader(profile).read(xml);
    if (!reason.empty())
        throw ProfileError("Failed to load profile data", reason);
    return profile;
}

std::string ProfileData::displayName() const
{
    if (!m_device.empty())
        return m_device;
    if (!m_renderer.empty())
        return "Generic " + m_renderer;
    if (!m_fileName.empty())
        return m_fileName;
    throw std::runtime_error("Profile has no name");
}

std::string ProfileData::fileNameForSaving() const
{
    if (!m_fileName.empty())
        return m_fileName;
    std::string name = profile_file::nameFrom(displayName());
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || name.substr(dot + 1) != "xml")
        name += ".xml";
    return name;
}

std::string ProfileData::toXml() const
{
    return ProfileWriter(*this).write();
}

std::string ProfileData::whyNotSavable() const
{
    std::string reason;
    const auto check = [&reason](std::string found) {
        if (reason.empty())
            reason = std::move(found);
    };
    for (const std::string* text : {&m_device, &m_renderer, &m_vendor})
        check(whyNotSavableText(*text));
    for (const auto& [version, names] : m_extensions) {
        for (const std::string& name : names)
            check(whyNotSavableText(name));
    }
    for (const auto& [version, nodes] : m_capabilities) {
        for (const ProfileNode& node : nodes)
            check(node.name == "extension" ? "a capability is called 'extension'" : "");
    }
    for (const auto* sections : {&m_capabilities, &m_configs}) {
        for (const auto& [number, nodes] : *sections)
            check(whyNotSavableNodes(nodes));
    }
    if (!reason.empty())
        return reason;
    // Size, depth and encoding are judged by who will have to read it.
    const std::string xml = toXml();
    if (xml.size() > platform::limits::fileSize)
        return "it is larger than " + std::to_string(platform::limits::fileSize) + " bytes";
    ProfileData again;
    return ProfileReader(again).read(xml);
}

bool ProfileData::operator==(const ProfileData& other) const
{
    const auto saved = [](const ProfileData& profile) {
        return std::tie(profile.m_device, profile.m_renderer, profile.m_vendor, profile.m_capabilities,
            profile.m_extensions, profile.m_configs, profile.m_foreign, profile.m_foreignInEgl);
    };
    return saved(*this) == saved(other);
}
