#include "ProfileFile.h"

#include "FileErrors.h"
#include "FileReplacement.h"
#include "Limits.h"
#include "ProfileData.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <algorithm>
#include <string_view>

namespace fs = std::filesystem;

namespace {

/// Whether the name is that of a file in the folder itself.
bool isFileName(const std::string& name)
{
    constexpr std::string_view forbidden("/\0", 2);
    return !name.empty() && name != "." && name != ".." && name.find_first_of(forbidden) == std::string::npos;
}

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

namespace profile_file {

std::string nameFrom(std::string text)
{
    std::replace(text.begin(), text.end(), '/', '_');
    return text;
}

std::string nameForSaving(const ProfileData& profile)
{
    if (!profile.fileName().empty())
        return profile.fileName();
    std::string name = nameFrom(profile.displayName());
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || name.substr(dot + 1) != "xml")
        name += ".xml";
    return name;
}

fs::path pathFor(const std::string& directory, const std::string& fileName)
{
    const fs::path path = fs::path(directory) / fileName;
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    return error ? path : absolute;
}

std::string whyNotSavable(const ProfileData& profile)
{
    std::string reason;
    const auto check = [&reason](std::string found) {
        if (reason.empty())
            reason = std::move(found);
    };
    for (const std::string* text : {&profile.device(), &profile.renderer(), &profile.vendor()})
        check(whyNotSavableText(*text));
    for (const auto& [version, names] : profile.extensions()) {
        for (const std::string& name : names)
            check(whyNotSavableText(name));
    }
    for (const auto& [version, nodes] : profile.capabilities()) {
        for (const ProfileNode& node : nodes)
            check(node.name == "extension" ? "a capability is called 'extension'" : "");
    }
    for (const auto* sections : {&profile.capabilities(), &profile.configs()}) {
        for (const auto& [number, nodes] : *sections)
            check(whyNotSavableNodes(nodes));
    }
    if (!reason.empty())
        return reason;
    // Size, depth and encoding are judged by who will have to read it.
    const std::string xml = writeProfile(profile);
    if (xml.size() > platform::limits::fileSize)
        return "it is larger than " + std::to_string(platform::limits::fileSize) + " bytes";
    try {
        readProfile(xml);
    } catch (const ProfileError& error) {
        return error.reason();
    }
    return {};
}

std::string whyNoFileName(const std::string& name)
{
    if (!isFileName(name))
        return "Cannot write the profile: '" + name + "' is no name for a file";
    if (name.starts_with('.') || name.ends_with(".tmp"))
        return "Cannot write '" + name + "': files that begin with '.' or end in '.tmp' are not listed";
    return {};
}

std::optional<Failure> write(const ProfileData& profile, const std::string& directory)
{
    const std::string& name = profile.fileName();
    if (directory.empty())
        return Failure{false,
            "Cannot write '" + name + "': no profiles directory is set, choose one in the preferences"};
    const std::string unusable = whyNoFileName(name);
    if (!unusable.empty())
        return Failure{false, unusable};
    const fs::path path = pathFor(directory, name);
    const std::string hazard = whyNotSavable(profile);
    if (!hazard.empty())
        return Failure{false,
            "Cannot write " + platform::readablePath(path) + " so that it can be read again: " + hazard};
    platform::FileReplacement replacement(path);
    if (!replacement.ready())
        return Failure{true, replacement.reason()};
    const platform::FileResult result = replacement.commit(writeProfile(profile));
    return result ? std::nullopt : std::optional(Failure{false, result.reason});
}

} // namespace profile_file
