#pragma once

#include <QObject>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace platform {
class ScratchFile;
}

/// Keeps all entries of a console, in a file without a name rather than in memory.
class ConsoleSpool : public QObject {
    Q_OBJECT

public:
    explicit ConsoleSpool(QObject* parent);
    ~ConsoleSpool() override;

    /// Keeps an entry behind all others. Entries for which the disk has no room are replaced by a line that
    /// says how many they are.
    void append(std::string_view entry);
    void clear();

    /// Reads a snapshot of the spool entry by entry. Entries that are added later, and clear(), do not change
    /// it.
    class Reader {
    public:
        explicit Reader(ConsoleSpool& spool);
        /// The next entry; valid until the next call. False at the end.
        bool next(std::string_view& entry);
        /// False when the file could not be read.
        bool isValid() const { return !m_broken; }
        /// Bytes of all entries, and of those that have been read.
        std::uint64_t size() const { return m_fileSize + m_tail.size(); }
        std::uint64_t position() const { return m_position; }

    private:
        bool bufferBytes(std::size_t count);

        std::shared_ptr<platform::ScratchFile> m_file;
        std::uint64_t m_fileSize;
        std::string m_tail; ///< Entries that had not been written to the file.
        std::uint64_t m_position = 0;
        std::uint64_t m_fetched = 0;
        std::string m_buffer;
        std::size_t m_at = 0;
        bool m_broken = false;
    };

Q_SIGNALS:
    /// The disk takes no more entries; the reason is a readable text.
    void failed(const QString& reason);

private:
    void flush();

    std::shared_ptr<platform::ScratchFile> m_file;
    std::string m_buffer;
    std::uint64_t m_buffered = 0; ///< Number of entries in the buffer.
    std::uint64_t m_lost = 0; ///< Number of entries for which the disk had no room, since it last had some.
};
