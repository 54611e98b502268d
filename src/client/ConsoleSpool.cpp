#include "ConsoleSpool.h"

#include "ConsoleEntry.h"
#include "ScratchFile.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

/// Bytes that are collected before they are written to the file, and that are read from it in one go.
constexpr std::size_t blockSize = 65536;

using Length = std::uint32_t; ///< Stands before each entry.

std::string withLength(std::string_view entry)
{
    const auto length = static_cast<Length>(entry.size());
    std::array<char, sizeof length> bytes{};
    std::memcpy(bytes.data(), &length, sizeof length);
    return std::string(bytes.data(), bytes.size()).append(entry);
}

std::string missingLine(std::uint64_t entries)
{
    const QString text = ConsoleSpool::tr(
        "%n entries are missing here: there was no room on the disk.", nullptr, static_cast<int>(entries));
    return console_entry::packClosingLine(text.toStdString());
}

} // namespace

ConsoleSpool::ConsoleSpool(QObject* parent)
    : QObject(parent)
    , m_file(std::make_shared<platform::ScratchFile>())
{
}

ConsoleSpool::~ConsoleSpool() = default;

void ConsoleSpool::append(std::string_view entry)
{
    if (m_lost > 0 && m_buffer.empty())
        m_buffer = withLength(missingLine(m_lost));
    m_buffer += withLength(entry);
    ++m_buffered;
    if (m_buffer.size() >= blockSize)
        flush();
}

void ConsoleSpool::flush()
{
    if (m_buffer.empty())
        return;
    if (m_file->append(m_buffer)) {
        m_lost = 0;
    } else {
        const bool isNews = m_lost == 0;
        m_lost += m_buffered;
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
}

ConsoleSpool::Reader::Reader(ConsoleSpool& spool)
    : m_file(spool.m_file)
    , m_fileSize(spool.m_file->size())
    , m_tail(spool.m_buffer)
{
    // A buffer with entries begins with the line that replaces those before them.
    if (spool.m_lost > 0 && m_tail.empty())
        m_tail = withLength(missingLine(spool.m_lost));
}

/// Reads until the buffer has so many bytes. False at the end.
bool ConsoleSpool::Reader::bufferBytes(std::size_t count)
{
    while (isValid() && m_buffer.size() - m_at < count) {
        m_buffer.erase(0, m_at);
        m_at = 0;
        if (m_fetched < m_fileSize) {
            const auto size =
                static_cast<std::size_t>(std::min<std::uint64_t>(blockSize, m_fileSize - m_fetched));
            const std::string block = m_file->read(m_fetched, size);
            m_broken = block.empty();
            m_fetched += block.size();
            m_buffer += block;
        } else if (m_fetched == m_fileSize && !m_tail.empty()) {
            m_buffer += m_tail;
            m_fetched += m_tail.size();
        } else {
            return false;
        }
    }
    return isValid();
}

bool ConsoleSpool::Reader::next(std::string_view& entry)
{
    Length length = 0;
    if (!bufferBytes(sizeof length))
        return false;
    std::memcpy(&length, m_buffer.data() + m_at, sizeof length);
    if (!bufferBytes(sizeof length + length))
        return false;
    entry = std::string_view(m_buffer).substr(m_at + sizeof length, length);
    m_at += sizeof length + length;
    m_position += sizeof length + length;
    return true;
}
