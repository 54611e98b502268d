#include "TSRPreferencesWindows.h"

#include "FileErrors.h"
#include "PropertyList.h"

#include <array>
#include <cerrno>
#include <cwchar>

#include <sys/stat.h>
#include <windows.h>
// These need windows.h before them.
#include <initguid.h>
#include <knownfolders.h>
#include <shlobj.h>

namespace {

using KnownFolderPath = HRESULT(WINAPI*)(REFKNOWNFOLDERID, DWORD, HANDLE, PWSTR*);

constexpr const wchar_t* temporarySuffix = L".tmp";
constexpr std::size_t temporaryPathSize = 2048;
constexpr int storeNameSize = 1024;

/// The old call, for systems without known folders. It speaks narrow text.
bool shellFolder(std::wstring& path, int folderKind)
{
    std::array<char, MAX_PATH> narrow{};
    std::array<wchar_t, MAX_PATH> wide{};
    const int folder = folderKind == TSRPreferencesImpl::allUsers ? CSIDL_COMMON_APPDATA : CSIDL_APPDATA;
    if (FAILED(SHGetFolderPathA(nullptr, folder, nullptr, SHGFP_TYPE_CURRENT, narrow.data())))
        return false;
    if (MultiByteToWideChar(CP_UTF8, 0, narrow.data(), -1, wide.data(), MAX_PATH) == 0)
        return false;
    path = wide.data();
    return true;
}

void createFile(const std::filesystem::path& path)
{
    const std::wstring folder = path.parent_path().native();
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    const bool known = GetFileAttributesExW(folder.c_str(), GetFileExInfoStandard, &attributes) != 0;
    if (!known || (attributes.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        CreateDirectoryW(folder.c_str(), nullptr);
    if (std::FILE* stream = _wfopen(path.c_str(), L"wb")) {
        std::fwrite(property_list::emptyFile.data(), 1, property_list::emptyFile.size(), stream);
        std::fclose(stream);
    }
}

std::FILE* openForReading(const std::filesystem::path& path)
{
    if (std::FILE* probe = _wfopen(path.c_str(), L"r"))
        std::fclose(probe);
    else
        createFile(path);
    return _wfopen(path.c_str(), L"rb");
}

} // namespace

TSRPreferencesWindows::EntryPoint TSRPreferencesWindows::loadedEntryPoint(
    const wchar_t* module, const char* name)
{
    const HMODULE handle = GetModuleHandleW(module);
    return handle ? reinterpret_cast<EntryPoint>(GetProcAddress(handle, name)) : nullptr;
}

bool TSRPreferencesWindows::knownFolder(std::wstring& path, int folderKind) const
{
    const EntryPoint entryPoint = m_lookup(L"shell32.dll", "SHGetKnownFolderPath");
    if (!entryPoint)
        return false;
    const auto knownFolderPath = reinterpret_cast<KnownFolderPath>(entryPoint);
    PWSTR found = nullptr;
    const bool ok = SUCCEEDED(knownFolderPath(
        folderKind == allUsers ? FOLDERID_ProgramData : FOLDERID_RoamingAppData, 0, nullptr, &found));
    if (ok)
        path = found;
    // It is to be released even when the call failed.
    CoTaskMemFree(found);
    return ok;
}

bool TSRPreferencesWindows::dataFolder(std::wstring& path, int folderKind) const
{
    if (!knownFolder(path, folderKind) && !shellFolder(path, folderKind))
        return false;
    path += L'\\';
    path += std::wstring(folderName, folderName + std::char_traits<char>::length(folderName));
    return true;
}

bool TSRPreferencesWindows::filePath(
    std::filesystem::path& path, const std::string& storeName, int folderKind) const
{
    std::array<wchar_t, storeNameSize> name{};
    std::wstring folder;
    if (!dataFolder(folder, folderKind)
        || MultiByteToWideChar(CP_UTF8, 0, storeName.c_str(), -1, name.data(), storeNameSize) == 0)
        return false;
    path = folder + L'\\' + name.data() + L".plist";
    return true;
}

bool TSRPreferencesWindows::folderPath(std::string& path, int folderKind)
{
    std::wstring wide;
    if (!dataFolder(wide, folderKind))
        return false;
    path.clear();
    for (const wchar_t unit : wide)
        path += static_cast<char>(unit & 0xFF);
    return true;
}

std::unique_ptr<TSRPreferencesFile> TSRPreferencesWindows::open(
    const std::string& storeName, Mode mode, int folderKind, bool atomic, std::string& error)
{
    auto file = std::make_unique<TSRPreferencesFile>();
    error = openFailure;
    m_openFailureReason = "There is no folder for preferences";
    if (!filePath(file->path, storeName, folderKind))
        return file;
    if (mode == Mode::Read)
        file->stream = openForReading(file->path);
    else
        file->stream = _wfopen((file->path.native() + (atomic ? temporarySuffix : L"")).c_str(), L"wb");
    m_openFailureReason = file->stream
        ? std::string()
        : "Cannot open " + platform::readablePath(file->path) + ": " + platform::errorText(errno);
    return file;
}

void TSRPreferencesWindows::close(std::unique_ptr<TSRPreferencesFile> file, bool commit)
{
    if (!file->stream)
        return;
    std::fclose(file->stream);
    file->stream = nullptr;
    const std::wstring temporary = file->path.native() + temporarySuffix;
    // A path without room for the suffix could never have been opened; nothing may be deleted for it.
    if (!commit || temporary.size() >= temporaryPathSize)
        return;
    DeleteFileW(file->path.c_str());
    MoveFileW(temporary.c_str(), file->path.c_str());
}

bool TSRPreferencesWindows::modificationStamp(
    const std::string& storeName, int folderKind, std::uint32_t& stamp)
{
    std::filesystem::path path;
    struct _stat64 status { };
    if (!filePath(path, storeName, folderKind) || _wstat64(path.c_str(), &status) != 0)
        return false;
    stamp = stampOf(static_cast<std::uint32_t>(status.st_mtime));
    return true;
}
