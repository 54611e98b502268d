#include "MemoryLayer.h"
#include "Preferences.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

class Settings : public testing::Test {
protected:
    Settings()
    {
        preferences.setSaveObserver([this](const SaveOutcome& outcome) { outcomes.push_back(outcome); });
    }
    void load(const std::string& content = std::string(property_list::emptyFile))
    {
        disk.content = content;
        std::string error;
        ASSERT_TRUE(preferences.load(error)) << error;
    }
    /// As another program would read it.
    template <typename T> T onDisk(const Setting<T>& setting)
    {
        Preferences other("Store", std::make_unique<MemoryLayer>(disk));
        std::string error;
        EXPECT_TRUE(other.load(error)) << error;
        return other.get(setting);
    }
    /// The kinds of the outcomes since the last call, by their index in SaveOutcome.
    std::vector<std::size_t> outcomeKinds()
    {
        std::vector<std::size_t> kinds;
        for (const SaveOutcome& outcome : std::exchange(outcomes, {}))
            kinds.push_back(outcome.index());
        return kinds;
    }

    MemoryDisk disk;
    Preferences preferences{"Store", std::make_unique<MemoryLayer>(disk)};
    std::vector<SaveOutcome> outcomes;
};

using Kinds = std::vector<std::size_t>;
constexpr std::size_t saved = 0;
constexpr std::size_t notSaved = 1;
constexpr std::size_t setAside = 2;
constexpr std::size_t waiting = 3;

} // namespace

TEST_F(Settings, defaultsHoldWhereNothingOfTheTypeIsStored)
{
    load("<plist><dict><key>Stats</key><dict><key>CollectUsage</key><string>no</string></dict></dict></"
         "plist>");
    EXPECT_TRUE(preferences.get(settings::collectUsage));
    EXPECT_TRUE(preferences.get(settings::showSplash));
    EXPECT_FALSE(preferences.get(settings::strictContextMode));
    EXPECT_EQ(preferences.get(settings::theme), "system");
    EXPECT_EQ(preferences.get(settings::currentProfile), "");
    setenv("CORVALE_PROFILE_PATH", "/from/environment", 1);
    EXPECT_EQ(preferences.get(settings::profilesDirectory), "/from/environment");
    preferences.set(settings::profilesDirectory, "");
    EXPECT_EQ(preferences.get(settings::profilesDirectory), "/from/environment") << "an empty one is none";
    preferences.set(settings::profilesDirectory, "/stored");
    EXPECT_EQ(preferences.get(settings::profilesDirectory), "/stored");
    unsetenv("CORVALE_PROFILE_PATH");
}

/// Files of earlier builds must go on working.
TEST_F(Settings, keyPathsAreFixed)
{
    const std::string product = "Corvale 10.17.2/";
    EXPECT_EQ(settings::currentProfile.keyPath, product + "current_profile");
    EXPECT_EQ(settings::guiFont.keyPath, product + "gui_font");
    EXPECT_EQ(settings::profilesDirectory.keyPath, product + "profiles_directory");
    EXPECT_EQ(settings::strictContextMode.keyPath, product + "strict_context_mode");
    EXPECT_EQ(settings::radeonHdHackKeyPath, product + "radeon_hd_hack");
    EXPECT_EQ(settings::showSplash.keyPath, product + "About/ShowSplash");
    EXPECT_EQ(settings::collectUsage.keyPath, "Stats/CollectUsage");
    EXPECT_EQ(settings::documentPath("Manual.html").keyPath, "OpenDocs/Manual.html");
}

