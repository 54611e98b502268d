#include "PlistPreferences.h"

#include "CorruptCopy.h"
#include "FileErrors.h"
#include "FileReplacement.h"
#include "GuardedFile.h"
#include "Limits.h"
#include "PropertyList.h"

#include <utility>

#include <tinyxml2.h>

#ifdef _WIN32
#include "TSRPreferencesWindows.h"
#else
#include "TSRPreferencesPosix.h"
#endif

using tinyxml2::XMLDocument;

PlistPreferences::PlistPreferences(
    std::string storeName, int folderKind, std::unique_ptr<TSRPreferencesImpl> layer)
    : m_layer(std::move(layer))
    , m_storeName(std::move(storeName))
    , m_folderKind(folderKind)
{
}

PlistPreferences::~PlistPreferences() = default;

std::unique_ptr<TSRPreferencesImpl> PlistPreferences::platformLayer()
{
#ifdef _WIN32
    return std::make_unique<TSRPreferencesWindows>();
#else
    return std::make_unique<TSRPreferencesPosix>();
#endif
}

bool PlistPreferences::load(std::string& error, bool watch)
{
    m_loadProblem.clear();
    if (!readDocument(error)) {
        if (m_loadProblem.empty())
            m_loadProblem = "Cannot read " + platform::readablePath(m_path) + ": " + error;
        return false;
    }
    m_watching = watch;
    recordStamp();
    return true;
}

std::optional<std::string> PlistPreferences::readFile(std::string& error)
{
    auto file = m_layer->open(m_storeName, TSRPreferencesImpl::Mode::Read, m_folderKind, false, error);
    std::optional<std::string> bytes;
    m_path = file->path;
    if (file->stream) {
        platform::FileBytes read = platform::readStream(file->stream, platform::limits::fileSize);
        if (read.ok)
            bytes = std::move(read.bytes);
    }
    m_layer->close(std::move(file), false);
    return bytes;
}

bool PlistPreferences::readDocument(std::string& error)
{
    std::string openError;
    std::optional<std::string> bytes = m_layer ? readFile(openError) : std::nullopt;
    if (!bytes) {
        error = "ERROR: " + openError;
        m_loadProblem = m_layer ? m_layer->openFailureReason() : std::string();
        return false;
    }
    m_document = std::make_unique<XMLDocument>();
    m_changed = false;
    m_pending.clear();
    std::string parserError;
    const bool parsed = property_list::parse(*m_document, *bytes, parserError);
    m_unreadable = !parsed;
    m_onDisk = std::move(*bytes);
    if (property_list::repair(*m_document, error))
        return true;
    if (!parsed)
        property_list::appendFormatted(error, parserError.c_str());
    return false;
}

bool PlistPreferences::save(bool force)
{
    m_saveError.clear();
    if (!m_layer || !m_document) {
        m_saveError = "There are no preferences to save.";
        return false;
    }
    if (!force && !m_changed)
        return true;
    std::string ignored;
    auto file = m_layer->open(m_storeName, TSRPreferencesImpl::Mode::Write, m_folderKind, true, ignored);
    // Without a stream the save counts as done; the values stay pending, so that the next one writes them.
    const bool hasStream = file->stream != nullptr;
    m_isTaken = m_layer->isTaken();
    m_unwrittenReason = m_layer->openFailureReason();
    std::string text;
    const bool written = !hasStream || writeTo(*file, text);
    m_layer->close(std::move(file), written);
    if (written)
        m_saveError = m_layer->commitFailure();
    if (!m_saveError.empty())
        return false;
    m_changed = false;
    if (hasStream) {
        m_pending.clear();
        m_onDisk = std::move(text);
    }
    recordStamp();
    return true;
}

void PlistPreferences::setWaits(bool waits)
{
    if (m_layer)
        m_layer->setWaits(waits);
}

/// Everything between opening the stream and committing it.
bool PlistPreferences::writeTo(const TSRPreferencesFile& file, std::string& text)
{
    if ((m_watching && !takeOverOtherWriters()) || !keepUnreadable(file.path))
        return false;
    text = property_list::print(*m_document);
    if (text.size() > platform::limits::fileSize)
        m_saveError = "The preferences have become too large to be saved.";
    else if (std::fwrite(text.data(), 1, text.size(), file.stream) != text.size()
        || std::fflush(file.stream) != 0)
        m_saveError = "The preferences could not be written.";
    return m_saveError.empty();
}

void PlistPreferences::recordStamp()
{
    if (m_watching)
        m_layer->modificationStamp(m_storeName, m_folderKind, m_stamp);
}

/// Reads the file again where its stamp has changed since it was last read or written.
void PlistPreferences::reloadIfStampDiffers()
{
    std::uint32_t stamp = 0;
    if (m_changed || !m_watching || !m_layer->modificationStamp(m_storeName, m_folderKind, stamp)
        || stamp == m_stamp)
        return;
    std::string ignored;
    std::optional<std::string> bytes = readFile(ignored);
    if (!bytes)
        return;
    m_stamp = stamp;
    takeOver(std::move(*bytes));
}

/// Another process may have saved since our setter, or before it within the second of our last save, which
/// the stamp does not show. On POSIX this process holds the lock on the file by now, so that nobody writes
/// between the comparison and the commit.
bool PlistPreferences::takeOverOtherWriters()
{
    std::uint32_t stamp = 0;
    std::string error;
    if (!m_layer->modificationStamp(m_storeName, m_folderKind, stamp))
        return true;
    std::optional<std::string> bytes = readFile(error);
    if (!bytes) {
        m_saveError = "The preference file has become unreadable and is not replaced.";
        return false;
    }
    takeOver(std::move(*bytes));
    return true;
}

