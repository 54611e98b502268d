#include "ConsoleSpool.h"

#include "ScratchFile.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

/// Bytes that are collected before they are written to the file, and that are read from it in one go.
constexpr std::size_t blockSize = 65536;

/// Entries between two places where reading can begin.
constexpr int entriesPerMark = 256;

/// Stands before each entry.
struct Prefix {
    std::uint32_t length = 0;
    std::uint32_t frame = 0;
    std::int64_t time = 0;
};

/// Of a length: set for a line that stands for missing entries, whose number takes the place of the frame.
constexpr std::uint32_t missingFlag = 0x80000000U;

void appendWithPrefix(std::string& bytes, std::string_view entry, const Prefix& prefix)
{
    std::array<char, sizeof prefix> raw{};
    std::memcpy(raw.data(), &prefix, sizeof prefix);
    bytes.append(raw.data(), raw.size()).append(entry);
}

std::string missingLine(std::uint64_t entries)
{
    const QString text = ConsoleSpool::tr(
        "%n entries are missing here: there was no room on the disk.", nullptr, static_cast<int>(entries));
    return console_entry::packClosingLine(text.toStdString());
}

void appendMissingLine(std::string& bytes, std::uint64_t entries)
{
    const std::string line = missingLine(entries);
    appendWithPrefix(bytes, line,
        {static_cast<std::uint32_t>(line.size()) | missingFlag, static_cast<std::uint32_t>(entries), 0});
}

/// How outlines of the spool know an entry.
std::string bytesOf(std::uint64_t serial)
{
    std::string bytes(sizeof serial, '\0');
    std::memcpy(bytes.data(), &serial, sizeof serial);
    return bytes;
}

std::uint64_t serialOf(std::string_view bytes)
{
    std::uint64_t serial = 0;
    std::memcpy(&serial, bytes.data(), std::min(bytes.size(), sizeof serial));
    return serial;
}

GroupPlace placeIn(const ConsoleOutline& outline)
{
    if (!outline.isInFrame())
        return {};
    return {outline.openFrames().size(), serialOf(outline.openFrames().front())};
}

} // namespace

ConsoleSpool::ConsoleSpool(QObject* parent)
    : QObject(parent)
    , m_file(std::make_shared<platform::ScratchFile>())
{
}

ConsoleSpool::~ConsoleSpool() = default;

void ConsoleSpool::append(std::string_view entry, EntryStamp stamp)
{
    if (m_lost > 0 && m_buffer.empty()) {
        addMark(m_nextSerial - m_lost);
        appendMissingLine(m_buffer, m_lost);
        console_entry::follow(missingLine(m_lost), m_outline);
    } else if (m_sinceMark == 0) {
        addMark(m_nextSerial);
    }
    m_sinceMark = (m_sinceMark + 1) % entriesPerMark;
    appendWithPrefix(m_buffer, entry, {static_cast<std::uint32_t>(entry.size()), stamp.frame, stamp.time});
    console_entry::follow(entry, m_outline, bytesOf(m_nextSerial));
    ++m_nextSerial;
    ++m_buffered;
    if (m_buffer.size() >= blockSize)
        flush();
}

void ConsoleSpool::addMark(std::uint64_t serial)
{
    m_marks.push_back({m_file->size() + m_buffer.size(), serial, m_outline});
    m_sinceMark = 0;
}

void ConsoleSpool::flush()
{
    if (m_buffer.empty())
        return;
    if (m_file->append(m_buffer)) {
        m_lost = 0;
        m_writtenOutline = m_outline;
    } else {
        const bool isNews = m_lost == 0;
        m_lost += m_buffered;
        m_outline = m_writtenOutline;
        while (!m_marks.empty() && m_marks.back().offset >= m_file->size())
            m_marks.pop_back();
        if (isNews)
            Q_EMIT failed(QString::fromStdString(m_file->reason()));
    }
    m_buffer.clear();
    m_buffered = 0;
}

void ConsoleSpool::clear()
{
    m_file = std::make_shared<platform::ScratchFile>();
    m_buffer.clear();
    m_buffered = m_lost = 0;
    m_marks.clear();
    m_sinceMark = 0;
    m_firstSerial = m_nextSerial;
    m_outline.removeText();
    m_writtenOutline = m_outline;
}

