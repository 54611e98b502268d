#include "ChildProcess.h"
#include "FileFaults.h"
#include "FileReplacement.h"
#include "PlistPreferences.h"
#include "TSRPreferencesPosix.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using child_process::contentOf;
using child_process::fill;

namespace {

/// The files of a machine whose clock stands still.
class FrozenClock : public TSRPreferencesPosix {
public:
    bool modificationStamp(const std::string& storeName, int folderKind, std::uint32_t& stamp) override
    {
        const bool exists = TSRPreferencesPosix::modificationStamp(storeName, folderKind, stamp);
        stamp = 1;
        return exists;
    }
};

class PreferenceFiles : public testing::Test {
protected:
    void SetUp() override { setenv("XDG_CONFIG_HOME", parent.c_str(), 1); }

    static std::unique_ptr<PlistPreferences> makeStore(int kind = 0)
    {
        return std::make_unique<PlistPreferences>("Corvale", kind);
    }

    std::unique_ptr<PlistPreferences> loaded(
        std::unique_ptr<TSRPreferencesImpl> layer = PlistPreferences::platformLayer())
    {
        auto store = std::make_unique<PlistPreferences>("Corvale", 0, std::move(layer));
        error.clear();
        EXPECT_TRUE(store->load(error, true)) << error;
        return store;
    }

    std::string stored(const std::string& key)
    {
        std::string value = "absent";
        loaded()->getString(key, &value, nullptr, false);
        return value;
    }

    std::string contentAfterSaving(const std::string& value)
    {
        const auto store = loaded();
        store->setString("a", value);
        EXPECT_TRUE(store->save(false));
        return contentOf(file);
    }

    void expectAllKeys(int rounds)
    {
        const auto store = loaded();
        for (int number = 0; number < 2 * rounds; ++number) {
            const std::string key =
                "writer" + std::to_string(number % 2) + "/key" + std::to_string(number / 2);
            ASSERT_EQ(store->getInteger(key, nullptr, nullptr, false), ResultCode::Success)
                << key << " is lost";
        }
    }

    fs::path parent = child_process::freshFolder();
    fs::path folder = parent / "Brindlewood";
    fs::path file = folder / "Corvale.plist";
    std::string error;
};

constexpr const char* openError = "ERROR: Failed to open preference file.";

} // namespace

TEST_F(PreferenceFiles, firstRunMakesFolderAndFile)
{
    loaded();
    EXPECT_EQ(contentOf(file), property_list::emptyFile);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "and nothing else";
}

TEST_F(PreferenceFiles, foldersFollowTheEnvironment)
{
    struct Row {
        const char* variable;
        const char* value;
        int kind;
        const char* folder;
    };
    // Each row adds to the ones before it.
    const Row rows[] = {
        {"XDG_CONFIG_HOME", "/own", 0, "/own/Brindlewood"},
        {"XDG_CONFIG_HOME", "/own", 7, "/own/Brindlewood"},
        {"XDG_CONFIG_DIRS", "/first:/second", 1, "/first/Brindlewood"},
        {"XDG_CONFIG_DIRS", "first:/second", 1, "/etc/xdg/Brindlewood"},
        {"XDG_CONFIG_DIRS", nullptr, 1, "/etc/xdg/Brindlewood"},
        {"HOME", "/home/a", 0, "/own/Brindlewood"},
        {"XDG_CONFIG_HOME", "relative", 0, "/home/a/.config/Brindlewood"},
        {"XDG_CONFIG_HOME", nullptr, 0, "/home/a/.config/Brindlewood"},
        {"HOME", nullptr, 0, nullptr},
    };
    const std::unique_ptr<TSRPreferencesImpl> layer = PlistPreferences::platformLayer();
    for (const Row& row : rows) {
        if (row.value)
            setenv(row.variable, row.value, 1);
        else
            unsetenv(row.variable);
        std::string path;
        EXPECT_EQ(layer->folderPath(path, row.kind), row.folder != nullptr);
        EXPECT_EQ(path, row.folder ? row.folder : "");
    }
    EXPECT_FALSE(makeStore()->load(error, true)) << "there is no home";
    EXPECT_EQ(error, openError);
}