/// Replaces what is in memory by what others have written, except for our unsaved values. What cannot be
/// taken over leaves the memory as it is, and the save keeps it aside.
void PlistPreferences::takeOver(std::string bytes)
{
    if (bytes == m_onDisk)
        return;
    std::string ignored;
    auto document = std::make_unique<XMLDocument>();
    m_unreadable =
        !property_list::parse(*document, bytes, ignored) || !property_list::repair(*document, ignored);
    m_onDisk = std::move(bytes);
    if (!m_unreadable) {
        m_document = std::move(document);
        setPending();
    }
}

bool PlistPreferences::keepUnreadable(const std::filesystem::path& path)
{
    if (!m_unreadable)
        return true;
    const platform::FileResult kept = keepCorruptCopy(path, m_onDisk, m_corruptCopy);
    m_unreadable = !kept;
    m_saveError = kept.reason;
    return !m_unreadable;
}

void PlistPreferences::setPending()
{
    // Also those of a save without a stream, although they do not count as changes.
    for (const auto& [path, value] : m_pending)
        property_list::write(*m_document, path, value);
}

/// A later value makes those obsolete that it replaces: the same path, what is below it, and what is in its
/// way.
void PlistPreferences::remember(const property_list::KeyPath& path, property_list::Value value)
{
    const auto isBelow = [&path](const property_list::KeyPath& other) {
        return other.size() >= path.size() && std::equal(path.begin(), path.end(), other.begin());
    };
    for (auto entry = m_pending.lower_bound(path); entry != m_pending.end() && isBelow(entry->first);)
        entry = m_pending.erase(entry);
    for (property_list::KeyPath above = path; !above.empty(); above.pop_back())
        m_pending.erase(above);
    m_pending.emplace(path, std::move(value));
}

ResultCode PlistPreferences::set(std::string_view keyPath, property_list::Value value)
{
    if (!m_document)
        return ResultCode::NoDocument;
    const property_list::KeyPath path = property_list::splitKeyPath(keyPath);
    if (path.empty())
        return ResultCode::EmptyKeyPath;
    if (keyPath.find('\0') != std::string_view::npos || path.size() > platform::limits::keyPathComponents
        || !property_list::isStorable(value))
        return ResultCode::WrongType;
    reloadIfStampDiffers();
    property_list::write(*m_document, path, value);
    remember(path, std::move(value));
    m_changed = true;
    return ResultCode::Success;
}

template <typename T>
ResultCode PlistPreferences::get(
    std::string_view keyPath, T* result, const T* defaultValue, bool useDefault) const
{
    ResultCode code = ResultCode::NoDocument;
    T value{};
    if (m_document) {
        const property_list::Found found =
            property_list::find(*m_document, property_list::splitKeyPath(keyPath));
        code = found.code;
        if (code == ResultCode::Success && !property_list::read(*found.value, value))
            code = ResultCode::WrongType;
    }
    if (code == ResultCode::Success && result)
        *result = std::move(value);
    else if (code != ResultCode::Success && result && defaultValue && useDefault)
        *result = *defaultValue;
    return code;
}

ResultCode PlistPreferences::getBoolean(
    std::string_view keyPath, bool* result, const bool* defaultValue, bool useDefault) const
{
    return get(keyPath, result, defaultValue, useDefault);
}

ResultCode PlistPreferences::getString(
    std::string_view keyPath, std::string* result, const std::string* defaultValue, bool useDefault) const
{
    return get(keyPath, result, defaultValue, useDefault);
}

ResultCode PlistPreferences::getList(std::string_view keyPath, property_list::List* result,
    const property_list::List* defaultValue, bool useDefault) const
{
    return get(keyPath, result, defaultValue, useDefault);
}

ResultCode PlistPreferences::getInteger(
    std::string_view keyPath, std::int64_t* result, const std::int64_t* defaultValue, bool useDefault) const
{
    return get(keyPath, result, defaultValue, useDefault);
}

ResultCode PlistPreferences::getReal(
    std::string_view keyPath, double* result, const double* defaultValue, bool useDefault) const
{
    return get(keyPath, result, defaultValue, useDefault);
}

ResultCode PlistPreferences::getData(std::string_view keyPath, property_list::Data* result,
    const property_list::Data* defaultValue, bool useDefault) const
{
    return get(keyPath, result, defaultValue, useDefault);
}

ResultCode PlistPreferences::setBoolean(std::string_view keyPath, bool value)
{
    return set(keyPath, value);
}

ResultCode PlistPreferences::setString(std::string_view keyPath, const std::string& value)
{
    return set(keyPath, value);
}

ResultCode PlistPreferences::setList(std::string_view keyPath, const property_list::List& value)
{
    return set(keyPath, value);
}

ResultCode PlistPreferences::setInteger(std::string_view keyPath, std::int64_t value)
{
    return set(keyPath, value);
}

ResultCode PlistPreferences::setReal(std::string_view keyPath, double value)
{
    return set(keyPath, value);
}

ResultCode PlistPreferences::setData(std::string_view keyPath, const property_list::Data& value)
{
    return set(keyPath, value);
}
