#pragma once

#include "GuardedFile.h"
#include "SessionFormat.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace sessions {

/// Writes a session into a file, block by block, so that whatever happens to the process, the file can be
/// read up to its last whole block. Blocks of a flood are hardly compressed. When the disk is full, the file
/// ends with that block, and nothing more is written.
class SessionWriter {
public:
    SessionWriter();
    ~SessionWriter();
    SessionWriter(const SessionWriter&) = delete;
    SessionWriter& operator=(const SessionWriter&) = delete;

    /// Begins a session in a file, now. A file that is there is replaced if it is empty or a session, and
    /// left alone else. False with a reason().
    bool open(const std::filesystem::path& path);
    /// The same with the beginning of a session that is over: floods in it are compressed like the rest.
    bool open(const std::filesystem::path& path, std::chrono::system_clock::time_point begin);
    /// The first half of open(): the file is there and may be replaced, but nothing in it has changed.
    bool claim(const std::filesystem::path& path);
    /// The second half, now.
    bool begin() { return begin(std::chrono::system_clock::now(), true); }
    /// Begins a session in a file without a name, which goes when nobody has it open any more.
    bool openNameless();
    /// Takes the bytes of the file, in order; returns why they could not be kept, or nothing.
    using Output = std::function<std::string(std::string_view)>;
    /// Begins a session that is written by somebody else.
    bool open(Output output, std::chrono::system_clock::time_point begin);
    /// Whether it is open and everything could be written until now.
    bool ok() const { return (m_file >= 0 || m_output) && m_reason.empty(); }
    const std::string& reason() const { return m_reason; }

    /// The time since open().
    SessionTime now() const { return timeAt(std::chrono::steady_clock::now()); }
    SessionTime timeAt(std::chrono::steady_clock::time_point time) const;
    /// Returns the client's number.
    std::uint32_t beginClient(
        std::uint32_t pid, std::string_view name, std::string_view device, SessionTime time);
    /// Tells the device of a client that began without it.
    void setDevice(std::uint32_t client, std::string_view device, SessionTime time);
    void add(std::uint32_t client, const Record& record, SessionTime time);
    void endClient(std::uint32_t client, ClientEnd end, std::string_view text, SessionTime time);

    /// Writes out what has been added; to be called about once a second, so that little is lost.
    void flush();
    /// The file once more, for a reader, which need not be closed before this writer. Nothing where it is not
    /// open, or written by somebody else.
    platform::FileStream again() const;
    /// Writes out the rest and closes the file. False with a reason() if anything is missing.
    bool close();
    /// Bytes in the file.
    std::uint64_t size() const { return m_size; }

private:
    struct Compressor;

    bool begin(std::chrono::system_clock::time_point begin, bool isLive);
    bool isFlooded() const;
    void writeBlock(std::uint32_t kind, std::string_view content, std::uint32_t count, SessionTime time);
    void write(std::string_view bytes);
    bool writeToFile(std::string_view bytes);
    void fail(int error);

    int m_file = -1;
    Output m_output;
    std::string m_reason;
    std::unique_ptr<Compressor> m_compressor;
    bool m_isLive = false; ///< What is written happens now.
    std::chrono::steady_clock::time_point m_begin;
    std::string m_records; ///< Content of the next block.
    std::uint32_t m_recordCount = 0;
    SessionTime m_firstTime{}; ///< Of the first and the last record in it.
    SessionTime m_lastTime{};
    std::uint32_t m_clientCount = 0;
    std::uint64_t m_size = 0;
    std::string m_block; ///< A buffer.
};

} // namespace sessions
