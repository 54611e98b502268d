#pragma once

#include "ConsoleEntry.h"
#include "ConsoleOutline.h"

#include <QObject>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace platform {
class ScratchFile;
}

/// Keeps all entries of a console, in a file without a name rather than in memory. Each entry has a serial
/// number, which goes on after clear(); reading can begin at any of them.
class ConsoleSpool : public QObject {
    Q_OBJECT

public:
    explicit ConsoleSpool(QObject* parent);
    ~ConsoleSpool() override;

    /// Keeps an entry behind all others. Entries for which the disk has no room are replaced by a line that
    /// says how many they are.
    void append(std::string_view entry, EntryStamp stamp);
    void clear();

    /// The serial number of the oldest entry, and that of the one that comes next.
    std::uint64_t firstSerial() const { return m_firstSerial; }
    std::uint64_t endSerial() const { return m_nextSerial; }

    /// Reads a snapshot of the spool entry by entry. Entries that are added later, and clear(), do not change
    /// it.
    class Reader {
    public:
        explicit Reader(ConsoleSpool& spool);
        /// Begins with the entry of a serial number, or with the next one that there is.
        Reader(ConsoleSpool& spool, std::uint64_t serial);
        /// The next entry; valid until the next call. False at the end.
        bool next(std::string_view& entry);
        /// Serial number and stamp of the entry that next() gave. A line that stands for missing entries has
        /// the serial number of the entry behind it.
        std::uint64_t serial() const { return m_serial; }
        EntryStamp stamp() const { return m_stamp; }
        /// False for such a line.
        bool isEntry() const { return m_isEntry; }
        /// Has place() tell where entries stand, which takes time.
        void followGroups() { m_followsGroups = true; }
        GroupPlace place() const { return m_place; }
        /// False when the file could not be read.
        bool isValid() const { return !m_broken; }
        /// Bytes of all entries, and of those that have been read.
        std::uint64_t size() const { return m_fileSize + m_tail.size(); }
        std::uint64_t position() const { return m_position; }

    private:
        bool bufferBytes(std::size_t count);
        bool readEntry(std::string_view& entry);

        std::shared_ptr<platform::ScratchFile> m_file;
        std::uint64_t m_fileSize;
        std::string m_tail; ///< Entries that had not been written to the file.
        std::uint64_t m_position = 0;
        std::uint64_t m_fetched = 0;
        std::string m_buffer;
        std::size_t m_at = 0;
        std::uint64_t m_serial = 0;
        std::uint64_t m_nextSerial = 0;
        std::uint64_t m_from = 0; ///< Entries with smaller serial numbers are passed over.
        EntryStamp m_stamp;
        ConsoleOutline m_outline; ///< As in a mark, of what was read.
        GroupPlace m_place;
        bool m_followsGroups = false;
        bool m_isEntry = false;
        bool m_broken = false;
    };

    /// Where the entry that comes next will stand.
    GroupPlace nextPlace() const;
    /// The outline of the text before the entry of a serial number, as far as the disk has kept it.
    ConsoleOutline outlineBefore(std::uint64_t serial);

Q_SIGNALS:
    /// The disk takes no more entries; the reason is a readable text.
    void failed(const QString& reason);

private:
    /// A place where reading can begin.
    struct Mark {
        std::uint64_t offset;
        std::uint64_t serial; ///< Of the entry there.
        /// Of the text before it. It knows the entries whose frames are open by their serial numbers.
        ConsoleOutline outline;
    };

    void flush();
    void addMark(std::uint64_t serial);
    const Mark* markBefore(std::uint64_t serial) const;
    std::string entryOf(std::uint64_t serial);

    std::shared_ptr<platform::ScratchFile> m_file;
    std::string m_buffer;
    std::uint64_t m_buffered = 0; ///< Number of entries in the buffer.
    std::uint64_t m_lost = 0; ///< Number of entries for which the disk had no room, since it last had some.
    std::uint64_t m_firstSerial = 0;
    std::uint64_t m_nextSerial = 0;
    ConsoleOutline m_outline; ///< Of all text, as in a mark.
    ConsoleOutline m_writtenOutline; ///< Of what is in the file.
    std::vector<Mark> m_marks;
    int m_sinceMark = 0; ///< Number of entries.
};
