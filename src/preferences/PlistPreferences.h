#pragma once

#include "PlistValues.h"
#include "TSRPreferencesImpl.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tinyxml2 {
class XMLDocument;
} // namespace tinyxml2

/// The preferences of this process: typed values under key paths such as "About/ShowSplash", held in memory
/// and in one property-list file. Setters change the memory alone; save() writes the file.
///
/// Other processes may write the same file. A store that was loaded with watching looks at the file's
/// modification stamp before a setter, and at its bytes while it saves. Where they differ, it takes over what
/// is in the file and sets its own unsaved values on top.
class PlistPreferences {
public:
    PlistPreferences(
        std::string storeName, int folderKind, std::unique_ptr<TSRPreferencesImpl> layer = platformLayer());
    ~PlistPreferences();
    PlistPreferences(const PlistPreferences&) = delete;
    PlistPreferences& operator=(const PlistPreferences&) = delete;

    /// The file layer of the system that this is.
    static std::unique_ptr<TSRPreferencesImpl> platformLayer();

    /// Replaces everything in memory by the file's content; a missing file is created. A file that cannot be
    /// parsed gives an empty set and counts as success. Otherwise false, with the reason in the error text.
    bool load(std::string& error, bool watch);

    /// Writes the file if anything was set since the last load or save, or if forced. False when it could not
    /// be written; the values count as unsaved then. True, and nothing written, when the file layer gave no
    /// stream; unwrittenReason() tells.
    bool save(bool force);

    // Getters. `result` may be null. On a code other than success, and if asked to, they copy the default
    // into it.
    ResultCode getBoolean(
        std::string_view keyPath, bool* result, const bool* defaultValue, bool useDefault) const;
    ResultCode getString(std::string_view keyPath, std::string* result, const std::string* defaultValue,
        bool useDefault) const;
    ResultCode getList(std::string_view keyPath, property_list::List* result,
        const property_list::List* defaultValue, bool useDefault) const;
    ResultCode getInteger(std::string_view keyPath, std::int64_t* result, const std::int64_t* defaultValue,
        bool useDefault) const;
    ResultCode getReal(
        std::string_view keyPath, double* result, const double* defaultValue, bool useDefault) const;
    ResultCode getData(std::string_view keyPath, property_list::Data* result,
        const property_list::Data* defaultValue, bool useDefault) const;

    // Setters. What is in the way of the path or has another type is replaced. A value that a file cannot
    // hold (text or a key with a NUL, a real that is not finite, a path of more than
    // platform::limits::keyPathComponents components) is refused with ResultCode::WrongType.
    ResultCode setBoolean(std::string_view keyPath, bool value);
    ResultCode setString(std::string_view keyPath, const std::string& value);
    ResultCode setList(std::string_view keyPath, const property_list::List& value);
    ResultCode setInteger(std::string_view keyPath, std::int64_t value);
    ResultCode setReal(std::string_view keyPath, double value);
    ResultCode setData(std::string_view keyPath, const property_list::Data& value);
    /// The setter of the value's own type.
    ResultCode set(std::string_view keyPath, property_list::Value value);

    /// Where the copy of a file is that could not be read as preferences and that a save has replaced; empty
    /// when there was none.
    const std::filesystem::path& corruptCopy() const { return m_corruptCopy; }

    /// Why the last save() failed, as readable text.
    const std::string& saveError() const { return m_saveError; }

    /// Why the last save() that counts as a success has written nothing, as readable text; empty when it has
    /// written.
    const std::string& unwrittenReason() const { return m_unwrittenReason; }
    /// Whether that was since another process is replacing the file, so that another try may succeed.
    bool isTaken() const { return m_isTaken; }
    /// Whether a save waits a few seconds for such a process. It does so at first.
    void setWaits(bool waits);

    /// Why the last load() failed, as readable text that names the file.
    const std::string& loadProblem() const { return m_loadProblem; }
    /// Whether the file holds something that is no property list. The next save puts it aside.
    bool isUnreadable() const { return m_unreadable; }
    /// The file; empty before the first load.
    const std::filesystem::path& path() const { return m_path; }

private:
    template <typename T>
    ResultCode get(std::string_view keyPath, T* result, const T* defaultValue, bool useDefault) const;
    void remember(const property_list::KeyPath& path, property_list::Value value);
    void setPending();

    bool readDocument(std::string& error);
    std::optional<std::string> readFile(std::string& error);
    void reloadIfStampDiffers();
    bool takeOverOtherWriters();
    void takeOver(std::string bytes);
    bool writeTo(const TSRPreferencesFile& file, std::string& text);
    bool keepUnreadable(const std::filesystem::path& path);
    void recordStamp();

    std::unique_ptr<tinyxml2::XMLDocument> m_document;
    std::unique_ptr<TSRPreferencesImpl> m_layer;
    std::string m_storeName;
    std::uint32_t m_stamp = 0;
    bool m_watching = false;
    bool m_changed = false;
    int m_folderKind = TSRPreferencesImpl::perUser;

    /// What the file held when it was last read or written. A save compares the file with it, since the
    /// stamp has steps of a second and misses changes; a setter compares the stamp alone.
    std::string m_onDisk;
    /// m_onDisk could not be parsed or taken over, and there is no copy of it yet.
    bool m_unreadable = false;
    /// What was set and has not reached the disk.
    std::map<property_list::KeyPath, property_list::Value> m_pending;
    std::filesystem::path m_corruptCopy;
    std::string m_saveError;
    std::string m_unwrittenReason;
    bool m_isTaken = false;
    std::string m_loadProblem;
    std::filesystem::path m_path;
};
