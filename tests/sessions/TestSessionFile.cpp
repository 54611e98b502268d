#include "Hash.h"
#include "PackedPayload.h"
#include "RecordMaker.h"
#include "SessionReader.h"
#include "SessionWriter.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using sessions::ClientEnd;
using sessions::SessionReader;
using sessions::SessionRecord;
using sessions::SessionTime;
using sessions::SessionWriter;
using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;
namespace fs = std::filesystem;

namespace {

fs::path sessionPath()
{
    return fs::temp_directory_path() / "one.session";
}

std::string bytesOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeBytes(const fs::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

/// What a reader gives, in short: client, time, frame, type and payload of each record.
struct Seen {
    std::vector<std::string> records;
    std::string damage;
    std::string reason;

    explicit Seen(const fs::path& path)
    {
        SessionReader reader;
        if (!reader.open(path)) {
            reason = reader.reason();
            return;
        }
        for (std::size_t block = 0; block < reader.blockCount(); ++block)
            reader.read(block, [this](const SessionRecord& record) {
                records.push_back(text(record.client, record.record, record.time));
            });
        damage = reader.damage();
    }
    static std::string text(std::uint32_t client, const sessions::Record& record, SessionTime time)
    {
        return std::to_string(client) + " " + std::to_string(time.count()) + " "
            + std::to_string(record.frame) + " " + std::to_string(record.type) + " "
            + std::string(sessions::trimmedPayload(record.type, record.payload));
    }
};

/// All that is read of a record.
std::string meaning(const sessions::Record& record)
{
    std::string text;
    const auto add = [&text](const auto& part) {
        if constexpr (std::is_integral_v<std::decay_t<decltype(part)>>)
            text += std::to_string(part) + "|";
        else
            text += std::string(part) + "|";
    };
    switch (static_cast<Type>(record.type)) {
    case Type::DebugMessage:
        add(record.u32(offset::debugSeverity));
        add(record.text(offset::debugText));
        break;
    case Type::GlError:
        add(record.u32(offset::glErrorCode));
        add(record.text(offset::glErrorFunction, offset::glErrorDescription));
        add(record.text(offset::glErrorDescription));
        break;
    case Type::ReportText:
    case Type::ReportDetail:
        add(record.text(offset::reportText, offset::reportTextEnd));
        add(record.u32(offset::reportTextEnd));
        break;
    case Type::ReportKeyedText:
        add(record.u32(offset::reportKey));
        add(record.text(offset::reportKeyedText));
        break;
    case Type::ContextInformation:
        for (std::size_t at = offset::payload; at < ui::messages::recordSize; at += 4)
            add(record.u32(at));
        break;
    default:
        add(record.text(offset::text));
        break;
    }
    return text;
}

/// A session of two clients with some errors in two blocks; returns what a reader should see.
std::vector<std::string> writeSmallSession(const fs::path& path)
{
    std::vector<std::string> expected;
    SessionWriter writer;
    EXPECT_TRUE(writer.open(path)) << writer.reason();
    for (std::uint32_t client = 0; client < 2; ++client) {
        writer.beginClient(100 + client, "game", client == 0 ? "Tarn" : "", SessionTime(client));
        for (std::uint32_t frame = 0; frame < 20; ++frame) {
            const RecordMaker made = RecordMaker::glError(0x0502, "glDrawArrays", "no program", frame);
            writer.add(client, made.record(), SessionTime(10 * frame));
            expected.push_back(Seen::text(client, made.record(), SessionTime(10 * frame)));
        }
        writer.flush();
    }
    writer.setDevice(1, "Late Tarn", SessionTime(700));
    writer.endClient(0, ClientEnd::Lost, "Killed by SIGSEGV", SessionTime(777));
    EXPECT_TRUE(writer.close()) << writer.reason();
    return expected;
}

} // namespace

TEST(SessionFile, keepsEverythingThatMatters)
{
    const std::vector<std::string> expected = writeSmallSession(sessionPath());
    const Seen seen(sessionPath());
    EXPECT_EQ(seen.records, expected);
    EXPECT_EQ(seen.damage, "");

    SessionReader reader;
    ASSERT_TRUE(reader.open(sessionPath()));
    EXPECT_EQ(reader.recordCount(), expected.size());
    ASSERT_EQ(reader.clients().size(), 2U);
    EXPECT_EQ(reader.clients()[0].pid, 100U);
    EXPECT_EQ(reader.clients()[0].device, "Tarn");
    EXPECT_EQ(reader.clients()[1].device, "Late Tarn");
    EXPECT_EQ(reader.clients()[0].end, ClientEnd::Lost);
    EXPECT_EQ(reader.clients()[0].endText, "Killed by SIGSEGV");
    EXPECT_EQ(reader.clients()[0].endTime, SessionTime(777));
    EXPECT_EQ(reader.clients()[1].end, ClientEnd::None);
    EXPECT_EQ(reader.blockOf(19), 0U);
    EXPECT_EQ(reader.blockOf(20), 1U);
    EXPECT_EQ(reader.firstRecord(1), 20U);
    EXPECT_LT(std::chrono::system_clock::now() - reader.begin(), std::chrono::minutes(5));
}

/// Random bytes stand for what programs leave in unused parts.
TEST(SessionFile, keepsTheMeaningOfEveryType)
{
    std::mt19937 random(3);
    for (std::uint32_t type = 0; type <= 20; ++type) {
        Message message;
        for (std::size_t at = offset::payload; at < ui::messages::recordSize; ++at)
            message.setU8(at, static_cast<std::uint8_t>(random() % 8));
        const std::string_view payload(message.data() + 8, sessions::payloadLimit);
        for (const std::size_t size :
            {std::size_t{0}, std::size_t{3}, std::size_t{30}, std::size_t{600}, payload.size()}) {
            std::string packed;
            std::string unpacked;
            sessions::packPayload(type, payload.substr(0, size), packed);
            sessions::unpackPayload(type, packed, unpacked);
            const sessions::Record before{type, 0, payload.substr(0, size)};
            const sessions::Record after{type, 0, unpacked};
            EXPECT_LE(packed.size(), size + 1);
            EXPECT_EQ(meaning(after), meaning(before)) << type << " " << size;
        }
    }
}

TEST(SessionFile, isReadUpToWhereItEnds)
{
    const std::vector<std::string> expected = writeSmallSession(sessionPath());
    const std::string bytes = bytesOf(sessionPath());
    const fs::path cutPath = fs::temp_directory_path() / "cut.session";
    std::size_t before = 0;
    for (std::size_t size = sessions::format::fileHeadSize; size < bytes.size(); ++size) {
        writeBytes(cutPath, bytes.substr(0, size));
        const Seen seen(cutPath);
        ASSERT_EQ(seen.reason, "") << size;
        ASSERT_TRUE(std::equal(seen.records.begin(), seen.records.end(), expected.begin()));
        ASSERT_GE(seen.records.size(), before);
        before = seen.records.size();
    }
    EXPECT_EQ(before, expected.size()) << "only the last end is missing";
}

TEST(SessionFile, believesNoByte)
{
    const std::vector<std::string> expected = writeSmallSession(sessionPath());
    const std::string bytes = bytesOf(sessionPath());
    const fs::path changedPath = fs::temp_directory_path() / "changed.session";
    for (std::size_t at = sessions::format::fileHeadSize; at < bytes.size(); ++at) {
        std::string changed = bytes;
        changed[at] = static_cast<char>(~changed[at]);
        writeBytes(changedPath, changed);
        const Seen seen(changedPath);
        ASSERT_NE(seen.damage, "") << at;
        for (const std::string& record : seen.records)
            ASSERT_NE(std::find(expected.begin(), expected.end(), record), expected.end()) << at;
    }
}

TEST(SessionFile, skipsBlocksOfLaterVersions)
{
    const std::vector<std::string> expected = writeSmallSession(sessionPath());
    sessions::format::BlockHead head;
    head.kind = sessions::format::blockKind("LATE");
    head.storedSize = 5;
    head.size = 17;
    std::string bytes = bytesOf(sessionPath());
    bytes.insert(sessions::format::fileHeadSize, head.bytes() + "later");
    writeBytes(sessionPath(), bytes);
    const Seen seen(sessionPath());
    EXPECT_EQ(seen.records, expected);
    EXPECT_EQ(seen.damage, "");
}

TEST(SessionFile, hasBoundsForWhatItSaysOfProcesses)
{
    // A name of a megabyte, stored as it is, and a time that nothing can be added to.
    std::string content;
    for (const std::uint64_t number : {0U, 1U})
        sessions::format::putNumber(content, number, 4);
    sessions::format::putNumber(content, std::numeric_limits<std::int64_t>::max(), 8);
    const std::string numbers = content;
    sessions::format::putNumber(content, 1U << 20U, 4);
    content.append(1U << 20U, 'n');
    sessions::format::putText(content, "");
    const auto session = [](const std::string& clientContent) {
        sessions::format::BlockHead head;
        head.kind = sessions::format::clientBlock;
        head.storedSize = head.size = static_cast<std::uint32_t>(clientContent.size());
        head.checksum = platform::fnv1(clientContent);
        return bytesOf(sessionPath()).substr(0, sessions::format::fileHeadSize) + head.bytes()
            + clientContent;
    };
    writeSmallSession(sessionPath());
    writeBytes(sessionPath(), session(content));
    SessionReader reader;
    ASSERT_TRUE(reader.open(sessionPath()));
    EXPECT_TRUE(reader.clients().empty());
    EXPECT_NE(reader.damage(), "");

    content = numbers;
    sessions::format::putText(content, "name");
    sessions::format::putText(content, "");
    writeBytes(sessionPath(), session(content));
    ASSERT_TRUE(reader.open(sessionPath()));
    ASSERT_EQ(reader.clients().size(), 1U);
    EXPECT_LT(reader.clients().front().begin, SessionTime::max() / 2);
    EXPECT_EQ(reader.damage(), "");
}

TEST(SessionFile, survivesItsWriter)
{
    const pid_t child = fork();
    if (child == 0) {
        SessionWriter writer;
        writer.open(sessionPath());
        writer.beginClient(1, "name", "", SessionTime(0));
        for (std::uint32_t i = 0; i < 100'000; ++i)
            writer.add(
                0, RecordMaker::text(Type::Error, "text " + std::to_string(i), i).record(), SessionTime(i));
        kill(getpid(), SIGKILL);
    }
    waitpid(child, nullptr, 0);
    const Seen seen(sessionPath());
    EXPECT_GT(seen.records.size(), 80'000U);
    EXPECT_EQ(seen.records[70'000],
        Seen::text(0, RecordMaker::text(Type::Error, "text 70000", 70'000).record(), SessionTime(70'000)));
    EXPECT_EQ(seen.damage, "");
}

TEST(SessionFile, leavesFilesOfOthersAlone)
{
    const fs::path path = fs::temp_directory_path() / "other.txt";
    writeBytes(path, "precious");
    SessionWriter writer;
    EXPECT_FALSE(writer.open(path));
    EXPECT_EQ(writer.reason(), "the file that is there is no session, and is not replaced");
    EXPECT_EQ(bytesOf(path), "precious");
    EXPECT_EQ(Seen(path).reason, "it is no session: it is too short");
    writeBytes(path, "precious and quite long");
    writeBytes(path, bytesOf(path) + std::string(100, 'x'));
    EXPECT_EQ(Seen(path).reason, "it is no session");

    EXPECT_FALSE(SessionWriter().open("/dev/null"));
    EXPECT_FALSE(SessionWriter().open(fs::temp_directory_path() / "absent" / "a"));
    writeSmallSession(sessionPath());
    EXPECT_TRUE(SessionWriter().open(sessionPath())) << "a session may be replaced";
    EXPECT_TRUE(Seen(sessionPath()).records.empty());
}

TEST(SessionFile, endsWithItsLastWholeBlockWhenTheDiskIsFull)
{
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{20'000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    SessionWriter writer;
    ASSERT_TRUE(writer.open(sessionPath()));
    writer.beginClient(1, "name", "", SessionTime(0));
    std::mt19937 random(1);
    for (std::uint32_t i = 0; i < 1000; ++i) {
        std::string text;
        for (int letter = 0; letter < 100; ++letter)
            text += static_cast<char>('!' + random() % 90);
        writer.add(0, RecordMaker::text(Type::Error, text, i).record(), SessionTime(i));
        if (i % 10 == 9)
            writer.flush();
    }
    EXPECT_FALSE(writer.ok());
    EXPECT_FALSE(writer.close());
    EXPECT_NE(writer.reason(), "");
    setrlimit(RLIMIT_FSIZE, &before);
    const Seen seen(sessionPath());
    EXPECT_GT(seen.records.size(), 50U);
    EXPECT_EQ(seen.records.size() % 10, 0U);
    EXPECT_EQ(seen.damage, "");
}

/// Without a name, read while it is written, and written anew by way of somebody else's file.
TEST(SessionFile, passesFromWriterToWriter)
{
    SessionWriter scratch;
    ASSERT_TRUE(scratch.openNameless());
    scratch.beginClient(7, "one", "", SessionTime(0));
    for (int i = 0; i < 3; ++i)
        scratch.add(0, RecordMaker::text(Type::Error, std::to_string(i)).record(), SessionTime(i));
    scratch.flush();
    SessionReader reader;
    ASSERT_TRUE(reader.open(scratch.again()));
    scratch.close();

    std::string bytes;
    SessionWriter writer;
    const auto append = [&bytes](std::string_view part) {
        bytes += part;
        return std::string();
    };
    ASSERT_TRUE(writer.open(append, reader.begin()));
    writer.beginClient(7, "one", "", SessionTime(0));
    ASSERT_TRUE(reader.load(0));
    SessionRecord record;
    while (reader.next(record))
        writer.add(0, record.record, record.time);
    ASSERT_TRUE(writer.close());
    writeBytes(sessionPath(), bytes);
    EXPECT_EQ(Seen(sessionPath()).records.size(), 3U);
    EXPECT_EQ(Seen(sessionPath()).damage, "");

    SessionWriter full;
    EXPECT_FALSE(full.open([](std::string_view) { return std::string("no room"); }, reader.begin()));
    EXPECT_EQ(full.reason(), "no room");
}

/// Compressing takes longer than all the rest, so a flood is only compressed where it is copied.
TEST(SessionFile, hardlyCompressesFloods)
{
    constexpr int count = 4000;
    const auto write = [](SessionWriter& writer, SessionTime step) {
        writer.beginClient(7, "one", "", SessionTime(0));
        for (int i = 0; i < count; ++i) {
            const std::string text = "Texture " + std::to_string(i) + std::string(100, 'x');
            writer.add(0, RecordMaker::text(Type::Error, text).record(), step * i);
        }
        EXPECT_TRUE(writer.close());
        const Seen seen(sessionPath());
        EXPECT_EQ(seen.records.size(), std::size_t{count});
        EXPECT_EQ(seen.damage, "");
        return fs::file_size(sessionPath());
    };
    SessionWriter live;
    ASSERT_TRUE(live.open(sessionPath()));
    EXPECT_GT(write(live, SessionTime(5)), std::uint64_t{count} * 100 / 2);
    std::string bytes = bytesOf(sessionPath());
    bytes[200'000] = static_cast<char>(~bytes[200'000]);
    writeBytes(sessionPath(), bytes);
    EXPECT_NE(Seen(sessionPath()).damage, "") << "what is not compressed is checked as well";
    SessionWriter slow;
    ASSERT_TRUE(slow.open(sessionPath()));
    EXPECT_LT(write(slow, SessionTime(500)), std::uint64_t{count} * 100 / 4) << "no flood";
    SessionWriter copy;
    ASSERT_TRUE(copy.open(sessionPath(), std::chrono::system_clock::now()));
    EXPECT_LT(write(copy, SessionTime(5)), std::uint64_t{count} * 100 / 4);
}
