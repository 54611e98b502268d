#include "ProfileFile.h"

#include "FileErrors.h"
#include "FileReplacement.h"
#include "ProfileData.h"

namespace fs = std::filesystem;

namespace profilefile {

fs::path pathFor(const std::string& directory, const std::string& fileName)
{
    const fs::path path = fs::path(directory) / fileName;
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    return error ? path : absolute;
}

std::optional<Failure> write(const ProfileData& profile, const std::string& directory)
{
    const fs::path path = pathFor(directory, profile.fileName());
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

} // namespace profilefile
