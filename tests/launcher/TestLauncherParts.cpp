#include "ChildProcess.h"
#include "DeviceOfProfile.h"
#include "HostVendors.h"
#include "LayerSetup.h"
#include "PrivateFolder.h"
#include "ProgramFile.h"
#include "ProgramName.h"
#include "RecordLog.h"
#include "RecordQueue.h"
#include "WholeRecord.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <elf.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace launcher;
namespace fs = std::filesystem;

TEST(ProgramName, isThatOfTheScriptThatAnInterpreterRuns)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> names{
        {{"/usr/bin/es2gears"}, "es2gears"}, {{"python3", "game.py"}, "game.py"},
        {{"/usr/bin/python3.11", "-W", "error", "-u", "/a/b.py", "x"}, "b.py"},
        {{"python3", "-c", "print()"}, "python3"}, {{"python3", "-m", "game"}, "python3"}, {{"node"}, "node"},
        {{"-bash"}, "-bash"}, {{"sh", "-e", "--", "-odd.sh"}, "-odd.sh"},
        {{"java", "-cp", "x", "-jar", "a/g.jar"}, "g.jar"}, {{"wine", "C:\\games\\g.exe"}, "g.exe"},
        {{"love", "game"}, "love"}, {{"pythonic", "a"}, "pythonic"}, {{""}, ""}, {{}, ""}};
    for (const auto& [arguments, name] : names)
        EXPECT_EQ(programName(arguments), name);
    EXPECT_EQ(splitArguments(std::string_view("a\0\0b c\0cut", 10)),
        (std::vector<std::string>{"a", "", "b c", "cut"}));
}

TEST(ProgramFile, knowsWhatCannotBeWatched)
{
    const fs::path folder = child_process::freshFolder();
    std::string own(4096, '\0');
    std::ifstream("/proc/self/exe", std::ios::binary).read(own.data(), 4096);
    const auto changed = [&](const char* name, std::size_t at, char value) {
        std::string bytes = own;
        bytes[at] = value;
        child_process::fill(folder / name, bytes);
        return whyUnwatchable(folder / name).value_or("");
    };
    EXPECT_EQ(changed("same", EI_PAD, 0), "");
    EXPECT_EQ(changed("small", EI_CLASS, ELFCLASS32), "it is a 32-bit program");
    EXPECT_EQ(changed("other", offsetof(Elf64_Ehdr, e_machine), EM_S390),
        "it is a program for another kind of machine");
    EXPECT_EQ(changed("static", offsetof(Elf64_Ehdr, e_phnum), 1), "it is linked statically");
    EXPECT_EQ(changed("cut", offsetof(Elf64_Ehdr, e_phoff) + 7, 0x7F), "it is linked statically");

    child_process::fill(folder / "script", "#! " + (folder / "static").string() + " -x\n");
    child_process::fill(folder / "loop", "#!" + (folder / "loop").string());
    EXPECT_EQ(whyUnwatchable(folder / "script"), "it is linked statically");
    EXPECT_EQ(whyUnwatchable(folder / "loop"), std::nullopt);
    EXPECT_EQ(whyUnwatchable(folder), std::nullopt);

    // Rights of the own user are no gain.
    chmod((folder / "same").c_str(), 04755);
    EXPECT_EQ(whyUnwatchable(folder / "same"), std::nullopt);
    if (getuid() == 0 && chown((folder / "same").c_str(), 1, 1) == 0) {
        chmod((folder / "same").c_str(), 04755);
        EXPECT_EQ(whyUnwatchable(folder / "same"), "it gets the rights of another user when it starts");
    }

    setenv("PATH", (folder.string() + "/none:" + folder.string() + ":/bin").c_str(), 1);
    EXPECT_EQ(findProgram("sh"), "/bin/sh");
    EXPECT_EQ(findProgram("same"), (folder / "same").string());
    EXPECT_EQ(findProgram("loop"), "") << "it is not executable";
    EXPECT_EQ(findProgram("./script"), "./script");
}

