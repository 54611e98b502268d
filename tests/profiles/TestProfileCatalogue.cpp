#include "ChildProcess.h"
#include "Limits.h"
#include "NaturalOrder.h"
#include "Preferences.h"
#include "ProfileCatalogue.h"
#include "ProfileData.h"
#include "ProfileDataWrapper.h"
#include "ProfileFile.h"
#include "ProfileReader.h"

#include <sys/stat.h>

namespace fs = std::filesystem;
using child_process::fill;

namespace {

std::string document(const std::string& device)
{
    return "<profile><device>" + device + "</device><egl/></profile>";
}

constexpr std::array<builtin_profiles::TextEntry, 4> builtins{{
    {"a.xml", "<profile><device>BW 10</device></profile>"},
    {"b.xml", "<profile><renderer>part</renderer></profile>"},
    {"c.xml", "<profile><device>bw 9</device></profile>"},
    {"d.xml", "<profile/>"},
}};

class Catalogue : public testing::Test {
protected:
    Catalogue()
    {
        std::string error;
        preferences.load(error);
        preferences.setUnsaved(settings::profilesDirectory, folder.string());
    }

    std::vector<std::string> userKeys() const
    {
        std::vector<std::string> keys;
        for (const auto& profile : catalogue->userProfiles())
            keys.push_back(profile->key());
        return keys;
    }
    /// "file: reason" of what is broken in the folder.
    std::vector<std::string> broken() const
    {
        std::vector<std::string> texts;
        for (const auto& [file, reason] : catalogue->brokenFiles())
            texts.emplace_back(file).append(": ").append(reason);
        return texts;
    }
    void open(std::span<const builtin_profiles::TextEntry> documents = {})
    {
        catalogue.emplace(preferences, documents);
    }