TEST_F(PreferenceFiles, onlyTheFolderOfANewAccountIsMade)
{
    setenv("XDG_CONFIG_HOME", (parent / "missing/deeper").c_str(), 1);
    EXPECT_FALSE(makeStore()->load(error, true));
    EXPECT_EQ(error, openError);
    EXPECT_FALSE(fs::exists(parent / "missing"));
    setenv("XDG_CONFIG_HOME", (parent / "missing").c_str(), 1);
    loaded();
    EXPECT_TRUE(fs::exists(parent / "missing/Brindlewood/Corvale.plist"));

    unsetenv("XDG_CONFIG_HOME");
    setenv("HOME", parent.c_str(), 1);
    loaded();
    EXPECT_TRUE(fs::exists(parent / ".config/Brindlewood/Corvale.plist"));
}

TEST_F(PreferenceFiles, whatIsNoFileIsRefusedAndStays)
{
    fs::create_directory(folder);
    const auto expectRefused = [this](const char* what, fs::file_type type) {
        error.clear();
        EXPECT_FALSE(makeStore()->load(error, true)) << what;
        EXPECT_EQ(error, openError) << what;
        EXPECT_EQ(fs::symlink_status(file).type(), type) << what;
        fs::remove(file);
    };
    fs::create_directory(file);
    expectRefused("directory", fs::file_type::directory);
    mkfifo(file.c_str(), 0600);
    expectRefused("FIFO", fs::file_type::fifo);
    fs::create_symlink("nowhere/file", file);
    expectRefused("link into a missing folder", fs::file_type::symlink);
    fill(file, "<plist><dict/></plist>");
    fs::resize_file(file, std::uintmax_t{1} << 40);
    expectRefused("huge file", fs::file_type::regular);
    fs::remove(folder);
    fill(folder, "a file in the folder's place");
    EXPECT_FALSE(makeStore()->load(error, true));
}

TEST_F(PreferenceFiles, aFileThatCannotBeParsedIsKeptAside)
{
    std::string deep = "<plist><dict>";
    std::string attributes = "<plist ";
    for (int number = 0; number < 100000; ++number)
        attributes += 'a' + std::to_string(number) + "='' ";
    for (int level = 0; level < 100; ++level)
        deep += "<key>a</key><dict>";
    fs::create_directory(folder);
    const std::string documents[] = {"", "not xml", "<plist><dict>", deep, attributes + "/>",
        std::string("<plist><dict/></plist>\0<!-- -->", 31)};
    for (const std::string& document : documents) {
        fill(file, document);
        const auto store = loaded();
        EXPECT_TRUE(store->corruptCopy().empty()) << "nothing was replaced yet";
        EXPECT_EQ(contentOf(file), document);
        store->setString("a", "1");
        EXPECT_TRUE(store->save(false));
        EXPECT_EQ(store->corruptCopy(), fs::path(file.native() + ".corrupt"));
        EXPECT_EQ(contentOf(store->corruptCopy()), document);
        EXPECT_EQ(stored("a"), "1");
        fs::remove(store->corruptCopy());
    }
    fill(file, "<plist><dict><key>\xff\xfe</key><string>\xc3</string></dict></plist>");
    EXPECT_EQ(stored("\xff\xfe"), "\xc3") << "bytes that are no UTF-8 are kept as they are";
}

TEST_F(PreferenceFiles, noCorruptCopyIsLost)
{
    const auto store = loaded();
    for (const char* content : {"first", "second", "second"}) {
        fill(file, content);
        store->setBoolean("a", true);
        EXPECT_TRUE(store->save(false));
    }
    EXPECT_EQ(contentOf(folder / "Corvale.plist.corrupt"), "first");
    EXPECT_EQ(store->corruptCopy().filename(), "Corvale.plist.corrupt.2");
    EXPECT_EQ(contentOf(store->corruptCopy()), "second");

    store->setString("a", "mine");
    fill(file, "third");
    EXPECT_TRUE(store->save(false));
    EXPECT_EQ(contentOf(store->corruptCopy()), "third") << "it was spoilt after the setter";
    EXPECT_EQ(stored("a"), "mine");

    store->setString("a", "next");
    fill(file, "fourth");
    for (const char* number : {".4", ".5", ".6", ".7", ".8", ".9"})
        fs::create_directory(file.native() + ".corrupt" + number);
    EXPECT_FALSE(store->save(false)) << "there is no room for a copy";
    EXPECT_NE(store->saveError(), "");
    EXPECT_EQ(contentOf(file), "fourth");
}

