#pragma once

#include "GuardedFile.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

/// A new file without a name in the folder for temporary files, for reading and writing. Nothing, with errno
/// set, where it cannot be made.
FileStream openNamelessFile();

/// A file without a name in the folder for temporary files, for what is too much for memory. It is made when
/// the first bytes come, and goes with the object or the process, whatever ends it.
class ScratchFile {
public:
    /// Adds bytes at the end. On failure the file is as it was, and reason() says why.
    bool append(std::string_view bytes);

    /// Up to `count` bytes from an offset; fewer where the file ends or cannot be read.
    std::string read(std::uint64_t offset, std::size_t count) const;

    /// Bytes in the file.
    std::uint64_t size() const { return m_size; }
    const std::string& reason() const { return m_reason; }

private:
    bool open();
    bool fail();

    FileStream m_stream;
    std::uint64_t m_size = 0;
    std::string m_reason;
};

} // namespace platform
