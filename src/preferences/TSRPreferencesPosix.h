#pragma once

#include "FileReplacement.h"
#include "TSRPreferencesImpl.h"

/// The file layer where there are no known folders. This user's file is in `$XDG_CONFIG_HOME/Brindlewood`,
/// else `~/.config/Brindlewood`; the one of all users in the first of `$XDG_CONFIG_DIRS`, else `/etc/xdg`, +
/// `/Brindlewood`.
///
/// Atomic writing goes to memory, and the commit replaces the file durably. Between open() and close() the
/// process has the right to replace the file to itself, so what it reads meanwhile is what it replaces.
class TSRPreferencesPosix : public TSRPreferencesImpl {
public:
    bool folderPath(std::string& path, int folderKind) override;
    std::unique_ptr<TSRPreferencesFile> open(
        const std::string& storeName, Mode mode, int folderKind, bool atomic, std::string& error) override;
    void close(std::unique_ptr<TSRPreferencesFile> file, bool commit) override;
    bool modificationStamp(const std::string& storeName, int folderKind, std::uint32_t& stamp) override;

private:
    platform::FileReplacement::WhenTaken whenTaken() const;
    std::FILE* openForReading(const std::filesystem::path& path, int folderKind);
    /// Makes the file, unless it exists; returns the reason where that fails.
    std::string createFile(const std::filesystem::path& path, int folderKind) const;

    bool m_replacing = false;
};
