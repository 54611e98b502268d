#include "FileReplacement.h"
#include "GuardedFile.h"
#include "PropertyList.h"
#include "TSRPreferencesWindows.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <sys/utime.h>
#include <windows.h>
// These need windows.h before them.
#include <initguid.h>
#include <knownfolders.h>
#include <shlobj.h>

namespace fs = std::filesystem;
using Mode = TSRPreferencesImpl::Mode;
using EntryPoint = TSRPreferencesWindows::EntryPoint;

namespace {

/// What the stand-in for the shell says; nothing makes it fail.
std::wstring userFolder;
std::wstring sharedFolder;

HRESULT WINAPI knownFolderStandIn(REFKNOWNFOLDERID id, DWORD, HANDLE, PWSTR* path)
{
    const std::wstring& folder = IsEqualGUID(id, FOLDERID_ProgramData) ? sharedFolder : userFolder;
    *path = nullptr;
    if (folder.empty())
        return E_FAIL;
    *path = static_cast<PWSTR>(CoTaskMemAlloc((folder.size() + 1) * sizeof(wchar_t)));
    folder.copy(*path, folder.size());
    (*path)[folder.size()] = 0;
    return S_OK;
}

EntryPoint standInLookup(const wchar_t*, const char* name)
{
    EXPECT_STREQ(name, "SHGetKnownFolderPath");
    return reinterpret_cast<EntryPoint>(knownFolderStandIn);
}

EntryPoint nothingFound(const wchar_t*, const char*)
{
    return nullptr;
}

std::string contentOf(const fs::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

class WindowsLayer : public testing::Test {
protected:
    void SetUp() override
    {
        static int number = 0;
        // Beyond Latin-1 on purpose, as a user's name may be.
        parent = fs::temp_directory_path() / (L"\u017dofie \u5c71 " + std::to_wstring(++number));
        fs::remove_all(parent);
        fs::create_directory(parent);
        userFolder = parent.native();
        sharedFolder.clear();
        folder = parent / "Brindlewood";
        file = folder / "Corvale.plist";
        temporary = folder / "Corvale.plist.tmp";
    }

    std::unique_ptr<TSRPreferencesFile> open(Mode mode, bool atomic, int kind = 0)
    {
        error = "older";
        auto opened = layer.open("Corvale", mode, kind, atomic, error);
        EXPECT_EQ(error, "Failed to open preference file.") << "it is set in any case";
        return opened;
    }

    void write(const char* text, bool atomic, bool commit)
    {
        auto opened = open(Mode::Write, atomic);
        ASSERT_NE(opened->stream, nullptr);
        EXPECT_EQ(opened->path, file);
        std::fputs(text, opened->stream);
        layer.close(std::move(opened), commit);
    }

    TSRPreferencesWindows layer{standInLookup};
    fs::path parent;
    fs::path folder;
    fs::path file;
    fs::path temporary;
    std::string error;
};

} // namespace

TEST_F(WindowsLayer, firstRunMakesFolderAndFile)
{
    auto opened = open(Mode::Read, false);
    ASSERT_NE(opened->stream, nullptr);
    EXPECT_EQ(platform::readStream(opened->stream, 10000).bytes, property_list::emptyFile);
    layer.close(std::move(opened), false);
    EXPECT_EQ(contentOf(file), property_list::emptyFile) << "no carriage returns";

    fs::remove(file);
    layer.close(open(Mode::Read, false), false);
    EXPECT_TRUE(fs::exists(file)) << "the folder alone is there already";
}

TEST_F(WindowsLayer, aMissingParentIsNotMade)
{
    userFolder = (parent / "missing").native();
    for (const Mode mode : {Mode::Read, Mode::Write}) {
        auto opened = open(mode, true);
        EXPECT_EQ(opened->stream, nullptr);
        layer.close(std::move(opened), true);
    }
    EXPECT_FALSE(fs::exists(parent / "missing"));
}

TEST_F(WindowsLayer, commitReplacesTheFile)
{
    layer.close(open(Mode::Read, false), false);
    auto opened = open(Mode::Write, true);
    std::fputs("line\n", opened->stream);
    EXPECT_EQ(contentOf(file), property_list::emptyFile) << "until the commit";
    layer.close(std::move(opened), true);
    EXPECT_EQ(contentOf(file), "line\n");
    EXPECT_FALSE(fs::exists(temporary));
}

TEST_F(WindowsLayer, withoutCommitTheTemporaryFileIsLeft)
{
    layer.close(open(Mode::Read, false), false);
    write("a long text that was given up", true, false);
    EXPECT_EQ(contentOf(file), property_list::emptyFile);
    EXPECT_TRUE(fs::exists(temporary));
    write("short", true, true);
    EXPECT_EQ(contentOf(file), "short") << "what was left is overwritten";
    write("in place", false, false);
    EXPECT_EQ(contentOf(file), "in place");
}

TEST_F(WindowsLayer, aMoveThatFailsLeavesTheTemporaryFile)
{
    layer.close(open(Mode::Read, false), false);
    fs::remove(file);
    fs::create_directory(file);
    write("new", true, true);
    EXPECT_TRUE(fs::is_directory(file));
    EXPECT_EQ(contentOf(temporary), "new");
    EXPECT_EQ(layer.commitFailure(), "");
}

TEST_F(WindowsLayer, stampIsAHashOfTheTime)
{
    std::uint32_t stamp = 0;
    EXPECT_FALSE(layer.modificationStamp("Corvale", 0, stamp));
    layer.close(open(Mode::Read, false), false);
    __utimbuf64 times{1000000000, 1000000000};
    ASSERT_EQ(_wutime64(file.c_str(), &times), 0);
    EXPECT_TRUE(layer.modificationStamp("Corvale", 0, stamp));
    EXPECT_EQ(stamp, 0x7fac3a76U);
}

TEST_F(WindowsLayer, narrowPathTakesTheLowBytes)
{
    userFolder = L"C:\\\u017d\u5c71\u00e9";
    sharedFolder = L"D:\\all";
    std::string path;
    EXPECT_TRUE(layer.folderPath(path, 0));
    EXPECT_EQ(path, "C:\\\x7d\x71\xe9\\Brindlewood");
    EXPECT_TRUE(layer.folderPath(path, 1));
    EXPECT_EQ(path, "D:\\all\\Brindlewood");
    EXPECT_TRUE(layer.folderPath(path, 2));
    EXPECT_EQ(path, "C:\\\x7d\x71\xe9\\Brindlewood") << "any other kind is the user's";
}

TEST_F(WindowsLayer, allUsersHaveAFileOfTheirOwn)
{
    sharedFolder = (parent / "shared").native();
    fs::create_directory(sharedFolder);
    auto opened = open(Mode::Read, false, 1);
    EXPECT_NE(opened->stream, nullptr);
    EXPECT_EQ(opened->path, fs::path(sharedFolder) / "Brindlewood" / "Corvale.plist");
    layer.close(std::move(opened), false);
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(WindowsLayer, theOldCallStepsIn)
{
    TSRPreferencesWindows old(nothingFound);
    for (const int kind : {0, 1}) {
        char expected[MAX_PATH];
        ASSERT_EQ(
            SHGetFolderPathA(nullptr, kind == 1 ? CSIDL_COMMON_APPDATA : CSIDL_APPDATA, nullptr, 0, expected),
            S_OK);
        std::string path;
        EXPECT_TRUE(old.folderPath(path, kind));
        EXPECT_EQ(path, std::string(expected) + "\\Brindlewood");
        userFolder.clear();
        EXPECT_TRUE(layer.folderPath(path, kind)) << "also when the new call fails";
        EXPECT_EQ(path, std::string(expected) + "\\Brindlewood");
        EXPECT_TRUE(TSRPreferencesWindows().folderPath(path, kind)) << "and the shell itself says the same";
        EXPECT_EQ(path, std::string(expected) + "\\Brindlewood");
    }
}

TEST_F(WindowsLayer, entryPointsAreLookedUpByName)
{
    EXPECT_NE(TSRPreferencesWindows::loadedEntryPoint(L"shell32.dll", "SHGetKnownFolderPath"), nullptr);
    EXPECT_EQ(TSRPreferencesWindows::loadedEntryPoint(L"shell32.dll", "NoSuchFunction"), nullptr);
    EXPECT_EQ(TSRPreferencesWindows::loadedEntryPoint(L"nosuchmodule.dll", "SHGetKnownFolderPath"), nullptr);
}

TEST_F(WindowsLayer, filesAreReplaced)
{
    const fs::path target = parent / "file";
    for (const std::string content : {"old", "new\n"}) {
        EXPECT_EQ(platform::replaceFile(target, content).reason, "");
        EXPECT_EQ(contentOf(target), content);
        EXPECT_EQ(platform::readFile(target, 100).bytes, content);
    }
    {
        const platform::FileReplacement first(target);
        const platform::FileReplacement second(target);
        EXPECT_TRUE(first.ready());
        EXPECT_FALSE(second.ready()) << "one at a time";
    }
    EXPECT_FALSE(fs::exists(parent / "file.tmp"));
    EXPECT_FALSE(platform::replaceFile(parent / "missing" / "file", "x"));
    EXPECT_FALSE(platform::replaceFile(parent, "x"));
    EXPECT_FALSE(platform::readFile(target, 2).ok);
    EXPECT_TRUE(platform::readFile(parent / "absent", 2).absent);
}
