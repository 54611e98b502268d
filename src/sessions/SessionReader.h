#pragma once

#include "GuardedFile.h"
#include "SessionFormat.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sessions {

/// Reads a session file. Opening reads the heads of its blocks and its clients; the records are read one
/// block at a time, each within some milliseconds. Nothing in the file is trusted, and of a damaged one
/// everything that is whole is read. A file that is still written can be read up to where it is.
class SessionReader {
public:
    using Take = std::function<void(const SessionRecord&)>;

    SessionReader();
    ~SessionReader();
    SessionReader(const SessionReader&) = delete;
    SessionReader& operator=(const SessionReader&) = delete;

    /// False with a reason() if it is no session of a known version.
    bool open(const std::filesystem::path& path);
    /// The same for a file that is open already. Its position means nothing.
    bool open(platform::FileStream file);
    /// The file once more, for another reader.
    platform::FileStream again() const;
    const std::string& reason() const { return m_reason; }
    /// What is missing or damaged, as a sentence; empty if nothing is.
    const std::string& damage() const { return m_damage; }

    std::chrono::system_clock::time_point begin() const { return m_begin; }
    const std::vector<SessionClient>& clients() const { return m_clients; }
    std::uint64_t recordCount() const { return m_recordCount; }

    /// Of the first record of the last block: about how long the session lasts.
    SessionTime lastTime() const { return m_blocks.empty() ? SessionTime{} : m_blocks.back().head.time; }

    /// Blocks of records.
    std::size_t blockCount() const { return m_blocks.size(); }
    /// The number of the first record of a block, from 0.
    std::uint64_t firstRecord(std::size_t block) const { return m_blocks.at(block).firstRecord; }
    /// The block in which a record is, if there is such a record.
    std::size_t blockOf(std::uint64_t record) const;
    /// Gives the records of a block in their order; they are valid during the call only. False if the block
    /// is damaged; then damage() tells, and some of its records may have been given.
    bool read(std::size_t block, const Take& take);
    /// The same one by one: makes a block the one whose records next() gives. False if it is damaged.
    bool load(std::size_t block);
    /// Gives the next record, which is valid until the next call. False at the end of the block, and where it
    /// is damaged.
    bool next(SessionRecord& record);

private:
    struct Block {
        std::uint64_t place; ///< Of its content in the file.
        std::uint64_t firstRecord;
        format::BlockHead head;
    };
    struct Decompressor;

    bool readHead();
    void readBlockHeads();
    void takeClient(const format::BlockHead& head, std::uint64_t place);
    void takeDevice(const format::BlockHead& head, std::uint64_t place);
    void takeEnd(const format::BlockHead& head, std::uint64_t place);
    /// The content of a block about a process, in the buffer.
    bool clientContent(const format::BlockHead& head, std::uint64_t place);
    /// The content of a block, unpacked; nothing if it is damaged.
    bool content(const format::BlockHead& head, std::uint64_t place, std::string& to);
    bool readBytes(std::uint64_t place, std::size_t size, std::string& to) const;
    void noteDamage(const std::string& text);

    platform::FileStream m_file;
    std::string m_reason;
    std::string m_damage;
    std::chrono::system_clock::time_point m_begin;
    std::vector<SessionClient> m_clients;
    std::vector<Block> m_blocks;
    std::uint64_t m_recordCount = 0;
    std::uint64_t m_clientBytes = 0; ///< Of all blocks about processes.
    std::unique_ptr<Decompressor> m_decompressor;
    std::string m_stored; ///< Buffers.
    std::string m_content;
    std::string m_payload;
    format::ByteSource m_source{{}}; ///< What next() has not given yet of the content.
    std::uint32_t m_left = 0; ///< Records in it.
};

} // namespace sessions
