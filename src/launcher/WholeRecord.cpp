#include "WholeRecord.h"

#include <algorithm>
#include <cstring>

namespace launcher {

using ui::messages::Message;
using ui::messages::recordSize;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

constexpr std::array<char, recordSize> zeros{};

/// Where texts of a type must have ended, as places in the payload: the last byte of each field.
std::array<std::size_t, 2> textEnds(std::uint32_t type)
{
    constexpr std::size_t none = recordSize;
    constexpr std::size_t last = recordSize - 1 - offset::payload;
    switch (static_cast<Type>(type)) {
    case Type::ContextInformation:
        return {none, none};
    case Type::GlError:
        return {offset::glErrorDescription - 1 - offset::payload, last};
    case Type::ReportText:
    case Type::ReportDetail:
        return {offset::reportTextEnd - 1 - offset::payload, none};
    default:
        return {last, none};
    }
}

void putNumber(std::uint32_t value, char* at)
{
    for (unsigned int i = 0; i < sizeof value; ++i)
        at[i] = static_cast<char>(value >> (8U * i) & 0xFFU);
}

} // namespace

bool isOfProcess(std::uint32_t type)
{
    return (type >= 2 && type <= 10) || (type >= 14 && type <= 20);
}

bool isKept(std::uint32_t type)
{
    return type == static_cast<std::uint32_t>(Type::ContextInformation) || (type >= 14 && type <= 20);
}

WholeRecord::WholeRecord(const Record& record)
{
    putNumber(record.frame, m_head.data() + offset::frame);
    putNumber(record.type, m_head.data() + offset::type);
    add(m_head.data(), m_head.size());

    std::size_t done = 0;
    for (const std::size_t end : textEnds(record.type)) {
        if (end >= record.payload.size())
            break;
        add(record.payload.data() + done, end - done);
        add(zeros.data(), 1);
        done = end + 1;
    }
    add(record.payload.data() + done, record.payload.size() - done);
    add(zeros.data(), recordSize - m_head.size() - record.payload.size());
}

void WholeRecord::add(const char* bytes, std::size_t size)
{
    if (size > 0)
        m_pieces[m_count++] = {const_cast<char*>(bytes), size};
}

std::size_t WholeRecord::copyTo(Message& message) const
{
    std::size_t at = 0;
    std::size_t end = 0;
    for (std::size_t i = 0; i < m_count; ++i) {
        const auto& [bytes, size] = m_pieces[i];
        if (i + 1 < m_count || bytes != zeros.data()) {
            std::memcpy(message.data() + at, bytes, size);
            end = at + size;
        }
        at += size;
    }
    return end;
}

std::string number(std::uint32_t value)
{
    std::string bytes(sizeof value, '\0');
    putNumber(value, bytes.data());
    return bytes;
}

} // namespace launcher
