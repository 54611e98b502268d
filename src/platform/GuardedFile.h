#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace platform {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileStream = std::unique_ptr<std::FILE, FileCloser>;

/// A stream, or why there is none.
struct OpenedFile {
    FileStream stream;
    std::string reason;
    /// Nothing is at the path, as opposed to something that cannot be read.
    bool absent = false;
    std::string cause; ///< The reason without the path, for words of one's own about the file.
};

/// Bytes, or why there are none.
struct FileBytes {
    bool ok = false;
    std::string bytes;
    std::string reason;
    bool absent = false;
};

/// Opens a file for reading without ever waiting for it: it must be a regular file of at most `limit` bytes,
/// so a FIFO, a device, a folder or a monster in its place is refused with a readable reason.
OpenedFile openForReading(const std::filesystem::path& path, std::size_t limit);

/// A stream of its own for a file that is open. Nothing, with errno set, for one that is not.
FileStream openAgain(int descriptor);

/// Reads what is left of a stream, at most `limit` bytes; more than that, or a read error, is refused.
FileBytes readStream(std::FILE* stream, std::size_t limit);

/// openForReading and readStream in one.
FileBytes readFile(const std::filesystem::path& path, std::size_t limit);

} // namespace platform
