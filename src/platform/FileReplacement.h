#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace platform {

/// Success, or why it failed.
struct FileResult {
    std::string reason;
    explicit operator bool() const { return reason.empty(); }
};

/// Puts new content in a file's place so that the path holds the complete old or the complete new content at
/// every moment, whatever happens meanwhile. Symbolic links are followed to their target, which need not
/// exist yet; mode bits are kept, and so is the owner where the user may give files away.
///
/// The new content goes through `<target>.tmp`. That file is locked while the object lives, so two processes
/// that replace the same file take turns: who wants to change rather than overwrite begins first, reads then,
/// and commits. Nothing is kept when the object goes without a commit.
class FileReplacement {
public:
    /// What to do while somebody else is replacing the same file.
    enum class WhenTaken { Wait, Refuse };

    /// Waits a few seconds at most for another process that is replacing the same file, or not at all.
    explicit FileReplacement(const std::filesystem::path& path, WhenTaken whenTaken = WhenTaken::Wait);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// False when the temporary file cannot be had; reason() says why.
    bool ready() const { return m_descriptor >= 0; }
    const std::string& reason() const { return m_reason; }
    /// Whether it is not ready since somebody else is replacing the same file.
    bool isTaken() const { return m_isTaken; }

    /// Writes bytes that come before those of commit(), for content that is made piece by piece, and now and
    /// then durably, so that commit() does not take long. False, with a reason(), when they do not fit; then
    /// commit() fails as well.
    bool append(std::string_view bytes);

    /// Writes the bytes out durably and puts them in place. On failure the old file is as it was. To be
    /// called once.
    FileResult commit(std::string_view bytes);

private:
    bool findTarget(const std::filesystem::path& path);
    bool claimTemporary(WhenTaken whenTaken);
    bool keepAttributes();
    bool writeAll(std::string_view bytes);
    bool sync();
    bool moveIntoPlace();
    bool fail(const std::string& what, int errorNumber);
    void abandon();

    std::filesystem::path m_target;
    std::filesystem::path m_temporary;
    std::string m_reason;
    int m_descriptor = -1;
    std::size_t m_unsynced = 0; ///< Bytes appended since they were last made durable.
    bool m_hasOld = false;
    bool m_isTaken = false;
    unsigned int m_mode = 0;
    unsigned int m_owner = 0;
    unsigned int m_group = 0;
};

/// Replaces the whole content of a file, see FileReplacement.
FileResult replaceFile(const std::filesystem::path& path, std::string_view bytes);

} // namespace platform
