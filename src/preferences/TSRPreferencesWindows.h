#pragma once

#include "TSRPreferencesImpl.h"

/// The file layer of Windows: `<known folder>\Brindlewood\<store>.plist`, with the roaming application data
/// folder of the user or the program data folder of all users.
///
/// A commit deletes the preference file and moves the finished temporary file to its name. The results of
/// both are not looked at: a move that fails leaves the new content in the temporary file.
class TSRPreferencesWindows : public TSRPreferencesImpl {
public:
    using EntryPoint = void (*)();
    /// Finds a function of a module that is in the process already; null when either is missing.
    using EntryPointLookup = EntryPoint (*)(const wchar_t* module, const char* name);

    static EntryPoint loadedEntryPoint(const wchar_t* module, const char* name);

    explicit TSRPreferencesWindows(EntryPointLookup lookup = loadedEntryPoint)
        : m_lookup(lookup)
    {
    }

    /// Narrow text takes the low byte of each UTF-16 unit, so what is not Latin-1 is mangled.
    bool folderPath(std::string& path, int folderKind) override;
    std::unique_ptr<TSRPreferencesFile> open(
        const std::string& storeName, Mode mode, int folderKind, bool atomic, std::string& error) override;
    void close(std::unique_ptr<TSRPreferencesFile> file, bool commit) override;
    bool modificationStamp(const std::string& storeName, int folderKind, std::uint32_t& stamp) override;

private:
    bool knownFolder(std::wstring& path, int folderKind) const;
    bool dataFolder(std::wstring& path, int folderKind) const;
    bool filePath(std::filesystem::path& path, const std::string& storeName, int folderKind) const;

    EntryPointLookup m_lookup;
};