    const fs::path folder = child_process::freshFolder();
    const std::string storeName = "Catalogue" + folder.filename().string();
    Preferences preferences{storeName};
    std::optional<ProfileCatalogue> catalogue;
};

using Names = std::vector<std::string>;

TEST_F(Catalogue, builtinsComeFirstAndInNaturalOrder)
{
    fill(folder / "BW 10", document("mine"));
    fill(folder / "mine.xml", document("BW 10"));
    open(builtins);
    Names names;
    for (const auto& profile : catalogue->builtinProfiles()) {
        names.push_back(profile->key());
        EXPECT_FALSE(profile->isWritable());
    }
    EXPECT_EQ(names, (Names{"bw 9", "BW 10", "Generic part"}));
    EXPECT_EQ(broken(), Names{"d.xml: Profile has no name"});
    EXPECT_EQ(userKeys(), (Names{"BW 10", "mine.xml"}));
    EXPECT_EQ(catalogue->find("BW 10"), catalogue->builtinProfiles()[1]);
    EXPECT_EQ(catalogue->find("mine.xml"), catalogue->userProfiles()[1]);
    for (const char* key : {"", "bw 10", "mine", "Mine.xml"})
        EXPECT_EQ(catalogue->find(key), nullptr) << key;
}

TEST(NaturalOrder, numbersCaseAndTies)
{
    const Names inOrder{"", "01", "1", "1a", "2", "10", "A", "a", "a1b2", "a1b10", "a002", "a2", "B",
        "b99999999999999999998", "b99999999999999999999", "\xC3\xA9"};
    for (std::size_t i = 0; i < inOrder.size(); ++i) {
        for (std::size_t j = 0; j < inOrder.size(); ++j)
            EXPECT_EQ(naturalLess(inOrder[i], inOrder[j]), i < j) << inOrder[i] << " and " << inOrder[j];
    }
}

TEST_F(Catalogue, everyBadFileCostsItselfAlone)
{
    fill(folder / "good.xml", document("good"));
    fill(folder / "Z good", document("no suffix"));
    fill(folder / "not.xml", "not XML");
    fill(folder / "other.xml", "<html/>");
    fill(folder / "empty.xml", "");
    fill(folder / ".hidden.xml", document("hidden"));
    fill(folder / "good.xml.tmp", document("half a save"));
    fill(folder / "huge.xml", "");
    fs::resize_file(folder / "huge.xml", platform::limits::fileSize + 1);
    fs::create_directory(folder / "sub.xml");
    fill(folder / "sub.xml" / "deep.xml", document("deep"));
    mkfifo((folder / "fifo.xml").c_str(), 0600);
    fs::create_symlink("nowhere", folder / "dangling.xml");
    fs::create_symlink("loop.xml", folder / "loop.xml");
    fs::create_symlink("fifo.xml", folder / "fifolink.xml");
    fs::create_symlink("good.xml", folder / "twice.xml");
    const fs::path elsewhere = child_process::freshFolder();
    fill(elsewhere / "target.xml", document("linked"));
    fs::create_symlink(elsewhere / "target.xml", folder / "link.xml");
    open();
    EXPECT_EQ(userKeys(), (Names{"Z good", "good.xml", "target.xml"}));
    const Names texts = broken();
    ASSERT_EQ(texts.size(), 4U);
    EXPECT_TRUE(texts[0].starts_with("empty.xml: Error=XML_ERROR_EMPTY_DOCUMENT"));
    EXPECT_TRUE(texts[1].starts_with("huge.xml: ") && texts[1].find("larger than") != std::string::npos);
    EXPECT_TRUE(texts[2].starts_with("not.xml: "));
    EXPECT_EQ(texts[3], "other.xml: No <profile> element was found");
    for (const auto& profile : catalogue->userProfiles())
        EXPECT_TRUE(profile->isWritable());
}

TEST_F(Catalogue, foldersThatCannotBeRead)
{
    fs::remove(folder);
    open();
    EXPECT_TRUE(userKeys().empty() && broken().empty());
    fill(folder, "a file");
    catalogue->reload();
    EXPECT_TRUE(userKeys().empty());
    ASSERT_EQ(broken().size(), 1U);
    EXPECT_TRUE(broken()[0].starts_with(folder.string() + ": "));
}

TEST_F(Catalogue, directoryComesFromThePreferenceThenTheEnvironment)
{
    Preferences fresh("NoDirectory" + folder.filename().string());
    std::string error;
    ASSERT_TRUE(fresh.load(error)) << error;
    const ProfileCatalogue none(fresh, {});
    EXPECT_EQ(none.profilesDirectory(), "");
    EXPECT_TRUE(none.userProfiles().empty());
    setenv("CORVALE_PROFILE_PATH", "/from/environment", 1);
    EXPECT_EQ(none.profilesDirectory(), "/from/environment");
    open();
    EXPECT_EQ(catalogue->profilesDirectory(), folder.string());
    unsetenv("CORVALE_PROFILE_PATH");
}

TEST_F(Catalogue, newProfilesAndCopies)
{
    open(builtins);
    const auto fresh = catalogue->newProfile();
    EXPECT_EQ(fresh->data(),
        readProfile("<profile><vendor>Unknown vendor</vendor><renderer>Unknown renderer</renderer>"
                    "<device>New profile</device></profile>"));
    EXPECT_EQ(profile_file::nameForSaving(fresh->data()), "New profile.xml");
    EXPECT_EQ(catalogue->find(fresh->key()), nullptr);

    const auto original = catalogue->find("BW 10");
    const auto copy = catalogue->copyProfile(*original);
    const auto copyOfCopy = catalogue->copyProfile(*copy);
    EXPECT_EQ(copy->key(), "BW 10 (copy).xml");
    EXPECT_EQ(copyOfCopy->key(), copy->key());
    EXPECT_EQ(catalogue->userProfiles(), (std::vector{fresh, copy, copyOfCopy}));
    copy->edit()->setDevice("changed");
    EXPECT_EQ(original->data().device(), "BW 10");
    EXPECT_EQ(copyOfCopy->data().device(), "BW 10");
    fresh->edit()->setDevice("../a/b");
    EXPECT_EQ(profile_file::nameForSaving(fresh->data()), ".._a_b.xml");
    EXPECT_EQ(catalogue->copyProfile(*fresh)->key(), ".._a_b (copy).xml");
    try {
        original->edit();
        FAIL() << "a built-in profile was edited";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Tried to edit a read-only profile: 'BW 10'");
    }
}

TEST_F(Catalogue, reloadKeepsWhatDidNotChange)
{
    for (const char* name : {"changed.xml", "gone.xml", "same.xml", "spoilt.xml", "touched.xml"})
        fill(folder / name, document(name));
    open();
    const auto reference = [this](const char* key) {
        return std::weak_ptr<const ProfileDataWrapper>(catalogue->find(key));
    };
    const auto changed = reference("changed.xml");
    const auto gone = reference("gone.xml");
    const auto same = reference("same.xml");
    const auto spoilt = reference("spoilt.xml");
    const auto touched = reference("touched.xml");
    for (const auto& edited : {same, touched})
        edited.lock()->edit()->setVendor("not saved yet");
    fill(folder / "touched.xml", document("touched.xml"));
    fs::permissions(folder / "touched.xml", fs::perms::owner_all);
    fill(folder / "changed.xml", document("changed.xmL"));
    fill(folder / "spoilt.xml", "<profile>");
    fill(folder / "added.xml", document("added"));
    fs::remove(folder / "gone.xml");
    catalogue->reload();
    EXPECT_EQ(userKeys(), (Names{"added.xml", "changed.xml", "same.xml", "touched.xml"}));
    EXPECT_TRUE(changed.expired() && gone.expired() && spoilt.expired());
    ASSERT_EQ(catalogue->find("same.xml"), same.lock());
    ASSERT_EQ(catalogue->find("touched.xml"), touched.lock());
    for (const auto& edited : {same, touched})
        EXPECT_EQ(edited.lock()->data().vendor(), "not saved yet");
    EXPECT_EQ(catalogue->find("changed.xml")->data().device(), "changed.xmL");
    ASSERT_EQ(broken().size(), 1U);
    EXPECT_TRUE(broken()[0].starts_with("spoilt.xml: "));
}

TEST_F(Catalogue, reloadKeepsWhatWasJustSavedOrNever)
{
    fill(folder / "old.xml", document("old") + "<!-- other layout -->");
    open();
    const auto old = catalogue->find("old.xml");
    old->edit()->extensions()[2] = {"GL_b", "GL_a"};
    const auto copy = catalogue->copyProfile(*old);
    const auto unsaved = catalogue->copyProfile(*old);
    copy->edit()->setFileName("copy.xml");
    for (const auto& profile : {old, copy})
        EXPECT_FALSE(profile_file::write(profile->data(), folder.string()));
    for (int times = 0; times < 2; ++times) {
        catalogue->reload();
        EXPECT_EQ(catalogue->userProfiles(), (std::vector{copy, old, unsaved}));
    }
    EXPECT_EQ(catalogue->findFile((folder / "copy.xml").string()), copy);
    EXPECT_EQ(catalogue->findFile((folder / "none.xml").string()), nullptr);
    fs::remove(folder / "copy.xml");
    catalogue->reload();
    EXPECT_EQ(catalogue->userProfiles(), (std::vector{old, unsaved}))
        << "what was saved once has left the disk";
}

TEST_F(Catalogue, currentProfileIsRemembered)
{
    fill(folder / "mine.xml", document("mine"));
    open(builtins);
    EXPECT_EQ(catalogue->current(), nullptr);
    catalogue->newProfile();
    for (const char* key : {"mine.xml", "Generic part", ""}) {
        catalogue->rememberCurrent(key);
        Preferences stored(storeName);
        std::string error;
        ASSERT_TRUE(stored.load(error)) << error;
        EXPECT_EQ(stored.get(settings::currentProfile), key);
        EXPECT_EQ(catalogue->current(), catalogue->find(key));
    }
}

} // namespace
