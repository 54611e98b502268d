#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

/// An open preference file. It belongs to the layer that opened it and goes back there to be closed.
struct TSRPreferencesFile {
    TSRPreferencesFile() = default;
    virtual ~TSRPreferencesFile();
    TSRPreferencesFile(const TSRPreferencesFile&) = delete;
    TSRPreferencesFile& operator=(const TSRPreferencesFile&) = delete;

    /// Null when the file could not be opened.
    std::FILE* stream = nullptr;
    /// The preference file itself, without the suffix of a temporary one.
    std::filesystem::path path;
};

/// Where the preference file of a store lives, and how it is opened, replaced and watched. Folder kind 1 is
/// the folder for all users, any other kind the one of this user.
class TSRPreferencesImpl {
public:
    enum class Mode { Read, Write };

    static constexpr int perUser = 0;
    static constexpr int allUsers = 1;

    TSRPreferencesImpl() = default;
    TSRPreferencesImpl(const TSRPreferencesImpl&) = delete;
    TSRPreferencesImpl& operator=(const TSRPreferencesImpl&) = delete;

    // The order of the virtual operations is fixed; new ones go to the end.

    /// The folder's path as narrow text. False when there is no such folder.
    virtual bool folderPath(std::string& path, int folderKind) = 0;

    /// Opens a store's file. Reading creates a missing file, and its folder. Writing atomically leaves the
    /// file as it is until close() commits. The error text is set in any case and means something only when
    /// there is no stream.
    virtual std::unique_ptr<TSRPreferencesFile> open(
        const std::string& storeName, Mode mode, int folderKind, bool atomic, std::string& error) = 0;

    /// Closes a file of open(); with the commit flag, what was written atomically takes the file's place.
    virtual void close(std::unique_ptr<TSRPreferencesFile> file, bool commit) = 0;

    /// A hash of the file's modification time. False when there is no file.
    virtual bool modificationStamp(const std::string& storeName, int folderKind, std::uint32_t& stamp) = 0;

    virtual ~TSRPreferencesImpl();

    /// Why the last commit did not reach the disk, as readable text; empty when it did, or when the layer
    /// does not look.
    const std::string& commitFailure() const { return m_commitFailure; }

    /// Why the last open() gave no stream, as readable text that names the file; empty when it gave one.
    const std::string& openFailureReason() const { return m_openFailureReason; }
    /// Whether the last open() gave no stream since another process is replacing the file.
    bool isTaken() const { return m_isTaken; }
    /// Whether open() waits a few seconds while another process replaces the file. It does so at first.
    void setWaits(bool waits) { m_waits = waits; }

protected:
    static constexpr const char* folderName = "Brindlewood";
    static constexpr const char* openFailure = "Failed to open preference file.";

    /// The stamp of a modification time: its four bytes, least significant first, hashed.
    static std::uint32_t stampOf(std::uint32_t modificationTime);

    std::string m_commitFailure;
    std::string m_openFailureReason;
    bool m_isTaken = false;
    bool m_waits = true;
};