TEST_F(PreferenceFiles, whatOthersSpoiltIsNotTakenOver)
{
    const auto store = loaded();
    store->setString("a", "ours");
    for (const std::string document : {"<plist><dict><key>a</key></dict></plist>",
             "<plist><dict><string>a</string></dict></plist>", "not xml"}) {
        EXPECT_TRUE(store->save(true));
        fill(file, document);
        store->setString("b", "next");
        EXPECT_EQ(store->getString("a", nullptr, nullptr, false), ResultCode::Success) << document;
        EXPECT_TRUE(store->save(false));
        EXPECT_EQ(contentOf(store->corruptCopy()), document);
        EXPECT_EQ(stored("a") + stored("b"), "oursnext") << document;
    }
}

TEST_F(PreferenceFiles, everyStepOfASaveMayBeTheLast)
{
    const std::string before = contentAfterSaving("before");
    const std::string after = contentAfterSaving("after");
    int code = -SIGKILL;
    int number = 0;
    while (code == -SIGKILL) {
        fill(file, before);
        code = child_process::run([this, step = ++number] {
            const auto store = loaded();
            store->setString("a", "after");
            file_faults::killAtCall(step);
            return store->save(false) ? 0 : 1;
        });
        EXPECT_TRUE(contentOf(file) == before || contentOf(file) == after) << "killed at step " << number;
    }
    EXPECT_EQ(code, 0);
    EXPECT_GT(number, 6);
}

TEST_F(PreferenceFiles, everyStepOfASaveMayFail)
{
    const std::string before = contentAfterSaving("before");
    const std::string after = contentAfterSaving("after");
    int number = 1;
    for (bool cameUp = true; cameUp; ++number) {
        fill(file, before);
        const auto store = loaded();
        store->setString("a", "after");
        file_faults::failCall(number, EIO);
        const bool saved = store->save(false);
        cameUp = file_faults::clear();
        EXPECT_TRUE(contentOf(file) == before || contentOf(file) == after) << "step " << number;
        EXPECT_EQ(saved, store->saveError().empty());
        store->setString("b", "next");
        EXPECT_TRUE(store->save(false));
        EXPECT_EQ(stored("a") + stored("b"), "afternext") << "nothing is forgotten after step " << number;
    }
    EXPECT_GT(number, 6);
}

TEST_F(PreferenceFiles, fullDiskAndReadOnlyFolder)
{
    loaded();
    const int code = child_process::run([this] {
        if (!child_process::mountSmallDisk(folder, "size=64k"))
            return child_process::skipped;
        const auto store = loaded();
        store->setString("kept", "1");
        EXPECT_TRUE(store->save(false));
        store->setString("large", std::string(100000, 'x'));
        EXPECT_FALSE(store->save(false));
        EXPECT_NE(store->saveError().find("No space left"), std::string::npos) << store->saveError();
        store->setString("large", "small");
        EXPECT_TRUE(store->save(false)) << "the values are still there and still unsaved";
        EXPECT_EQ(stored("kept") + stored("large"), "1small");

        EXPECT_TRUE(child_process::makeReadOnly(folder));
        store->setString("kept", "2");
        EXPECT_TRUE(store->save(false))
            << "without a temporary file there is no stream, and that counts as done";
        EXPECT_NE(store->unwrittenReason().find(file.native() + ": Read-only"), std::string::npos)
            << store->unwrittenReason();
        EXPECT_EQ(stored("kept"), "1");
        return 0;
    });
    if (code == child_process::skipped)
        GTEST_SKIP() << "no disk may be mounted here";
    EXPECT_EQ(code, 0);
}