TEST_F(Settings, changesAreSavedAtOnceAndReportedOnce)
{
    load();
    preferences.set(settings::recentFiles, {"/a", "/b"});
    EXPECT_EQ(outcomeKinds(), Kinds{saved});
    EXPECT_EQ(onDisk(settings::recentFiles), (property_list::List{"/a", "/b"}));

    preferences.set({{settings::profilesDirectory, "/profiles"}, {settings::strictContextMode, true}});
    EXPECT_EQ(outcomeKinds(), Kinds{saved});
    EXPECT_EQ(disk.commits, 2);
    EXPECT_EQ(onDisk(settings::profilesDirectory), "/profiles");
    EXPECT_TRUE(onDisk(settings::strictContextMode));

    preferences.setUnsaved(settings::collectUsage, false);
    EXPECT_EQ(outcomeKinds(), Kinds{});
    EXPECT_FALSE(preferences.get(settings::collectUsage));
    EXPECT_TRUE(onDisk(settings::collectUsage));
    preferences.set(settings::theme, "dark");
    EXPECT_FALSE(onDisk(settings::collectUsage)) << "the next save takes it along";

    preferences.setSaveObserver({});
    preferences.set(settings::theme, "light");
    EXPECT_EQ(onDisk(settings::theme), "light");
}

TEST_F(Settings, failuresAreReportedWithTheirReason)
{
    preferences.set(settings::theme, "dark");
    EXPECT_EQ(outcomeKinds(), Kinds{notSaved}) << "nothing is loaded";
    load();
    disk.commitFailure = "the disk is full";
    preferences.set(settings::theme, "dark");
    ASSERT_EQ(outcomes.size(), 1U);
    ASSERT_EQ(outcomes[0].index(), notSaved);
    EXPECT_EQ(std::get<save_outcome::NotSaved>(outcomes[0]).reason, "the disk is full");
    disk.commitFailure.clear();
    preferences.set({{settings::guiFont, "Mono"}, {settings::currentProfile, std::string("a\0b", 3)}});
    EXPECT_EQ(outcomeKinds(), (Kinds{notSaved, notSaved})) << "a file cannot hold the second value";
    EXPECT_EQ(onDisk(settings::theme) + onDisk(settings::guiFont), "darkMono");
}

TEST_F(Settings, whatCannotBeOpenedIsReportedAsWell)
{
    load();
    disk.writable = false;
    preferences.set(settings::theme, "dark");
    ASSERT_EQ(outcomes.size(), 1U);
    ASSERT_EQ(outcomes[0].index(), notSaved);
    EXPECT_EQ(std::get<save_outcome::NotSaved>(outcomes[0]).reason, "the folder is read-only");
    disk.writable = true;
    preferences.set(settings::guiFont, "Mono");
    EXPECT_EQ(outcomeKinds(), (Kinds{notSaved, saved}));
    EXPECT_EQ(onDisk(settings::theme), "dark") << "the next save takes it along";
}

TEST_F(Settings, aChangeWaitsForAnotherProcess)
{
    load();
    disk.taken = true;
    preferences.set(settings::theme, "dark");
    preferences.trySavingAgain();
    EXPECT_FALSE(disk.waits) << "whoever observes must not be held up";
    EXPECT_TRUE(preferences.isWaiting());
    disk.taken = false;
    preferences.trySavingAgain();
    preferences.trySavingAgain();
    EXPECT_FALSE(preferences.isWaiting());
    EXPECT_EQ(outcomeKinds(), (Kinds{waiting, waiting, saved}));
    EXPECT_EQ(onDisk(settings::theme), "dark");

    disk.taken = true;
    preferences.set(settings::theme, "light");
    preferences.setSaveObserver({});
    disk.taken = false;
    preferences.finishSaving();
    EXPECT_TRUE(disk.waits);
    EXPECT_EQ(onDisk(settings::theme), "light");
}

TEST_F(Settings, eachCopyOfAnUnreadableFileIsReportedOnce)
{
    load("no property list");
    disk.commitFailure = "the disk is full";
    preferences.set(settings::theme, "dark");
    disk.commitFailure.clear();
    preferences.set(settings::theme, "light");
    preferences.set(settings::theme, "dark");
    ASSERT_EQ(outcomes.size(), 3U);
    ASSERT_EQ(outcomes[1].index(), setAside);
    const std::filesystem::path copy = std::get<save_outcome::UnreadableSetAside>(outcomes[1]).copy;
    EXPECT_TRUE(std::filesystem::remove(copy)) << copy;
    EXPECT_EQ(outcomeKinds(), (Kinds{notSaved, setAside, saved}));
}
