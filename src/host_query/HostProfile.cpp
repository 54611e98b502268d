#include "HostProfile.h"

#include "ApiQuery.h"
#include "ChildAnswer.h"
#include "ConfigQuery.h"
#include "EglStrings.h"
#include "HostDisplay.h"
#include "Limits.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <array>

using namespace std::chrono_literals;

namespace host_query {

namespace {

/// Drivers may compile something when they start.
constexpr auto patience = 20s;

struct Version {
    int section; ///< As the attribute of an `es` element.
    int digits;
    const char* name;
};
constexpr std::array<Version, 5> versions{{{1, 11, "OpenGL ES 1.1"}, {2, 20, "OpenGL ES 2.0"},
    {3, 30, "OpenGL ES 3.0"}, {31, 31, "OpenGL ES 3.1"}, {32, 32, "OpenGL ES 3.2"}}};

std::optional<ProfileData> ask(const std::string& what, const std::function<void(ProfileData&)>& fill,
    std::vector<std::string>& problems)
{
    const ChildAnswer answer = askChild(
        [&fill] {
            ProfileData part;
            fill(part);
            return writeProfile(part);
        },
        patience, platform::limits::fileSize);
    std::string reason = answer.text;
    if (answer.isGiven) {
        try {
            return readProfile(answer.text);
        } catch (const ProfileError& error) {
            reason = error.reason();
        }
    }
    // Where there is no EGL at all, it is said once.
    if (problems.empty() || !problems.front().ends_with(": " + reason + "."))
        problems.push_back("This machine cannot be asked for " + what + ": " + reason + ".");
    return std::nullopt;
}

} // namespace

HostProfile askHost()
{
    HostProfile host;
    ProfileData profile;
    const auto configs = ask(
        "its EGL configs", [](ProfileData& part) { addConfigs(HostDisplay(), part); }, host.problems);
    if (configs) {
        setEglStrings(profile, eglStrings(*configs));
        profile.configs() = configs->configs();
    }
    for (const Version& version : versions) {
        const auto fill = [&version](ProfileData& part) {
            HostDisplay display;
            display.makeCurrent(version.digits);
            addApi(display, version.digits, version.section, part);
        };
        const auto part = ask(version.name, fill, host.problems);
        if (!part)
            continue;
        profile.setVendor(part->vendor());
        profile.setRenderer(part->renderer());
        profile.extensions().insert(part->extensions().begin(), part->extensions().end());
        profile.capabilities().insert(part->capabilities().begin(), part->capabilities().end());
    }
    if (profile.extensions().empty())
        return host;
    profile.setDevice("Machine with " + profile.renderer());
    host.profile = readWritten(profile);
    return host;
}

} // namespace host_query
