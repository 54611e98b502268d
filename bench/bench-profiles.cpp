// How long does the catalogue take for a folder of many profiles: bench-profiles [profiles] [configs in
// each]. Works in a folder of its own.

#include "KeyTables.h"
#include "Numbers.h"
#include "Preferences.h"
#include "ProfileCatalogue.h"
#include "ProfileData.h"
#include "ProfileDataWrapper.h"
#include "ProfileFile.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr int rounds = 9;

void require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

template <typename Work> void report(const char* what, int times, Work work)
{
    std::vector<double> durations(static_cast<std::size_t>(times));
    for (double& duration : durations) {
        const auto start = std::chrono::steady_clock::now();
        work();
        duration =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }
    std::sort(durations.begin(), durations.end());
    std::printf("  %-28s median %8.2f ms, worst %8.2f ms, %d times\n", what, durations[durations.size() / 2],
        durations.back(), times);
}

/// A profile with every capability and attribute that the editor knows.
ProfileData fullProfile(std::int64_t configs)
{
    ProfileData profile = readProfile("<profile><vendor>Vendor</vendor></profile>");
    for (const int version : {1, 2, 3}) {
        for (int i = 0; i < 40; ++i)
            profile.extensions()[version].push_back("GL_OES_extension_" + std::to_string(100 + i));
        visitESCapabilityKeyNodes([&](const ESCapabilityKeyNode& node) {
            profile.capabilities()[version].push_back({node.key.xmlName.text, "4096", {}});
        });
    }
    for (int id = 1; id <= configs; ++id) {
        visitEGLAttribKeys([&](const EGLAttribKey& key) {
            profile.configs()[id].push_back({key.xmlPath.front(), "EGL_DONT_CARE", {}});
        });
    }
    return profile;
}

void measure(const std::string& folder, std::int64_t profiles, std::int64_t configs)
{
    Preferences preferences("Bench");
    std::string error;
    require(preferences.load(error), error.c_str());
    preferences.setUnsaved(settings::profilesDirectory, folder);
    ProfileData profile = fullProfile(configs);
    std::printf(
        "%jd profiles of %zu bytes\n", static_cast<std::intmax_t>(profiles), writeProfile(profile).size());
    report("save all", 1, [&] {
        for (std::int64_t i = 0; i < profiles; ++i) {
            profile.setFileName(std::to_string(i) + ".xml");
            require(!profile_file::write(profile, folder), "cannot save");
        }
    });
    std::optional<ProfileCatalogue> catalogue;
    report("load all", rounds, [&] { catalogue.emplace(preferences); });
    require(std::ssize(catalogue->userProfiles()) == profiles, "a profile is missing");
    report("reload, nothing changed", rounds, [&] { catalogue->reload(); });
    const auto changed = catalogue->userProfiles().front()->edit();
    report("save one and reload", rounds, [&] {
        changed->setDevice(changed->device() + "+");
        require(!profile_file::write(*changed, folder), "cannot save");
        catalogue->reload();
    });
}

} // namespace

int main(int argc, char** argv)
{
    const std::int64_t profiles = argc > 1 ? platform::parseInteger(argv[1]).value_or(0) : 1000;
    const std::int64_t configs = argc > 2 ? platform::parseInteger(argv[2]).value_or(-1) : 20;
    require(profiles > 0 && configs >= 0, "usage: bench-profiles [profiles] [configs in each]");
    std::string folder = (std::filesystem::temp_directory_path() / "corvale-bench-XXXXXX").native();
    require(mkdtemp(folder.data()), "cannot make a folder");
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    // Where the preferences are is a subfolder, which the catalogue does not look into.
    measure(folder, profiles, configs);
    std::filesystem::remove_all(folder);
    return 0;
}
