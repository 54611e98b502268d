#include "ProfileFile.h"

#include "FileErrors.h"
#include "FileReplacement.h"
#include "ProfileData.h"

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

} // namespace

namespace profile_file {

std::string nameFrom(std::string text)
{
    std::replace(text.begin(), text.end(), '/', '_');
    return text;
}

fs::path pathFor(const std::string& directory, const std::string& fileName)
{
    const fs::path path = fs::path(directory) / fileName;
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    return error ? path : absolute;
}

std::optional<Failure> write(const ProfileData& profile, const std::string& directory)
{
    const std::string& name = profile.fileName();
    if (directory.empty())
        return Failure{false,
            "Cannot write '" + name + "': no profiles directory is set, choose one in the preferences"};
    if (!isFileName(name))
        return Failure{false, "Cannot write the profile: '" + name + "' is no name for a file"};
    if (name.starts_with('.') || name.ends_with(".tmp"))
        return Failure{
            false, "Cannot write '" + name + "': files that begin with '.' or end in '.tmp' are not listed"};
    const fs::path path = pathFor(directory, name);
    const std::string hazard = profile.whyNotSavable();
    if (!hazard.empty())
        return Failure{false,
            "Cannot write " + platform::readablePath(path) + " so that it can be read again: " + hazard};
    platform::FileReplacement replacement(path);
    if (!replacement.ready())
        return Failure{true, replacement.reason()};
    const platform::FileResult result = replacement.commit(profile.toXml());
    return result ? std::nullopt : std::optional(Failure{false, result.reason});
}

} // namespace profile_file
