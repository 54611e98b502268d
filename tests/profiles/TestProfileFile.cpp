#include "ChildProcess.h"
#include "ProfileData.h"
#include "ProfileFile.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

namespace fs = std::filesystem;
using child_process::contentOf;
using child_process::fill;

namespace {

class ProfileFile : public testing::Test {
protected:
    ProfileFile()
    {
        fill(file, oldContent);
        profile.setFileName("a.xml");
    }

    /// Whether the save failed, leaving the old file and nothing else behind.
    bool failsCleanly(const std::optional<profile_file::Failure>& failure) const
    {
        return failure && failure->reason.find(file.string()) != std::string::npos
            && contentOf(file) == oldContent
            && std::distance(fs::directory_iterator(folder), fs::directory_iterator()) == 1;
    }

    const fs::path folder = child_process::freshFolder();
    const fs::path file = folder / "a.xml";
    const std::string oldContent = "<profile><device>old</device></profile>";
    ProfileData profile = readProfile("<profile><device>new</device></profile>");
};

TEST_F(ProfileFile, holdsWhatWasSaved)
{
    EXPECT_FALSE(profile_file::write(profile, folder.string()));
    EXPECT_EQ(contentOf(file), writeProfile(profile));
    const ProfileData loaded = readProfileFile(file.string());
    EXPECT_EQ(loaded, profile);
    EXPECT_EQ(loaded.fileName(), "a.xml");
    EXPECT_FALSE(profile_file::write(loaded, folder.string() + '/'));
    EXPECT_EQ(contentOf(file), writeProfile(profile));
    fs::current_path(folder);
    EXPECT_EQ(profile_file::pathFor(".", "b"), folder / "." / "b");
}

TEST_F(ProfileFile, loadingNamesTheFile)
{
    fill(file, "<profil/>");
    const std::string path = file.string();
    try {
        readProfileFile(path);
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(),
            "Failed to load profile data from file: '" + path + "' (No <profile> element was found)");
    }
    for (const fs::path& unreadable : {folder, folder / "none", fs::path()}) {
        try {
            readProfileFile(unreadable.string());
            FAIL();
        } catch (const ProfileError& error) {
            EXPECT_FALSE(error.reason().empty());
            EXPECT_EQ(error.what(),
                "Failed to load profile data from file: '" + unreadable.string() + "' (" + error.reason()
                    + ')');
        }
    }
}

TEST_F(ProfileFile, foldersThatCannotBeWritten)
{
    const auto missing = profile_file::write(profile, (folder / "none").string());
    ASSERT_TRUE(missing);
    EXPECT_TRUE(missing->notOpened);
    const int code = child_process::run([this] {
        if (!child_process::mountSmallDisk(folder, "size=16k"))
            return child_process::skipped;
        fill(file, oldContent);
        ProfileData large = profile;
        large.setVendor(std::string(100000, 'v'));
        const auto full = profile_file::write(large, folder.string());
        EXPECT_TRUE(failsCleanly(full));
        EXPECT_FALSE(full->notOpened);
        EXPECT_TRUE(child_process::makeReadOnly(folder));
        const auto readOnly = profile_file::write(profile, folder.string());
        EXPECT_TRUE(failsCleanly(readOnly));
        EXPECT_TRUE(readOnly->notOpened);
        return 0;
    });
    if (code == child_process::skipped)
        GTEST_SKIP() << "no disk may be mounted here";
    EXPECT_EQ(code, 0);
}

TEST_F(ProfileFile, nothingIsWrittenOutsideOfTheFolder)
{
    const fs::path inside = folder / "inside";
    fs::create_directory(inside);
    fs::current_path(inside);
    const auto refusal = [this](const std::string& name, const std::string& directory) {
        profile.setFileName(name);
        const auto failure = profile_file::write(profile, directory);
        return failure && !failure->notOpened ? failure->reason : "not refused";
    };
    for (const std::string name : {"", ".", "..", "../a.xml", "sub/b.xml", "b/"})
        EXPECT_EQ(
            refusal(name, inside.string()), "Cannot write the profile: '" + name + "' is no name for a file");
    EXPECT_NE(refusal("b.xml", "").find("no profiles directory is set"), std::string::npos);
    EXPECT_TRUE(fs::is_empty(inside));
    EXPECT_EQ(contentOf(file), oldContent);
}

} // namespace