TEST_F(PreferenceFiles, aFileThatAnotherProcessMakesFirstIsNotReplaced)
{
    const std::string theirs = "<plist><dict><key>a</key><string>theirs</string></dict></plist>";
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = child_process::start([&] {
        char token = 0;
        EXPECT_EQ(read(ready[0], &token, 1), 1);
        loaded();
        return 0;
    });
    fs::create_directory(folder);
    {
        platform::FileReplacement replacement(file);
        ASSERT_EQ(write(ready[1], "t", 1), 1);
        while (!child_process::hasOpen(child, folder / "Corvale.plist.tmp"))
            std::this_thread::yield();
        EXPECT_TRUE(replacement.commit(theirs));
    }
    EXPECT_EQ(child_process::finish(child), 0);
    EXPECT_EQ(contentOf(file), theirs);
}

TEST_F(PreferenceFiles, twoStoresWithinASecondLoseNothing)
{
    enum Step { Set, Save };
    // Which store does what; each sets a key of its own and one that both have.
    const std::vector<std::pair<std::size_t, Step>> orders[] = {
        {{0, Set}, {0, Save}, {1, Set}, {1, Save}},
        {{0, Set}, {1, Set}, {0, Save}, {1, Save}},
        {{0, Set}, {1, Set}, {1, Save}, {0, Save}},
        {{0, Set}, {0, Save}, {1, Set}, {1, Save}, {0, Set}, {0, Save}},
    };
    for (const auto& order : orders) {
        fs::remove_all(folder);
        const std::unique_ptr<PlistPreferences> stores[] = {
            loaded(std::make_unique<FrozenClock>()), loaded(std::make_unique<FrozenClock>())};
        std::string lastSaver;
        for (const auto& [number, step] : order) {
            const std::string name = std::to_string(number);
            if (step == Set) {
                stores[number]->setString("own" + name, name);
                stores[number]->setString("both", name);
            } else {
                EXPECT_TRUE(stores[number]->save(false));
                lastSaver = name;
            }
        }
        EXPECT_EQ(stored("own0") + stored("own1"), "01");
        EXPECT_EQ(stored("both"), lastSaver);
    }
}

TEST_F(PreferenceFiles, twoProcessesInTurnLoseNothingEvenWithAFrozenClock)
{
    constexpr int rounds = 300;
    int turns[2][2];
    ASSERT_EQ(pipe(turns[0]) + pipe(turns[1]), 0);
    const auto writer = [&](int self) {
        const auto store = loaded(std::make_unique<FrozenClock>());
        char token = 0;
        for (int round = 0; round < rounds; ++round) {
            if (read(turns[self][0], &token, 1) != 1)
                return 2;
            store->setInteger("writer" + std::to_string(self) + "/key" + std::to_string(round), round);
            EXPECT_TRUE(store->save(false));
            if (write(turns[1 - self][1], &token, 1) != 1)
                return 2;
        }
        return 0;
    };
    loaded();
    const pid_t children[] = {
        child_process::start([&] { return writer(0); }), child_process::start([&] { return writer(1); })};
    ASSERT_EQ(write(turns[0][1], "t", 1), 1);
    EXPECT_EQ(child_process::finish(children[0]), 0);
    EXPECT_EQ(child_process::finish(children[1]), 0);
    expectAllKeys(rounds);
}

TEST_F(PreferenceFiles, twoProcessesAtOnceLoseNothing)
{
    constexpr int rounds = 300;
    const auto writer = [&](int self) {
        const auto store = loaded();
        for (int round = 0; round < rounds; ++round) {
            store->setInteger("writer" + std::to_string(self) + "/key" + std::to_string(round), round);
            EXPECT_TRUE(store->save(false));
        }
        return 0;
    };
    // Both begin without a file, so they also meet while they make it.
    const pid_t children[] = {
        child_process::start([&] { return writer(0); }), child_process::start([&] { return writer(1); })};
    EXPECT_EQ(child_process::finish(children[0]), 0);
    EXPECT_EQ(child_process::finish(children[1]), 0);
    expectAllKeys(rounds);
}