TEST(HostVendors, areThoseOfLibglvndWithoutOurOwn)
{
    const fs::path folder = child_process::freshFolder();
    child_process::fill(folder / "layer.so", "layer");
    fs::create_symlink(folder / "layer.so", folder / "alias.so");
    const auto add = [&](const char* name, const std::string& content) {
        child_process::fill(folder / name, content);
    };
    add("30_b.json", vendorFile("libb.so.0"));
    add("10_a.json", vendorFile("/x/liba.so"));
    add("20_own.json", vendorFile((folder / "alias.so").string()));
    add("11_new.json", R"({"file_format_version": "2.0.0", "ICD": {"library_path": "new"}})");
    add("12_none.json", R"({"file_format_version": "1.0.0", "ICD": {"library_path": 5}})");
    add("13_list.json", R"({"file_format_version": "1.0.0", "ICD": ["library_path"]})");
    add("14_cut.json", R"({"file_format_version": "1.0.0", "ICD": {"library_)");
    add("15_deep.json", std::string(50'000, '['));
    add("40_ignored.txt", vendorFile("text"));
    const std::string layer = (folder / "layer.so").string();

    unsetenv("__EGL_VENDOR_LIBRARY_FILENAMES");
    setenv("__EGL_VENDOR_LIBRARY_DIRS", ("/none:" + folder.string()).c_str(), 1);
    EXPECT_EQ(hostVendors(layer), (std::vector<std::string>{"/x/liba.so", "libb.so.0"}));
    const std::string files = (folder / "30_b.json").string() + "::" + (folder / "40_ignored.txt").string();
    setenv("__EGL_VENDOR_LIBRARY_FILENAMES", files.c_str(), 1);
    EXPECT_EQ(hostVendors(layer), (std::vector<std::string>{"libb.so.0", "text"}));

    // Below another launcher there is only the layer.
    setenv("__EGL_VENDOR_LIBRARY_FILENAMES", (folder / "20_own.json").c_str(), 1);
    EXPECT_TRUE(hostVendors(layer).empty());
    setenv("CORVALE_LAYER_HOST", "first:second", 1);
    EXPECT_EQ(hostVendors(layer), (std::vector<std::string>{"first", "second"}));
    unsetenv("CORVALE_LAYER_HOST");
}

TEST(LayerSetup, saysWhatTheProgramNeeds)
{
    const fs::path layer = child_process::freshFolder();
    child_process::fill(layer / "libEGL_corvale.so", "");
    child_process::fill(layer / "libcorvale_preload.so", "");
    child_process::fill(layer / "host.json", vendorFile("libhost.so"));
    setenv("CORVALE_LAYER_DIR", layer.c_str(), 1);
    setenv("__EGL_VENDOR_LIBRARY_FILENAMES", (layer / "host.json").c_str(), 1);
    setenv("QT_XCB_GL_INTEGRATION", "none", 1);
    setenv("LD_PRELOAD", "libother.so", 1);
    const PrivateFolder folder;
    Options options;
    options.noErrors = true;
    const Changes vendor = std::get<Changes>(layerSetup(options, false, nullptr, folder));
    const std::string file = folder.path() + "/egl_vendor.json";
    EXPECT_EQ(vendor,
        (Changes{{"CORVALE_LAYER_DEVICE", ""}, {"CORVALE_LAYER_HOST", "libhost.so"},
            {"CORVALE_LAYER_OPTIONS", "no-errors"}, {"CORVALE_LAYER_SOCKET", folder.socketPath()},
            {"SDL_VIDEO_X11_FORCE_EGL", "1"}, {"__EGL_VENDOR_LIBRARY_FILENAMES", file}}));
    EXPECT_NE(child_process::contentOf(file).find((layer / "libEGL_corvale.so").string()), std::string::npos);

    Device device;
    device.table.name = "Board";
    const Changes withDevice = std::get<Changes>(layerSetup(options, true, &device, folder));
    EXPECT_EQ(child_process::contentOf(withDevice.at("CORVALE_LAYER_DEVICE")), toText(device.table));
    EXPECT_EQ(withDevice.at("CORVALE_LAYER_OPTIONS"), "no-errors strict");

    options.via = Via::Preload;
    const Changes preload = std::get<Changes>(layerSetup(options, false, nullptr, folder));
    EXPECT_EQ(preload.at("LD_PRELOAD"), (layer / "libcorvale_preload.so").string() + ":libother.so");
    EXPECT_FALSE(preload.contains("__EGL_VENDOR_LIBRARY_FILENAMES"));
    unsetenv("LD_PRELOAD");

    options.via = Via::Vendor;
    fs::remove(layer / "host.json");
    EXPECT_TRUE(std::holds_alternative<Unwatchable>(layerSetup(options, false, nullptr, folder)));
}

TEST(PrivateFolder, goesWithItsLauncherAndItsProcesses)
{
    const fs::path parent = std::getenv("XDG_RUNTIME_DIR");
    const auto makeOld = [&](const char* name) {
        fs::create_directory(parent / name);
        fs::last_write_time(parent / name, fs::file_time_type::clock::now() - std::chrono::minutes(5));
    };
    makeOld("corvale-run-dead00");
    makeOld("other");
    std::string path;
    {
        const PrivateFolder first;
        path = first.path();
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::minutes(5));
        const PrivateFolder second;
        EXPECT_TRUE(fs::exists(path)) << "its launcher lives";
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
        EXPECT_TRUE(first.write("file", "text"));
    }
    EXPECT_FALSE(fs::exists(path));
    EXPECT_FALSE(fs::exists(parent / "corvale-run-dead00"));
    EXPECT_TRUE(fs::exists(parent / "other"));
}

TEST(WholeRecord, fillsUpAndEndsTexts)
{
    const std::string full(8216, 'x');
    for (const std::uint32_t type : {3U, 5U, 9U, 10U, 16U, 17U, 18U}) {
        ui::messages::Message message;
        EXPECT_GE(WholeRecord({type, 7, full}).copyTo(message), 8223U);
        EXPECT_EQ(message.frame(), 7U);
        EXPECT_EQ(message.rawType(), type);
        EXPECT_EQ(message.u8(75), type == 9 ? 0 : 'x') << type;
        EXPECT_EQ(message.u8(519), type == 16 || type == 17 ? 0 : 'x') << type;
        EXPECT_EQ(message.u8(520), 'x') << type;
        EXPECT_EQ(message.u8(8223), type == 10 || type == 16 || type == 17 ? 'x' : 0) << type;
    }
    // A part of it that was sent already, cut at each of its seams.
    const WholeRecord record({9, 7, std::string_view(full).substr(0, 100)});
    ui::messages::Message message;
    EXPECT_EQ(record.copyTo(message), 108U);
    for (const std::size_t skipped : {0U, 1U, 8U, 74U, 75U, 76U, 77U, 107U, 108U, 109U, 8223U}) {
        std::vector<iovec> pieces;
        record.addTo(pieces, skipped);
        std::string bytes;
        for (const iovec& piece : pieces)
            bytes.append(static_cast<const char*>(piece.iov_base), piece.iov_len);
        EXPECT_EQ(bytes, std::string(message.data() + skipped, sizeof message - skipped)) << skipped;
    }
}

namespace {

std::string bytesIn(int pipe)
{
    std::string all;
    std::string piece(100'000, '\0');
    for (ssize_t size = 0; (size = read(pipe, piece.data(), piece.size())) > 0;)
        all.append(piece, 0, static_cast<std::size_t>(size));
    return all;
}

/// Lines without their time.
std::vector<std::string> linesOf(const std::string& bytes)
{
    std::vector<std::string> lines;
    std::istringstream stream(bytes);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line.substr(std::min(line.size(), std::strlen("2000-01-01T00:00:00.000 "))));
    return lines;
}

} // namespace

TEST(RecordLog, losesWholeLinesAndOnlyWhereTheFileTakesNoMore)
{
    const fs::path path = child_process::freshFolder() / "log";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    RecordLog log;
    ASSERT_TRUE(log.open(path));
    log.take(7, {9, ui::messages::noFrame, std::string(8000, '\x03')});
    log.take(7, {6, 0, "\ta"});
    log.flush();
    const std::vector<std::string> first = linesOf(bytesIn(reader));
    ASSERT_EQ(first.size(), 2U);
    EXPECT_TRUE(first[0].starts_with("7 - gl-error 0x3030303 in \\x03\\x03")) << first[0];
    EXPECT_EQ(first[1], "7 0 information \\ta") << "nothing is left of the record before";

    const std::string text(100, 'x');
    const auto writeAndRead = [&](std::uint32_t count) {
        for (std::uint32_t frame = 0; frame < count; ++frame)
            log.take(7, {6, frame, text});
        std::string bytes;
        for (std::size_t before = 1; before != bytes.size();) {
            before = bytes.size();
            log.flush();
            bytes += bytesIn(reader);
        }
        const std::vector<std::string> lines = linesOf(bytes);
        for (std::size_t i = 0; i < lines.size(); ++i)
            EXPECT_EQ(lines[i], "7 " + std::to_string(i) + " information " + text);
        return lines.size();
    };
    testing::internal::CaptureStderr();
    EXPECT_EQ(writeAndRead(2000), 2000U) << "more than a pipe takes at once";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    EXPECT_LT(writeAndRead(20'000), 12'000U) << "more than may wait";
    EXPECT_EQ(writeAndRead(100), 100U);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
        "corvale-run: Lines are missing in " + path.string() + ": it takes no more.\n");
    close(reader);
}

TEST(RecordQueue, keepsOrderAndCountsBytes)
{
    QueueBudget budget{1000};
    {
        RecordQueue queue(budget);
        const std::string text(1000, 'x');
        for (std::uint32_t frame = 0; frame < 1000; ++frame)
            queue.push({frame % 2, frame, text});
        EXPECT_TRUE(budget.isSpent());
        queue.pop();
        const auto dropped = static_cast<std::uint32_t>(queue.dropOldest());
        EXPECT_GT(dropped, 200U);
        queue.removeIf([](const Record& record) { return record.type == 1; });
        std::array<Record, 400> records;
        const std::size_t count = queue.peek(records);
        EXPECT_EQ(count, (1000 - 1 - dropped) / 2);
        for (std::size_t i = 1; i < count; ++i)
            EXPECT_EQ(records[i].frame, records[i - 1].frame + 2);
        EXPECT_EQ(records[count - 1].payload, text);
        EXPECT_EQ(queue.bytes(), budget.used);
        while (!queue.empty())
            queue.pop();
        EXPECT_EQ(budget.used, 0U);
        queue.push({});
    }
    EXPECT_EQ(budget.used, 0U);
}
