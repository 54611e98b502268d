// What is saved is loaded again as equal, be it as it was read or edited, and a second save changes no byte.

#include "ProfileData.h"
#include "ProfileFile.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

namespace {

void demand(bool condition, const char* what, const std::string& detail)
{
    if (condition)
        return;
    std::fprintf(stderr, "broken: %s\n%s\n", what, detail.c_str());
    std::abort();
}

std::optional<ProfileData> load(const std::string& text, std::string& error)
{
    try {
        return readProfile(text);
    } catch (const ProfileError& failure) {
        error = failure.what();
        return std::nullopt;
    }
}

void demandRoundTrip(const ProfileData& profile)
{
    std::string error;
    const std::string saved = writeProfile(profile);
    const std::optional<ProfileData> again = load(saved, error);
    demand(again.has_value(), "what was saved can be loaded", error + '\n' + saved);
    demand(*again == profile, "what was saved is loaded as equal", saved);
    demand(writeProfile(*again) == saved, "the second save is the first", saved);
}

ProfileNode someNode(FuzzedDataProvider& input)
{
    ProfileNode node{input.ConsumeRandomLengthString(12), {}, {}};
    if (input.ConsumeBool())
        node.children.push_back(someNode(input));
    else
        node.value = input.ConsumeRandomLengthString(20);
    return node;
}

void edit(ProfileData& profile, FuzzedDataProvider& input)
{
    profile.setDevice(input.ConsumeRandomLengthString(20));
    profile.configs()[input.ConsumeIntegral<int>()].push_back(someNode(input));
    const int version = input.ConsumeIntegral<int>();
    profile.capabilities()[version].push_back(someNode(input));
    std::vector<std::string>& extensions = profile.extensions()[version];
    extensions.push_back(input.ConsumeRandomLengthString(20));
    std::sort(extensions.begin(), extensions.end());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider input(bytes, size);
    std::string error;
    std::optional<ProfileData> profile = load(input.ConsumeRandomLengthString(4096), error);
    if (!profile) {
        demand(error.starts_with("Failed to load profile data ("), "a failure has a reason", error);
        return 0;
    }
    demand(profile_file::whyNotSavable(*profile).empty(), "what was loaded can be saved",
        writeProfile(*profile));
    demandRoundTrip(*profile);
    edit(*profile, input);
    if (profile_file::whyNotSavable(*profile).empty())
        demandRoundTrip(*profile);
    return 0;
}
