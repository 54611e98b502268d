#pragma once

#include "RingReader.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

/// A record of a program under test: its payload is whole and ended.
struct SentRecord {
    std::uint32_t type = 0;
    std::uint32_t frame = 0;
    std::string payload;

    std::uint32_t number(std::size_t at) const; ///< At an offset of the payload.
    std::string text(std::size_t at) const; ///< Up to its NUL or the payload's end.
};

/// Runs a program with the layer in front of its driver, or without, and does with its rings what the
/// launcher does, but for the window.
class LayeredProgram {
public:
    enum class Layer { None, Vendor, Preload };

    /// Starts a program with pipes to its standard input and from its output. Environment variables are added
    /// to ours.
    LayeredProgram(
        std::vector<std::string> command, Layer layer, std::map<std::string, std::string> environment = {});
    ~LayeredProgram();
    LayeredProgram(const LayeredProgram&) = delete;
    LayeredProgram& operator=(const LayeredProgram&) = delete;

    /// Writes a line to the program and returns the next line that it prints.
    std::string ask(const std::string& line);
    void setWireframe(bool on);
    /// Closes the input and reads to the end: what the program printed since the last line that was asked
    /// for.
    std::string finish();

    int exitStatus() const { return m_status; } ///< As waitpid() tells it.
    /// The records of all processes, those of the first that greeted first.
    const std::vector<SentRecord>& records() const { return m_records; }
    std::vector<SentRecord> recordsOf(std::uint32_t type) const;
    std::size_t processes() const { return m_rings.size(); }
    std::uint32_t frames() const { return m_rings.empty() ? 0 : m_rings.front()->frames(); }

private:
    void takeGreetings();
    void drain();

    std::string m_folder;
    int m_listener = -1;
    int m_input = -1;
    int m_output = -1;
    pid_t m_pid = -1;
    int m_status = -1;
    std::vector<std::unique_ptr<layer::ring::Reader>> m_rings;
    std::vector<SentRecord> m_records;
};
