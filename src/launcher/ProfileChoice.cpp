#include "ProfileChoice.h"

#include "FileErrors.h"
#include "Preferences.h"
#include "PrintedText.h"
#include "ProfileCatalogue.h"
#include "ProfileDataWrapper.h"
#include "ProfileReader.h"
#include "TSRPreferencesImpl.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <string_view>
#include <utility>
#include <vector>

#include <fnmatch.h>

namespace fs = std::filesystem;

namespace launcher {

namespace {

using Pointer = ProfileCatalogue::Pointer;

constexpr const char* hostName = "Host";

std::string lower(std::string text)
{
    for (char& letter : text) {
        if (letter >= 'A' && letter <= 'Z')
            letter = char(letter - 'A' + 'a');
    }
    return text;
}

/// Without the ending that files of profiles have.
std::string stemOf(const std::string& key)
{
    return key.ends_with(".xml") ? key.substr(0, key.size() - 4) : key;
}

/// How many letters have to be changed, added or left out to make one text of the other.
std::size_t distance(std::string_view left, std::string_view right)
{
    constexpr std::size_t letters = 100;
    left = left.substr(0, letters);
    right = right.substr(0, letters);
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t change = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({change, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

/// Whether there are preferences: loading makes the file where there is none.
bool hasPreferences()
{
    std::string folder;
    std::error_code error;
    return PlistPreferences::platformLayer()->folderPath(folder, TSRPreferencesImpl::perUser)
        && fs::exists(fs::path(folder) / (std::string(settings::storeName) + ".plist"), error);
}

/// What the window's user has set. It is only read.
class WindowSettings {
public:
    WindowSettings()
    {
        std::string error;
        const bool isThere = hasPreferences();
        if (isThere && !m_preferences.load(error))
            m_problem = m_preferences.loadProblem();
        else if (isThere && m_preferences.isUnreadable())
            m_problem = platform::readablePath(m_preferences.path()) + " holds no preferences.";
    }

    Preferences& preferences() { return m_preferences; }
    bool isStrict() const { return m_preferences.get(settings::strictContextMode); }
    std::string chosenKey() const { return m_preferences.get(settings::currentProfile); }
    /// Why the preferences cannot be read; empty if they can.
    const std::string& problem() const { return m_problem; }

private:
    Preferences m_preferences;
    std::string m_problem;
};

/// The profiles as the window has them. Reading them takes some milliseconds.
class Profiles {
public:
    explicit Profiles(WindowSettings& settings)
        : m_catalogue(settings.preferences())
    {
        for (const auto* list : {&m_catalogue.builtinProfiles(), &m_catalogue.userProfiles()}) {
            for (const Pointer& profile : *list)
                m_all.push_back(profile);
        }
    }

    const ProfileCatalogue& catalogue() const { return m_catalogue; }

    /// Those that a name may mean; of the ways to mean one, only the first that fits counts.
    std::vector<Pointer> named(const std::string& name) const
    {
        if (const Pointer exact = m_catalogue.find(name))
            return {exact};
        std::vector<Pointer> found = where([&](const Pointer& profile) { return nameOf(profile) == name; });
        const std::string wanted = lower(name);
        if (found.empty())
            found = where([&](const Pointer& profile) {
                return lower(nameOf(profile)) == wanted || lower(profile->key()) == wanted
                    || lower(stemOf(profile->key())) == wanted;
            });
        return found;
    }

    /// Those whose names fit a pattern of fnmatch().
    std::vector<Pointer> like(const std::string& pattern) const
    {
        return where([&](const Pointer& profile) {
            return fnmatch(pattern.c_str(), nameOf(profile).c_str(), FNM_CASEFOLD) == 0
                || fnmatch(pattern.c_str(), stemOf(profile->key()).c_str(), FNM_CASEFOLD) == 0;
        });
    }

    std::string nearest(const std::string& name) const
    {
        std::string best;
        std::size_t least = std::string::npos;
        for (const Pointer& profile : m_all) {
            const std::size_t found = distance(lower(name), lower(nameOf(profile)));
            if (found < least) {
                least = found;
                best = nameOf(profile);
            }
        }
        return best;
    }

    /// In lines that begin with the indent.
    std::string list(const std::string& indent) const
    {
        std::string lines = indent + hostName + "\n";
        for (const Pointer& profile : m_all)
            lines += indent + lineOf(profile) + "\n";
        return lines;
    }

    /// Why the file of that name could not be loaded; empty if there is none of that kind.
    std::string whyBroken(const std::string& name) const
    {
        for (const ProfileCatalogue::BrokenFile& broken : m_catalogue.brokenFiles()) {
            if (broken.file == name || stemOf(broken.file) == name)
                return broken.file + " cannot be loaded: " + broken.reason;
        }
        return {};
    }

    static std::string nameOf(const Pointer& profile) { return profile->data().displayName(); }
    /// The name, and the file of a profile of the user.
    static std::string lineOf(const Pointer& profile)
    {
        const std::string file = profile->isWritable() ? " (" + profile->key() + ")" : "";
        return printed(nameOf(profile) + file);
    }

private:
    template <typename Condition> std::vector<Pointer> where(const Condition& condition) const
    {
        std::vector<Pointer> found;
        std::copy_if(m_all.begin(), m_all.end(), std::back_inserter(found), condition);
        return found;
    }

    ProfileCatalogue m_catalogue;
    std::vector<Pointer> m_all;
};

bool isRegularFile(const std::string& path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
}

void readFile(const std::string& path, ProfileChoice& choice)
{
    try {
        choice.profile = readProfileFile(path);
    } catch (const ProfileError& error) {
        choice.refusal = "corvale-run: " + printed(error.what()) + "\n";
    }
}

void findNamed(const std::string& name, const Profiles& profiles, ProfileChoice& choice)
{
    const std::vector<Pointer> found = profiles.named(name);
    if (found.size() == 1) {
        choice.profile = found.front()->data();
    } else if (!found.empty()) {
        choice.refusal = "corvale-run: Several profiles are called " + printed(name) + ":\n";
        for (const Pointer& profile : found)
            choice.refusal += "  " + Profiles::lineOf(profile) + "\n";
        choice.refusal += "Give the name of the file.\n";
    } else if (isRegularFile(name)) {
        readFile(name, choice);
    } else if (const std::string why = profiles.whyBroken(name); !why.empty()) {
        choice.refusal = "corvale-run: " + printed(why) + "\n";
    } else {
        choice.refusal = "corvale-run: There is no profile " + printed(name) + ". Did you mean "
            + printed(profiles.nearest(name)) + "? There are:\n" + profiles.list("  ");
    }
}

} // namespace

ProfileChoice chooseProfile(const std::optional<std::string>& wanted)
{
    ProfileChoice choice;
    WindowSettings window;
    choice.isStrict = window.isStrict();
    if (wanted && lower(*wanted) == lower(hostName))
        return choice;
    if (wanted && wanted->find('/') != std::string::npos) {
        readFile(*wanted, choice);
    } else if (wanted) {
        findNamed(*wanted, Profiles(window), choice);
    } else if (!window.problem().empty()) {
        choice.warning = "The profile that is chosen in the window is not known: " + window.problem();
    } else if (const std::string key = window.chosenKey(); !key.empty()) {
        const Profiles profiles(window);
        if (const Pointer chosen = profiles.catalogue().find(key))
            choice.profile = chosen->data();
        else
            choice.warning = "The profile that is chosen in the window is not there any more: " + printed(key)
                + ". The program sees this machine.";
    }
    return choice;
}

std::vector<std::string> profilesLike(const std::string& pattern)
{
    WindowSettings window;
    const Profiles profiles(window);
    std::vector<std::string> keys;
    for (const Pointer& profile : profiles.like(pattern))
        keys.push_back(profile->key());
    return keys;
}

std::string profileList()
{
    WindowSettings window;
    return Profiles(window).list("");
}

} // namespace launcher
