#include "ProfileCatalogue.h"

#include "NaturalOrder.h"
#include "Preferences.h"
#include "ProfileData.h"
#include "ProfileDataWrapper.h"
#include "ProfileFile.h"

#include <algorithm>

namespace {

constexpr std::string_view newProfileText =
    "\t\t\t<profile>\t\t\t\t<vendor>Unknown vendor</vendor>\t\t\t\t<renderer>Unknown renderer</renderer>"
    "\t\t\t\t<device>New profile</device>\t\t\t</profile>\t\t";

} // namespace

ProfileCatalogue::ProfileCatalogue(
    Preferences& preferences, std::span<const builtin_profiles::TextEntry> builtins)
    : m_preferences(preferences)
{
    loadBuiltins(builtins);
    reload();
}

void ProfileCatalogue::loadBuiltins(std::span<const builtin_profiles::TextEntry> documents)
{
    for (const builtin_profiles::TextEntry& document : documents) {
        try {
            Pointer profile = ProfileDataWrapper::fromText(document.xml, false);
            // One without a name could neither be shown nor found.
            static_cast<void>(profile->key());
            m_builtins.push_back(std::move(profile));
        } catch (const std::runtime_error& error) {
            m_brokenBuiltins.push_back({std::string(document.fileName), error.what()});
        }
    }
    std::stable_sort(m_builtins.begin(), m_builtins.end(), [](const Pointer& left, const Pointer& right) {
        return naturalLess(left->data().displayName(), right->data().displayName());
    });
}

void ProfileCatalogue::reload()
{
    m_folder.read(profilesDirectory());
}

std::vector<ProfileCatalogue::BrokenFile> ProfileCatalogue::brokenFiles() const
{
    std::vector<BrokenFile> broken = m_brokenBuiltins;
    broken.insert(broken.end(), m_folder.brokenFiles().begin(), m_folder.brokenFiles().end());
    return broken;
}

ProfileCatalogue::Pointer ProfileCatalogue::find(std::string_view key) const
{
    if (key.empty())
        return nullptr;
    for (const std::vector<Pointer>* profiles : {&m_builtins, &m_folder.profiles()}) {
        for (const Pointer& profile : *profiles) {
            if (profile->key() == key)
                return profile;
        }
    }
    return nullptr;
}

ProfileCatalogue::Pointer ProfileCatalogue::findFile(const std::string& path) const
{
    return m_folder.findFile(path);
}

bool ProfileCatalogue::contains(const ProfileDataWrapper& profile) const
{
    const auto has = [&profile](const std::vector<Pointer>& profiles) {
        return std::any_of(profiles.begin(), profiles.end(),
            [&profile](const Pointer& listed) { return listed.get() == &profile; });
    };
    return has(m_builtins) || has(m_folder.profiles());
}

ProfileCatalogue::Pointer ProfileCatalogue::newProfile()
{
    Pointer profile = ProfileDataWrapper::fromText(newProfileText, true);
    m_folder.add(profile);
    return profile;
}

ProfileCatalogue::Pointer ProfileCatalogue::copyProfile(const ProfileDataWrapper& original)
{
    const std::string fileName = profile_file::nameFrom(original.data().displayName()) + " (copy).xml";
    Pointer copy = ProfileDataWrapper::copyOf(original);
    copy->edit()->setFileName(fileName);
    m_folder.add(copy);
    return copy;
}

void ProfileCatalogue::rememberCurrent(const std::string& key)
{
    m_preferences.set(settings::currentProfile, key);
}

ProfileCatalogue::Pointer ProfileCatalogue::current() const
{
    return find(m_preferences.get(settings::currentProfile));
}

std::string ProfileCatalogue::profilesDirectory() const
{
    return m_preferences.get(settings::profilesDirectory);
}
