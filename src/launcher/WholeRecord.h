#pragma once

#include "Message.h"
#include "RingReader.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <sys/uio.h>

namespace launcher {

using layer::ring::Record;

/// Whether a watched process may send a record of a type: all but those that the launcher sends for it and
/// those that the window sends.
bool isOfProcess(std::uint32_t type);

/// Whether a window that comes later gets a record of a type anew: contexts and the system report.
bool isKept(std::uint32_t type);

/// The whole record that the window gets, as pieces that lie elsewhere: its payload is filled up with zeros,
/// and each of its texts ends inside its field. The pieces are valid as long as this, and as the payload.
class WholeRecord {
public:
    explicit WholeRecord(const Record& record);
    WholeRecord(const WholeRecord&) = delete;
    WholeRecord& operator=(const WholeRecord&) = delete;

    /// Adds the pieces, without as many bytes at the start as are to be skipped.
    template <typename Pieces> void addTo(Pieces& pieces, std::size_t skipped) const
    {
        for (std::size_t i = 0; i < m_count; ++i) {
            const std::size_t hidden = std::min(skipped, m_pieces[i].iov_len);
            skipped -= hidden;
            if (hidden < m_pieces[i].iov_len)
                pieces.push_back(
                    {static_cast<char*>(m_pieces[i].iov_base) + hidden, m_pieces[i].iov_len - hidden});
        }
    }
    /// Copies it to the start of a message, without the zeros that fill it up; returns where these begin.
    std::size_t copyTo(ui::messages::Message& message) const;

private:
    void add(const char* bytes, std::size_t size);

    std::array<char, ui::messages::offset::payload> m_head;
    std::array<iovec, 7> m_pieces;
    std::size_t m_count = 0;
};

/// The bytes of a 32-bit value, as payloads have them.
std::string number(std::uint32_t value);

} // namespace launcher