GroupPlace ConsoleSpool::nextPlace() const
{
    return placeIn(m_outline);
}

/// The last mark that is not behind an entry; none in an empty spool.
const ConsoleSpool::Mark* ConsoleSpool::markBefore(std::uint64_t serial) const
{
    const auto behind = std::upper_bound(m_marks.begin(), m_marks.end(), serial,
        [](std::uint64_t wanted, const Mark& mark) { return wanted < mark.serial; });
    return behind == m_marks.begin() ? nullptr : &*std::prev(behind);
}

std::string ConsoleSpool::entryOf(std::uint64_t serial)
{
    Reader reader(*this, serial);
    std::string_view entry;
    while (reader.next(entry)) {
        if (reader.isEntry())
            return reader.serial() == serial ? std::string(entry) : std::string();
    }
    return {};
}

ConsoleOutline ConsoleSpool::outlineBefore(std::uint64_t serial)
{
    const Mark* mark = markBefore(serial);
    if (!mark)
        return {};
    ConsoleOutline outline = mark->outline;
    Reader reader(*this, mark->serial);
    std::string_view entry;
    while (reader.next(entry) && reader.serial() < serial)
        console_entry::follow(entry, outline, bytesOf(reader.serial()));
    outline.replaceOpenFrames([this](const std::string& bytes) { return entryOf(serialOf(bytes)); });
    return outline;
}

ConsoleSpool::Reader::Reader(ConsoleSpool& spool)
    : Reader(spool, spool.m_firstSerial)
{
}

ConsoleSpool::Reader::Reader(ConsoleSpool& spool, std::uint64_t serial)
    : m_file(spool.m_file)
    , m_fileSize(spool.m_file->size())
    , m_tail(spool.m_buffer)
    , m_nextSerial(spool.m_firstSerial)
    , m_from(serial)
{
    // A buffer with entries begins with the line that replaces those before them.
    if (spool.m_lost > 0 && m_tail.empty())
        appendMissingLine(m_tail, spool.m_lost);
    if (const Mark* mark = spool.markBefore(serial)) {
        m_position = m_fetched = mark->offset;
        m_nextSerial = mark->serial;
        m_outline = mark->outline;
    }
}

/// Reads until the buffer has so many bytes. False at the end.
bool ConsoleSpool::Reader::bufferBytes(std::size_t count)
{
    while (isValid() && m_buffer.size() - m_at < count) {
        m_buffer.erase(0, m_at);
        m_at = 0;
        const std::size_t before = m_buffer.size();
        if (m_fetched < m_fileSize) {
            const auto size =
                static_cast<std::size_t>(std::min<std::uint64_t>(blockSize, m_fileSize - m_fetched));
            m_buffer += m_file->read(m_fetched, size);
            m_broken = m_buffer.size() == before;
        } else if (m_fetched < size()) {
            m_buffer.append(m_tail, static_cast<std::size_t>(m_fetched - m_fileSize), std::string::npos);
        } else {
            return false;
        }
        m_fetched += m_buffer.size() - before;
    }
    return isValid();
}

bool ConsoleSpool::Reader::readEntry(std::string_view& entry)
{
    Prefix prefix;
    if (!bufferBytes(sizeof prefix))
        return false;
    std::memcpy(&prefix, m_buffer.data() + m_at, sizeof prefix);
    const std::size_t length = prefix.length & ~missingFlag;
    if (!bufferBytes(sizeof prefix + length))
        return false;
    entry = std::string_view(m_buffer).substr(m_at + sizeof prefix, length);
    m_at += sizeof prefix + length;
    m_position += sizeof prefix + length;
    m_isEntry = length == prefix.length;
    m_stamp = m_isEntry ? EntryStamp{prefix.time, prefix.frame} : EntryStamp();
    if (!m_isEntry)
        m_nextSerial += prefix.frame;
    m_serial = m_nextSerial;
    if (m_isEntry)
        ++m_nextSerial;
    if (m_followsGroups) {
        m_place = placeIn(m_outline);
        console_entry::follow(entry, m_outline, bytesOf(m_serial));
    }
    return true;
}

bool ConsoleSpool::Reader::next(std::string_view& entry)
{
    do {
        if (!readEntry(entry))
            return false;
    } while (m_serial < m_from);
    return true;
}
